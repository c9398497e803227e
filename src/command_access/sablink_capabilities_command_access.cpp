#include "command_access/sablink_capabilities_command_access.h"

#include <iterator>

#include "command_access/value_text.h"
#include "common_define.h"

namespace tolk {

namespace {

/// By the number of the capability.
constexpr const char* kCapabilities[] = {"P2P_ACCESS", "P2P_ATOMIC"};

const char* statusText(const LumoAccessDevice& device, std::uint32_t link, std::uint32_t capability) {
  std::uint32_t status = 0;
  if (device.getSablinkCapStatus(link, capability, status) != LUMO_RETURN_SUCCESS) return kNoValue;
  return status == 1 ? "true" : "false";
}

}  // namespace

std::shared_ptr<Step> SablinkCapabilitiesCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  return reportLinks(querySablinkCapInfo);
}

nlohmann::ordered_json SablinkCapabilitiesCommandAccess::querySablinkCapInfo(const LumoAccessDevice& device,
                                                                             std::uint32_t link) {
  auto entry = nlohmann::ordered_json::object();
  for (std::uint32_t capability = 0; capability < std::size(kCapabilities); ++capability) {
    entry[kCapabilities[capability]] = statusText(device, link, capability);
  }
  return entry;
}

}  // namespace tolk
