#include "command_access/sablink_status_command_access.h"

#include <iterator>

#include "command_access/value_text.h"
#include "common_define.h"

namespace tolk {

namespace {

/// By the number of the state. A state that is not known yet counts as down.
constexpr const char* kStates[] = {"LINK DOWN", "LINK UP", "LINK DOWNGRADE"};

}  // namespace

std::shared_ptr<Step> SablinkStatusCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  return reportLinks(querySablinkStatusInfo);
}

nlohmann::ordered_json SablinkStatusCommandAccess::querySablinkStatusInfo(const LumoAccessDevice& device,
                                                                          std::uint32_t link) {
  std::uint32_t state = 0;
  if (device.getSablinkState(link, state) != LUMO_RETURN_SUCCESS) return kNoValue;
  return kStates[state < std::size(kStates) ? state : 0];
}

}  // namespace tolk
