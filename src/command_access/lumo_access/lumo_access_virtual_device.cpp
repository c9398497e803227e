#include "command_access/lumo_access/lumo_access_virtual_device.h"

#include <sstream>
#include <utility>

#include "command_access/lumo_access/lumo_call.h"
#include "host_environment.h"

namespace tolk {

namespace {

/// "vm1" of "guest=vm1,debug-threads=on", and of the plain "vm1".
std::string vmNameOf(const std::string& argument) {
  const auto sign = argument.find('=');
  const auto begin = sign == std::string::npos ? 0 : sign + 1;
  return argument.substr(begin, argument.find(',', begin) - begin);
}

}  // namespace

LumoAccessVirtualDevice::LumoAccessVirtualDevice(const ActiveVirtDevice& vgpu)
    : LumoAccessDevice(vgpu.modules), uuid_(vgpu.uuid) {
  TOLK_LOG(kTrace) << "LumoAccessVirtualDevice";
}

LumoAccessVirtualDevice::~LumoAccessVirtualDevice() {
  TOLK_LOG(kTrace) << "LumoAccessVirtualDevice";
}

LumoReturn LumoAccessVirtualDevice::devGetUUID(std::string& uuid) const {
  uuid = uuid_;
  return LUMO_RETURN_SUCCESS;
}

LumoReturn LumoAccessVirtualDevice::getGuestMemUsed(unsigned long long& usedBytes) const {
  return queryLumo(
      LUMO_ENTRY_SAYING(lumoMemoryGetGuestUsed, "Failed to get used memory of vgpu in guest, ret = "),
      usedBytes, getLumoModuleSet().memory);
}

LumoReturn LumoAccessVirtualDevice::getGuestMemTotal(unsigned long long& totalBytes) const {
  return queryLumo(
      LUMO_ENTRY_SAYING(lumoMemoryGetGuestTotal, "Failed to get total memory of vgpu in guest, ret = "),
      totalBytes, getLumoModuleSet().memory);
}

LumoReturn LumoAccessVirtualDevice::getVgpuId(std::uint32_t& id) const {
  return queryLumo(LUMO_ENTRY_SAYING(lumoDeviceGetVgpuId, "fail to get vgpu id, ret = "), id,
                   getLumoModuleSet().device);
}

LumoReturn LumoAccessVirtualDevice::getVmPid(std::uint32_t& pid) const {
  return queryLumo(LUMO_ENTRY_SAYING(lumoDeviceGetVmPid, "fail to get vm pid, ret = "), pid,
                   getLumoModuleSet().device);
}

LumoReturn LumoAccessVirtualDevice::getGuestGpuUtilization(std::uint32_t& utilization) const {
  return queryLumo(
      LUMO_ENTRY_SAYING(lumoGpuGetGuestUtilization, "fail to get gpu utilization of vgpu in guest, ret = "),
      utilization, getLumoModuleSet().gpu);
}

LumoReturn LumoAccessVirtualDevice::getGuestMemUtilization(std::uint32_t& utilization) const {
  return queryLumo(LUMO_ENTRY_SAYING(lumoMemoryGetGuestUtilization,
                                     "fail to get memory utilization of vgpu in guest, ret = "),
                   utilization, getLumoModuleSet().memory);
}

LumoReturn LumoAccessVirtualDevice::getVgpuOverCommitInfo(LumoVgpuOverCommitInfo& info) const {
  return queryLumo(LUMO_ENTRY_SAYING(lumoDeviceGetVgpuOverCommitInfo, "fail to get vgpu over commit, ret = "),
                   info, getLumoModuleSet().device);
}

LumoReturn LumoAccessVirtualDevice::GetVirtType(LumoVirtType& type) const {
  return queryLumo(LUMO_ENTRY_SAYING(lumoDeviceGetVirtType, "fail to get type of vgpu, ret = "), type,
                   getLumoModuleSet().device);
}

LumoReturn LumoAccessVirtualDevice::getVmInfo(VmInfo& info) const {
  info = {};
  std::uint32_t pid = 0;
  if (const LumoReturn ret = getVmPid(pid); ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "Failed to get vm pid.";
    return ret;
  }
  const std::string path = "/proc/" + std::to_string(pid) + "/cmdline";
  auto text = readWholeFile(path.c_str());
  if (!text) {
    TOLK_LOG(kError) << "Failed to open cmdline file: " << path;
    return LUMO_RETURN_NOT_FOUND;
  }

  for (char& c : *text) {
    if (c == '\0') c = ' ';
  }
  std::string uuid;
  std::string name;
  std::istringstream words(*text);
  for (std::string word; words >> word;) {
    if (word == "-uuid") {
      words >> uuid;
    } else if (word == "-name") {
      std::string argument;
      words >> argument;
      name = vmNameOf(argument);
    }
  }
  const bool complete = !uuid.empty() && !name.empty();
  if (!uuid.empty()) info.uuid = std::move(uuid);
  if (!name.empty()) info.name = std::move(name);
  TOLK_LOG(kInfo) << "Query vm pid: " << pid << ", vm uuid: " << info.uuid << ", vm name: " << info.name;
  if (!complete) {
    TOLK_LOG(kError) << "failed to query vm name or uuid, origin string size is " << text->size() << " is ["
                     << *text << "]";
  }
  return LUMO_RETURN_SUCCESS;
}

}  // namespace tolk
