#include <algorithm>
#include <cstring>
#include <utility>

#include "command_access/lumo_access/lumo_access_device.h"
#include "command_access/lumo_access/lumo_call.h"

namespace tolk {

namespace {

template <class Entry, class Count, class List>
LumoReturn queryProcesses(const LumoEntry<Count>& count, const LumoEntry<List>& list, std::vector<Entry>& out,
                          LumoDevice* device) {
  std::vector<Entry> found;
  LumoReturn ret = LUMO_RETURN_INSUFFICIENT_SIZE;
  // Processes come at any moment, also between count and list, so a list that has grown is asked again.
  for (int tries = 0; tries < 2 && ret == LUMO_RETURN_INSUFFICIENT_SIZE; ++tries) {
    ret = queryLumoList(count, list, found, device);
  }
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  // A list that shrank ends in zeroed entries. A process without a pid is one of another namespace, which
  // uses the device all the same: its GPU must not be reset.
  static constexpr Entry kEmpty{};
  std::erase_if(found,
                [](const Entry& process) { return std::memcmp(&process, &kEmpty, sizeof kEmpty) == 0; });
  out = std::move(found);
  return ret;
}

/// @param target a device or a uuid
template <class Function, class Target>
LumoReturn queryEvents(const LumoEntry<Function>& entry, std::vector<LumoEventData>& out, Target target,
                       unsigned long long type, unsigned wanted) {
  std::vector<LumoEventData> found(wanted);
  unsigned written = 0;
  const LumoReturn ret =
      wanted == 0 ? LUMO_RETURN_SUCCESS : callLumo(entry, target, type, found.data(), wanted, &written);
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  found.resize(std::min(written, wanted));
  out = std::move(found);
  return ret;
}

}  // namespace

LumoReturn LumoAccessDevice::getProcessMemoryInfo(std::vector<LumoProcessMemUsage>& processes) const {
  return queryProcesses(LUMO_ENTRY(lumoDeviceCountProcessMemoryUsages),
                        LUMO_ENTRY(lumoDeviceGetProcessMemoryUsages), processes, modules_.device);
}

LumoReturn LumoAccessDevice::getProcessGpuUtilization(
    std::vector<LumoProcessGpuUtilization>& processes) const {
  return queryProcesses(LUMO_ENTRY(lumoDeviceCountProcessGpuUtilizations),
                        LUMO_ENTRY(lumoDeviceGetProcessGpuUtilizations), processes, modules_.device);
}

LumoReturn LumoAccessDevice::getSupportedEventTypes(std::vector<unsigned long long>& types) const {
  unsigned long long mask = 0;
  const LumoReturn ret = queryLumo(LUMO_ENTRY(lumoDeviceGetSupportedEventTypes), mask, modules_.device);
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  types.clear();
  for (; mask != 0; mask &= mask - 1) types.push_back(mask & (~mask + 1));
  return ret;
}

LumoReturn LumoAccessDevice::getEventInfo(unsigned long long type, std::uint32_t count,
                                          std::vector<LumoEventData>& events) const {
  return queryEvents(LUMO_ENTRY(lumoDeviceGetEventDataByEventType), events, modules_.device, type, count);
}

LumoReturn LumoAccessDevice::getTargetUuidEventInfo(const std::string& uuid, unsigned long long type,
                                                    std::uint32_t count, std::vector<LumoEventData>& events) {
  return queryEvents(LUMO_ENTRY(lumoGetTargetUuidEventDataByEventType), events, uuid.c_str(), type, count);
}

}  // namespace tolk
