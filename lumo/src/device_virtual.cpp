#include <algorithm>
#include <unordered_set>
#include <utility>

#include "device.h"
#include "device_object.h"
#include "kelp_log.h"
#include "objects/virtual_feat_obj.h"
#include "record_text.h"

// A device that carries vGPUs, and such a vGPU.

namespace lumo {

using kelp::Features;
using kelp::VirtualFeatObj;

namespace {

/// Empty, with the code, when one of the numbers is not known.
LumoVirtType toLumoVirtType(const kelp::MdevVirtType& type, LumoReturn* status) {
  LumoVirtType record{};
  setText(record.id, type.id);
  setText(record.deviceApi, type.className);
  setText(record.name, type.name);
  const std::pair<unsigned long long&, const kelp::Stated<unsigned long>&> numbers[] = {
      {record.maxWidth, type.maxWidth},
      {record.maxHeight, type.maxHeight},
      {record.maxEncode, type.maxEncodeNum},
      {record.maxDecode, type.maxDecodeNum},
      {record.framebuffer, type.framebuffer},
      {record.maxInstances, type.maxInstances},
      {record.maxVirtualDisplay, type.maxVirtualDisplay},
  };
  for (const auto& [field, number] : numbers) {
    field = consumeMv(kelp::Stated<unsigned long>(number), status);
    if (*status != LUMO_RETURN_SUCCESS) {
      return {};
    }
  }
  return record;
}

std::vector<LumoVirtType> toLumoVirtTypes(const std::vector<kelp::MdevVirtType>& types, LumoReturn* status) {
  std::vector<LumoVirtType> records;
  for (const kelp::MdevVirtType& type : types) {
    records.push_back(toLumoVirtType(type, status));
    if (*status != LUMO_RETURN_SUCCESS) {
      return {};
    }
  }
  return records;
}

/// Whether the device can carry vGPUs. What a vGPU is asked in its place would be answered for its GPU.
bool isCarrier(const Device& device, LumoReturn* status,
               std::source_location operation = std::source_location::current()) {
  const bool carries = device.getType() != kelp::DevType::kMediated;
  if (!carries) {
    logMissingFeature(operation);
    *status = LUMO_RETURN_NOT_SUPPORTED;
  }
  return carries;
}

}  // namespace

unsigned int Device::countSupportedVirtualTypes(LumoReturn* status) const {
  return static_cast<unsigned int>(ask(&Features::virt, status, &VirtualFeatObj::getSupportedTypes).size());
}

unsigned int Device::countAvailableVirtualTypes(LumoReturn* status) const {
  if (!isCarrier(*this, status)) {
    return 0;
  }
  return static_cast<unsigned int>(ask(&Features::virt, status, &VirtualFeatObj::readAvailableTypes).size());
}

unsigned int Device::countActiveVirtualDevices(LumoReturn* status) const {
  return static_cast<unsigned int>(getActiveVirtualDeviceUuids(status).size());
}

unsigned int Device::countMaxVirtualDevices(const std::string& typeId, LumoReturn* status) const {
  return ask(&Features::virt, status,
             [&typeId](const VirtualFeatObj& feature) { return feature.getMaxInstances(typeId); });
}

unsigned int Device::countAvailableVirtualDevices(const std::string& typeId, LumoReturn* status) const {
  if (!isCarrier(*this, status)) {
    return 0;
  }
  return ask(&Features::virt, status,
             [&typeId](const VirtualFeatObj& feature) { return feature.readAvailableInstances(typeId); });
}

std::vector<LumoVirtType> Device::getSupportedVirtualTypes(LumoReturn* status) const {
  return toLumoVirtTypes(ask(&Features::virt, status, &VirtualFeatObj::getSupportedTypes), status);
}

std::vector<LumoVirtType> Device::getAvailableVirtualTypes(LumoReturn* status) const {
  if (!isCarrier(*this, status)) {
    return {};
  }
  return toLumoVirtTypes(ask(&Features::virt, status, &VirtualFeatObj::readAvailableTypes), status);
}

std::vector<std::string> Device::getActiveVirtualDeviceUuids(LumoReturn* status) const {
  if (!isCarrier(*this, status)) {
    return {};
  }
  return ask(&Features::virt, status, &VirtualFeatObj::readActiveUuids);
}

LumoVirtType Device::getVirtType(LumoReturn* status) const {
  const kelp::MdevVirtType type = ask(&Features::virt, status, &VirtualFeatObj::getVirtType);
  return *status == LUMO_RETURN_SUCCESS ? toLumoVirtType(type, status) : LumoVirtType{};
}

std::shared_ptr<kelp::DeviceObj> Device::findVirtualDevice(const std::string& uuid, LumoReturn* status) {
  const auto fail = [status](kelp::KelpReturn state) {
    KELP_LOG(kError) << "Mv error, state = " << state;
    *status = statusOf(state);
  };
  if (auto passed = passedVirtuals_.extract(uuid); !passed.empty()) {
    return std::move(passed.mapped());
  }
  *status = LUMO_RETURN_NOT_FOUND;
  // A second attempt at a vGPU that failed would not tell why.
  std::unordered_set<kelp::DevCuid> failed;
  for (const bool listsAnew : {false, true}) {
    if (listsAnew) {
      kelp::Stated<std::vector<kelp::DevCuid>> cuids = deviceObj_->getVirtDevCuids();
      if (!cuids.ok()) {
        fail(cuids.state());
        return nullptr;
      }
      listedVirtuals_ = cuids.take();
      std::erase_if(listedVirtuals_, [&failed](const kelp::DevCuid& cuid) { return failed.contains(cuid); });
      std::ranges::reverse(listedVirtuals_);  // they are taken from the end
    }
    while (!listedVirtuals_.empty()) {
      const kelp::DevCuid cuid = listedVirtuals_.back();
      listedVirtuals_.pop_back();
      kelp::Stated<std::shared_ptr<kelp::DeviceObj>> deviceObj = deviceManager_->getDevice(cuid);
      if (!deviceObj.ok()) {
        fail(deviceObj.state());
        failed.insert(cuid);
        continue;
      }
      std::string found = deviceObj.value()->getDesc().uuid;
      if (found == uuid) {
        *status = LUMO_RETURN_SUCCESS;
        return deviceObj.take();
      }
      passedVirtuals_.insert_or_assign(std::move(found), deviceObj.take());
    }
  }
  // Whoever asks for what is not there knows another list than the one that was read.
  passedVirtuals_.clear();
  return nullptr;
}

std::shared_ptr<Device> Device::initializeVirtualDevice(const std::string& uuid, LumoReturn* status) {
  // Held all through: a search by another thread would take from the list what this one is after.
  const std::lock_guard lock(virtMutex_);
  if (const auto found = virtDevices_.find(uuid); found != virtDevices_.end()) {
    return found->second;
  }
  std::shared_ptr<kelp::DeviceObj> deviceObj = findVirtualDevice(uuid, status);
  if (deviceObj == nullptr) {
    return nullptr;
  }
  return virtDevices_.emplace(uuid, create(uuid, std::move(deviceObj), deviceManager_, nullptr))
      .first->second;
}

unsigned int Device::getVgpuId(LumoReturn* status) const {
  return ask(&Features::virt, status, &VirtualFeatObj::readVgpuId);
}

unsigned int Device::getVmPid(LumoReturn* status) const {
  return ask(&Features::virt, status, &VirtualFeatObj::readVmPid);
}

LumoVgpuOverCommitInfo Device::getVgpuOverCommitInfo(LumoReturn* status) const {
  const kelp::VgpuOverCommitInfo info = ask(&Features::virt, status, &VirtualFeatObj::queryOverCommitInfo);
  return {.enabled = info.enabled, .systemMemory = info.systemMemory};
}

}  // namespace lumo
