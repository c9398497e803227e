#include "command_access/codec_sessions_command_access.h"

#include <string>
#include <utility>

#include "command_access/codec_name.h"
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

  SessionStates states;
  if (const LumoReturn ret = ((*device).*kind_.states)(states); ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << kind_.noStates << ret;
    return ret;
  }
  for (const auto& [session, state] : states) {
    if (state != LUMO_VPU_SESSION_ACTIVE) continue;
    LumoVpuSessionMetrics metrics{};
    if (const LumoReturn ret = ((*device).*kind_.metrics)(session, metrics); ret != LUMO_RETURN_SUCCESS) {
      TOLK_LOG(kError) << kind_.noMetrics << ret;
      return ret;
    }
    document[std::to_string(index)][std::to_string(session)] = {
        {"Pid", std::to_string(metrics.pid)},          {"Codec Type", codecName(metrics.codec)},
        {"hResolution", std::to_string(metrics.hRes)}, {"vResolution", std::to_string(metrics.vRes)},
        {"frameRate", std::to_string(metrics.fps)},    {"bitRate(kbps)", std::to_string(metrics.bitrate)}};
  }
  return LUMO_RETURN_SUCCESS;
}

}  // namespace tolk
