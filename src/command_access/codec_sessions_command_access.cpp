#include "command_access/codec_sessions_command_access.h"

#include <string>
#include <utility>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_error.h"
#include "command_output/codec_session_output.h"
#include "common_define.h"
#include "driver_mode.h"

namespace tolk {

CodecSessionsCommandAccess::CodecSessionsCommandAccess(ParsedOptions parsedOptions, const CodecSessions& kind)
    : CommandAccessBase(std::move(parsedOptions)), kind_(kind) {}

std::shared_ptr<Step> CodecSessionsCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  if (driverMode() == DriverMode::kVirtualisationHost) {
    return commandError("Error: command option is not supported by installed driver.",
                        ExitCode::kUnsupported);
  }
  if (auto failure = startLibrary()) return failure;
  std::uint32_t count = 0;
  if (auto failure = countDevices(StartWording{}, count)) return failure;
  std::vector<std::uint32_t> indices;
  if (auto failure = findDevices(count, indices)) return failure;

  auto document = nlohmann::ordered_json::object();
  for (const auto index : indices) {
    if (querySessions(index, document) != LUMO_RETURN_SUCCESS) {
      return commandError("Error: query decoder sessions of vpu failed.", ExitCode::kQueryFailed);  // sic
    }
  }
  endLibrary();
  return std::make_shared<CodecSessionOutput>(std::move(document));
}

LumoReturn CodecSessionsCommandAccess::querySessions(std::uint32_t index,
                                                     nlohmann::ordered_json& document) const {
  const auto device = accessFactory->getAccessDeviceById(index);
  if (!device) return LUMO_RETURN_NOT_FOUND;
  return queryActiveSessions(*device, kind_, std::to_string(index), document);
}

}  // namespace tolk
