#include "command_access/command_access_base.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <numeric>
#include <utility>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_access/reorder_indices.h"
#include "command_error.h"
#include "common_define.h"
#include "rusk/log_cipher.h"

namespace tolk {

namespace {

constexpr std::uint64_t kLogLines = 10'000;

std::shared_ptr<Step> failed(const StartFailure& failure) {
  return commandError(failure.message, failure.code);
}

}  // namespace

CommandAccessBase::CommandAccessBase(ParsedOptions parsedOptions) : options(std::move(parsedOptions)) {}

void CommandAccessBase::startLog() const {
  const auto debug = options.find("--debug");
  if (debug == options.end()) return;

  auto& file = frontLogFile();
  const auto& name = debug->second.front();
  // The fields are set once: when a command is repeated, another thread's line may be on its way.
  if (file.fileName != name) {
    file.fileName = name;
    file.maxLines = kLogLines;
    file.minLevel = rusk::kPassEverything;
    file.transform = rusk::encipherLine;
    file.useTransform = true;
  }
  if (!file.open()) {
    std::cout << "Error: Creating log file in unauthorized directory." << std::endl;
  }
  frontLogger().add(&file);
  LumoAccessFactory::configureLog();
}

std::uint32_t CommandAccessBase::numberOf(const char* key) const {
  const std::uint64_t asked = std::strtoul(options.at(key).front().c_str(), nullptr, 10);
  return static_cast<std::uint32_t>(
      std::min<std::uint64_t>(asked, std::numeric_limits<std::uint32_t>::max()));
}

std::shared_ptr<Step> CommandAccessBase::startLibrary() {
  accessFactory = std::make_shared<LumoAccessFactory>();
  switch (accessFactory->initializeLumo()) {
    case LUMO_RETURN_SUCCESS:
      return nullptr;
    case LUMO_RETURN_DRIVER_NOT_LOADED:
      return commandError("Error: failed to load driver.", ExitCode::kDriverNotLoaded);
    default:
      return commandError("Error: failed to initialize orvane-tolk.", ExitCode::kLibraryStartFailed);
  }
}

std::shared_ptr<Step> CommandAccessBase::countDevices(const StartWording& wording,
                                                      std::uint32_t& count) const {
  const LumoReturn ret = accessFactory->getAccessLibrary()->getAccessDeviceNum(count);
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "lumoLibraryCountDevice() failed, ret = " << ret;
    return failed(wording.noCount);
  }
  if (count > 0) return nullptr;
  if (wording.noDeviceLog != nullptr) TOLK_LOG(kError) << wording.noDeviceLog;
  return failed(wording.noDevice);
}

std::shared_ptr<Step> CommandAccessBase::orderDevices(const StartWording& wording, std::uint32_t count,
                                                      std::vector<std::uint32_t>& indices) const {
  return getReorderIndices(count, indices, *accessFactory) ? nullptr : failed(wording.noOrder);
}

std::shared_ptr<Step> CommandAccessBase::listDevices(const StartWording& wording,
                                                     std::vector<std::uint32_t>& indices) const {
  std::uint32_t count = 0;
  if (auto failure = countDevices(wording, count)) return failure;
  return orderDevices(wording, count, indices);
}

std::shared_ptr<LumoAccessDevice> CommandAccessBase::deviceAt(std::int64_t index) const {
  if (index > std::numeric_limits<std::uint32_t>::max()) return nullptr;
  return accessFactory->getAccessDeviceById(static_cast<std::uint32_t>(index));
}

std::shared_ptr<Step> CommandAccessBase::findDevice(std::uint32_t& index) const {
  const std::int64_t asked = std::strtol(options.at("-i").front().c_str(), nullptr, 10);
  if (!deviceAt(asked)) return noSuchDevice(asked);
  index = static_cast<std::uint32_t>(asked);
  return nullptr;
}

std::shared_ptr<Step> CommandAccessBase::findDevices(std::uint32_t count,
                                                     std::vector<std::uint32_t>& indices) const {
  if (hasOption("-i")) {
    indices.resize(1);
    return findDevice(indices.front());
  }
  indices.resize(count);
  std::iota(indices.begin(), indices.end(), 0u);
  return nullptr;
}

std::shared_ptr<Step> CommandAccessBase::noSuchDevice(std::int64_t index) {
  return commandError(formatMessage("Error: failed to find the specified GPU device, index = %d",
                                    static_cast<std::int32_t>(index)),
                      ExitCode::kBadArgument);
}

}  // namespace tolk
