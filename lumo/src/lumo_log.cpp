#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include "kelp_log.h"
#include "lumo.h"

namespace {

/// Minimum level of a target for each level of the interface.
constexpr std::array<int, 5> kTargetLevels{7, 6, 5, 4, 3};

bool isLevel(unsigned level) {
  return level < kTargetLevels.size();
}

unsigned levelOf(const rusk::LogTarget& target) {
  const auto found = std::ranges::find(kTargetLevels, target.minLevel);
  return static_cast<unsigned>(found - kTargetLevels.begin()) % kTargetLevels.size();
}

}  // namespace

LumoReturn lumoLibrarySetLogConfiguration(const LumoLogConfiguration* configuration) {
  if (configuration == nullptr || !isLevel(configuration->consoleLevel) ||
      !isLevel(configuration->fileLevel) || !isLevel(configuration->callbackLevel)) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  const std::size_t length = strnlen(configuration->filePath, LUMO_LOG_PATH_SIZE);
  if (length == LUMO_LOG_PATH_SIZE) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  kelp::LibraryLog& log = kelp::libraryLog();
  log.file.fileName.assign(configuration->filePath, length);
  log.file.maxLines = configuration->maxFileLines;
  if (!log.file.open() && length != 0) {
    return LUMO_RETURN_NOT_SUPPORTED;
  }
  log.console.minLevel = kTargetLevels[configuration->consoleLevel];
  log.file.minLevel = kTargetLevels[configuration->fileLevel];
  log.callback.minLevel = kTargetLevels[configuration->callbackLevel];
  log.callback.callback = configuration->callback;
  return LUMO_RETURN_SUCCESS;
}

LumoReturn lumoLibraryGetLogConfiguration(LumoLogConfiguration* configuration) {
  if (configuration == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  const kelp::LibraryLog& log = kelp::libraryLog();
  *configuration = {};
  configuration->consoleLevel = levelOf(log.console);
  configuration->fileLevel = levelOf(log.file);
  log.file.fileName.copy(configuration->filePath, LUMO_LOG_PATH_SIZE - 1);
  configuration->maxFileLines = static_cast<unsigned>(log.file.maxLines);
  configuration->callbackLevel = levelOf(log.callback);
  configuration->callback = log.callback.callback;
  return LUMO_RETURN_SUCCESS;
}

LumoReturn lumoLogSetConfiguration(const LumoLogConfiguration* configuration) {
  return lumoLibrarySetLogConfiguration(configuration);
}

LumoReturn lumoLogGetConfiguration(LumoLogConfiguration* configuration) {
  return lumoLibraryGetLogConfiguration(configuration);
}
