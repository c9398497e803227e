#include "affinity_text.h"
#include "device.h"
#include "device_manager.h"
#include "entry_point.h"
#include "library.h"
#include "pci_text.h"
#include "process.h"

using lumo::asNumber;
using lumo::Device;
using lumo::with;
using lumo::withPeer;

namespace {

constexpr unsigned kLevelCount = 6;
constexpr unsigned kP2pCapabilities = 2;

/// A list of numbers as a mask.
template <class Operation, class Convert>
LumoReturn getMask(LumoDevice* device, unsigned long long* mask, unsigned count, Operation operation,
                   Convert convert) {
  if (device == nullptr || mask == nullptr || count == 0) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::callObject(device, operation,
                          [=](const std::string& text) { return convert(text, count, mask); });
}

/// The library's other devices at one level from a device.
std::vector<std::shared_ptr<Device>> findAtLevel(const Device& device, unsigned level, LumoReturn* status) {
  std::vector<std::shared_ptr<Device>> found;
  const std::shared_ptr<lumo::Library> library = lumo::currentLibrary();
  if (library == nullptr) {
    *status = LUMO_RETURN_UNKNOWN_ERROR;
    return {};
  }
  for (const std::shared_ptr<Device>& other : library->getDevices()) {
    if (other.get() == &device) {
      continue;
    }
    const kelp::TopologyLevel own = device.getTopologyLevel(*other, status);
    if (*status != LUMO_RETURN_SUCCESS) {
      return {};
    }
    if (own == static_cast<kelp::TopologyLevel>(level)) {
      found.push_back(other);
    }
  }
  return found;
}

/// The PCI functions by their addresses, whoever is asked.
kelp::TopologyLevel queryPciTopology(const Device& /*device*/, const char* sbdf, const char* otherSbdf,
                                     LumoReturn* status) {
  return lumo::consumeMv(kelp::DeviceManager::queryTopologyLevel(sbdf, otherSbdf), status);
}

kelp::P2pCapStatus queryP2p(const Device& device, const Device& other, unsigned capability,
                            LumoReturn* status) {
  for (const kelp::DevType type : {device.getDeviceType(status), other.getDeviceType(status)}) {
    if (type == kelp::DevType::kMediated || type == kelp::DevType::kMpcInstance) {
      *status = LUMO_RETURN_NOT_SUPPORTED;
      return {};
    }
  }
  if (&other == &device) {
    return kelp::P2pCapStatus::kGpuNotSupported;
  }
  return device.getP2pStatus(other.getIntId(status), capability, status);
}

}  // namespace

LumoReturn lumoDeviceGetPciInfo(LumoDevice* device, LumoPciInfo* info) {
  return lumo::getValue(device, info, &Device::getPciInfo);
}

LumoReturn lumoDeviceGetPcieSlotInfo(LumoDevice* device, LumoPciSlotInfo* slot) {
  return lumo::getValue(device, slot, &Device::getPcieSlotInfo);
}

LumoReturn lumoDeviceGetPcieReplayCounter(LumoDevice* device, unsigned long long* count) {
  return lumo::getValue(device, count, &Device::getPcieReplayCounter);
}

