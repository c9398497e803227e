#include "command_factory.h"

#include <cstdint>
#include <optional>
#include <string>

#include "command_error.h"
#include "event_queue.h"
#include "rusk/text.h"

namespace tolk {

namespace {

/// The asked interval in milliseconds; wraps, as the sleep takes its low 32 bits alone.
std::optional<std::uint64_t> loopIntervalMs(const ParsedOptions& options, unsigned loopUnitMs) {
  if (loopUnitMs == 0) return std::nullopt;
  const auto interval = [&options](const char* key, std::uint64_t unitMs) -> std::optional<std::uint64_t> {
    const auto found = options.find(key);
    if (found == options.end()) return std::nullopt;
    return static_cast<std::uint64_t>(std::stol(found->second.front())) * unitMs;
  };
  const auto byLoop = interval("-l", loopUnitMs);
  return byLoop ? byLoop : interval("-lms", 1);
}

void splitIds(ParsedOptions& options) {
  const auto found = options.find("-i");
  if (found != options.end()) found->second = rusk::split(found->second.front(), ',');
}

}  // namespace

std::shared_ptr<Step> CommandFactory::operator()(ParsedOptions options) const {
  const auto intervalMs = loopIntervalMs(options, loopUnitMs);
  if (make == nullptr) return commandError("Error: not support this command", ExitCode::kUnsupported);
  if (splitsIds) splitIds(options);

  if (!intervalMs) {
    postEvent(std::make_shared<ExitEvent>(ExitCode::kSuccess));
    return make(std::move(options));
  }
  auto command = make(std::move(options));
  postEvent(
      std::make_shared<StartTimerEvent>(*intervalMs, -1, std::make_shared<RepeatPipeLineEvent>(command)));
  return command;
}

}  // namespace tolk
