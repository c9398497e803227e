#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

#include "command_access/lumo_access/lumo_access_device.h"
#include "command_access/lumo_access/lumo_call.h"

namespace tolk {

LumoReturn LumoAccessDevice::getSablinkSpec(LumoSablinkSpec& spec) const {
  return queryLumo(LUMO_ENTRY(lumoDeviceGetSablinkSpec), spec, modules_.device);
}

LumoReturn LumoAccessDevice::getSablinkState(std::uint32_t link, std::uint32_t& state) const {
  return queryLumo(LUMO_ENTRY(lumoDeviceGetSablinkState), state, modules_.device, link);
}

LumoReturn LumoAccessDevice::getSablinkCapStatus(std::uint32_t link, std::uint32_t capability,
                                                 std::uint32_t& status) const {
  return queryLumo(LUMO_ENTRY(lumoDeviceGetSablinkCapStatus), status, modules_.device, link, capability);
}

LumoReturn LumoAccessDevice::getSablinkErrCounter(std::uint32_t link, std::uint32_t counter,
                                                  unsigned long long& count) const {
  return queryLumo(LUMO_ENTRY(lumoDeviceGetSablinkErrorCounter), count, modules_.device, link, counter);
}

LumoReturn LumoAccessDevice::resetSablinkErrCounters(std::uint32_t link) {
  return callLumo(LUMO_ENTRY(lumoDeviceResetSablinkErrorCounter), modules_.device, link);
}

LumoReturn LumoAccessDevice::getSablinkRemoteDevice(std::uint32_t link, std::uint32_t& index) const {
  LumoDevice* remote = nullptr;
  const LumoReturn ret =
      queryLumo(LUMO_ENTRY(lumoDeviceGetSablinkRemoteDevice), remote, modules_.device, link);
  return ret != LUMO_RETURN_SUCCESS ? ret : queryLumo(LUMO_ENTRY(lumoDeviceGetIndex), index, remote);
}

LumoReturn LumoAccessDevice::getDeviceSablinkLayout(const LumoAccessDevice& peer, std::string& text) const {
  unsigned links = 0;
  const LumoReturn ret =
      queryLumo(LUMO_ENTRY(lumoDeviceCountSablinkLayouts), links, modules_.device, peer.modules_.device);
  if (ret == LUMO_RETURN_SUCCESS) text = links == 0 ? "" : "OV" + std::to_string(links);
  return ret;
}

LumoReturn LumoAccessDevice::getSablinkLayout(const LumoAccessDevice& peer,
                                              std::vector<SablinkPath>& paths) const {
  std::vector<LumoSablinkPath> ways;
  LumoReturn ret = queryLumoList(LUMO_ENTRY(lumoDeviceCountSablinkShortestPaths),
                                 LUMO_ENTRY(lumoDeviceGetSablinkShortestPaths), ways, modules_.device,
                                 peer.modules_.device);
  if (ret != LUMO_RETURN_SUCCESS) return ret;

  // A way names devices, and only the layouts between two neighbours on it name the ports.
  std::vector<SablinkPath> found;
  for (const auto& way : ways) {
    const auto devices =
        std::span(way.devices).first(std::min<std::size_t>(way.deviceCount, LUMO_SABLINK_PATH_SIZE));
    std::vector<std::uint32_t> indices(devices.size());
    for (std::size_t i = 0; i < devices.size(); ++i) {
      ret = queryLumo(LUMO_ENTRY(lumoDeviceGetIndex), indices[i], devices[i]);
      if (ret != LUMO_RETURN_SUCCESS) return ret;
    }
    SablinkPath path;
    for (std::size_t i = 1; i < devices.size(); ++i) {
      auto& hop = path.emplace_back(SablinkHop{indices[i - 1], indices[i], {}});
      ret = queryLumoList(LUMO_ENTRY(lumoDeviceCountSablinkLayouts), LUMO_ENTRY(lumoDeviceGetSablinkLayouts),
                          hop.ports, devices[i - 1], devices[i]);
      if (ret != LUMO_RETURN_SUCCESS) return ret;
    }
    if (!path.empty()) found.push_back(std::move(path));
  }
  paths = std::move(found);
  return ret;
}

}  // namespace tolk
