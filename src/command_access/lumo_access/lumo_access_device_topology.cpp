#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "command_access/lumo_access/lumo_access_device.h"
#include "command_access/lumo_access/lumo_call.h"

namespace tolk {

namespace {

using LevelTexts = std::array<const char*, LUMO_TOPOLOGY_SYSTEM + 1>;

constexpr LevelTexts kAddressLevels{"INT", "SPB", "MPB", "HPB", "NODE", "SYS"};
constexpr LevelTexts kDeviceLevels{"INT", "SPS", "MPB", "HPB", "NODE", "SYS"};  // sic

constexpr std::array kP2pTexts{"OK", "CNS", "GNS"};

LumoReturn toLevelText(int level, const LevelTexts& texts, std::string& text) {
  const auto at = static_cast<std::size_t>(level);
  if (at >= texts.size()) {
    TOLK_LOG(kError) << "no text for topology level " << level;
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  text = texts[at];
  return LUMO_RETURN_SUCCESS;
}

}  // namespace

LumoReturn LumoAccessDevice::getAffinityString(std::string& memory, std::string& cpus) const {
  const LumoReturn memoryRet = queryLumoText<kTextSize>(
      LUMO_ENTRY(lumoDeviceGetMemoryAffinityStringWithinNode), memory, modules_.device);
  const LumoReturn cpuRet =
      queryLumoText<kTextSize>(LUMO_ENTRY(lumoDeviceGetCpuAffinityStringWithinNode), cpus, modules_.device);
  return memoryRet != LUMO_RETURN_SUCCESS ? memoryRet : cpuRet;
}

LumoReturn LumoAccessDevice::getTopologyLevel(const LumoAccessDevice& peer, std::string& text) const {
  int level = LUMO_TOPOLOGY_SAME;
  const LumoReturn ret =
      queryLumo(LUMO_ENTRY(lumoDeviceGetTopologyLevel), level, modules_.device, peer.modules_.device);
  return ret != LUMO_RETURN_SUCCESS ? ret : toLevelText(level, kDeviceLevels, text);
}

LumoReturn LumoAccessDevice::getTopologyLevel(const std::string& sbdf, const std::string& otherSbdf,
                                              std::string& text) const {
  int level = LUMO_TOPOLOGY_SAME;
  const LumoReturn ret = queryLumo(LUMO_ENTRY(lumoDeviceGetPciDeviceTopology), level, modules_.device,
                                   sbdf.c_str(), otherSbdf.c_str());
  return ret != LUMO_RETURN_SUCCESS ? ret : toLevelText(level, kAddressLevels, text);
}

LumoReturn LumoAccessDevice::getNicDeviceSbdf(std::vector<std::string>& sbdfs) const {
  return queryLumoTexts<LUMO_PCI_SBDF_SIZE>(LUMO_ENTRY(lumoDeviceCountPciNicDevices),
                                            LUMO_ENTRY(lumoDeviceGetPciNicDeviceSbdf), sbdfs,
                                            modules_.device);
}

LumoReturn LumoAccessDevice::getP2pStatus(const LumoAccessDevice& peer, std::uint32_t mode,
                                          std::string& text) const {
  unsigned status = 0;
  const LumoReturn ret =
      queryLumo(LUMO_ENTRY(lumoDeviceGetP2PStatus), status, modules_.device, peer.modules_.device, mode);
  if (ret == LUMO_RETURN_SUCCESS) text = status < kP2pTexts.size() ? kP2pTexts[status] : "U";
  return ret;
}

LumoReturn LumoAccessDevice::getNearestGpus(std::uint32_t level,
                                            std::vector<std::shared_ptr<LumoAccessDevice>>& devices) const {
  unsigned count = 0;
  LumoReturn ret = queryLumo(LUMO_ENTRY(lumoDeviceCountDeviceByTopologyLevel), count, modules_.device, level);
  if (ret != LUMO_RETURN_SUCCESS) return ret;

  std::vector<LumoDevice*> handles;
  if (count != 0) {
    // This list alone wants more room than it fills.
    handles.resize(std::size_t{count} + 1);
    ret = callLumo(LUMO_ENTRY(lumoDeviceGetDeviceByTopologyLevel), modules_.device, level, count + 1,
                   handles.data());
    if (ret != LUMO_RETURN_SUCCESS) return ret;
    std::erase(handles, nullptr);
  }
  devices.clear();
  for (auto* const handle : handles) {
    devices.push_back(std::make_shared<LumoAccessDevice>(LumoModuleSet{.device = handle}));
  }
  return ret;
}

}  // namespace tolk