LumoReturn lumoDeviceGetPcieBar2MemoryInfo(LumoDevice* device, unsigned long long* total,
                                           unsigned long long* used, unsigned long long* free) {
  if (device == nullptr || total == nullptr || used == nullptr || free == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::callObject(device, &Device::getPcieBar2MemoryInfo, [=](const kelp::PcieBar2MemInfo& info) {
    *total = info.total;
    *used = info.used;
    *free = info.free;
    return LUMO_RETURN_SUCCESS;
  });
}

LumoReturn lumoDeviceStartPciePerf(LumoDevice* device, unsigned intervalMs, unsigned* session) {
  return lumo::getValue(device, session, with(&Device::startPciePerf, intervalMs));
}

LumoReturn lumoDeviceGetPcieBandWidth(LumoDevice* device, unsigned session, LumoPcieBandWidth* data) {
  return lumo::getValue(device, data, with(&Device::getPcieBandWidthData, session));
}

LumoReturn lumoDeviceStopPciePerf(LumoDevice* device, unsigned session) {
  return lumo::runOperation(device, with(&Device::stopPciePerf, session));
}

LumoReturn lumoDeviceGetTopologyLevel(LumoDevice* device, LumoDevice* other, int* level) {
  if (other == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getValue(device, level, asNumber<int>(withPeer(other, &Device::getTopologyLevel)));
}

LumoReturn lumoDeviceGetPciDeviceTopology(LumoDevice* device, const char* sbdf, const char* otherSbdf,
                                          int* level) {
  if (device == nullptr || level == nullptr || sbdf == nullptr || otherSbdf == nullptr ||
      !lumo::checkSbdfFormat(sbdf) || !lumo::checkSbdfFormat(otherSbdf)) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  if (std::strcmp(sbdf, otherSbdf) == 0) {
    return LUMO_RETURN_NOT_SUPPORTED;
  }
  return lumo::getValue(device, level, asNumber<int>(with(&queryPciTopology, sbdf, otherSbdf)));
}

LumoReturn lumoDeviceCountDeviceByTopologyLevel(LumoDevice* device, unsigned level, unsigned* count) {
  if (level >= kLevelCount) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getCount(device, count, with(&findAtLevel, level));
}

LumoReturn lumoDeviceGetDeviceByTopologyLevel(LumoDevice* device, unsigned level, unsigned capacity,
                                              LumoDevice** devices) {
  if (device == nullptr || devices == nullptr || level >= kLevelCount) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  if (capacity == 0) {
    return LUMO_RETURN_INSUFFICIENT_SIZE;
  }
  const auto operation = [level, capacity](const Device& object, LumoReturn* status) {
    std::vector<std::shared_ptr<Device>> found = findAtLevel(object, level, status);
    // sic: the caller needs room for one more than there are
    if (*status == LUMO_RETURN_SUCCESS && found.size() >= capacity) {
      *status = LUMO_RETURN_INSUFFICIENT_SIZE;
    }
    return found;
  };
  return lumo::getList(device, devices, capacity, lumo::asHandles<LumoDevice>(operation));
}

LumoReturn lumoDeviceCountPciNicDevices(LumoDevice* device, unsigned* count) {
  return lumo::getCount(device, count, &Device::getNicDevices);
}

LumoReturn lumoDeviceGetPciNicDeviceSbdf(LumoDevice* device, char* sbdfs, unsigned width, unsigned count) {
  return lumo::getTexts(device, sbdfs, width, count, LUMO_RETURN_NOT_FOUND, &Device::getNicDevices);
}

LumoReturn lumoDeviceGetP2PStatus(LumoDevice* device, LumoDevice* other, unsigned capability,
                                  unsigned* status) {
  if (other == nullptr || capability >= kP2pCapabilities) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  const auto operation = [capability](const Device& object, const Device& peer, LumoReturn* code) {
    return queryP2p(object, peer, capability, code);
  };
  return lumo::getValue(device, status, asNumber<unsigned>(withPeer(other, operation)));
}

LumoReturn lumoDeviceGetCpuAffinityStringWithinNode(LumoDevice* device, char* cpus, unsigned length) {
  return lumo::getText(device, cpus, length, &Device::getCpuAffinityListWithinNode);
}

LumoReturn lumoDeviceGetMemoryAffinityStringWithinNode(LumoDevice* device, char* nodes, unsigned length) {
  return lumo::getText(device, nodes, length, &Device::getMemoryAffinityWithinNode);
}

LumoReturn lumoDeviceGetCpuAffinityWithinNode(LumoDevice* device, unsigned long long* mask, unsigned count) {
  return getMask(device, mask, count, &Device::getCpuAffinityListWithinNode,
                 lumo::affinityStringToUnsignedLong);
}

LumoReturn lumoDeviceGetMemoryAffinityWithinNode(LumoDevice* device, unsigned long long* mask,
                                                 unsigned count) {
  return getMask(device, mask, count, &Device::getMemoryAffinityWithinNode,
                 lumo::affinityStringToUnsignedLong);
}

LumoReturn lumoDeviceGetCpuAffinityBitmaskWithinNode(LumoDevice* device, unsigned long long* words,
                                                     unsigned count) {
  return getMask(device, words, count, &Device::getCpuAffinityBitmaskWithinNode,
                 lumo::cpuAffinityBitmaskToUnsignedLong);
}
