#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "exit_code.h"
#include "parsed_options.h"
#include "step.h"

namespace tolk {

class LumoAccessDevice;
class LumoAccessFactory;

/// What a command says when a step of its start fails, and the exit status.
struct StartFailure {
  const char* message;
  ExitCode code;
};

/// The usual words of the start; a command with other ones names those alone.
struct StartWording {
  StartFailure noCount{"Error: failed to get the number of GPU device", ExitCode::kEnumerationFailed};
  StartFailure noDevice{"Error: No OV GPU device found.", ExitCode::kNoDevice};
  StartFailure noOrder{"Error: failed to find GPU devices", ExitCode::kEnumerationFailed};
  const char* noDeviceLog = nullptr;  ///< what the log says when there is no device, nothing by default
};

inline constexpr const char* kNotAvailable =
    "Error: the requested operation is not available on target device";

/// Base of the commands: a step that gathers what its output then prints. It owns its copy of the
/// options, so a repeat by "-l" runs with the same ones.
class CommandAccessBase : public Step {
 public:
  explicit CommandAccessBase(ParsedOptions parsedOptions);

 protected:
  /// Turns the log on if "--debug" names a file; comes first in the `work` of every command. A file that
  /// cannot be opened is told to the user, and the command runs on.
  void startLog() const;

  bool hasOption(const char* key) const { return options.contains(key); }

  /// An option's number. One that no call can take becomes the largest one, which no device knows.
  std::uint32_t numberOf(const char* key) const;

  /// Starts the library in a factory of this run's own. Here as below, null stands for success, and
  /// anything else is the step that `work` has to return.
  std::shared_ptr<Step> startLibrary();

  /// Ends the library, and with it every adaptor. A command that loops does so as soon as it has gathered
  /// everything: while it sleeps it holds no device, which another program may want to reset.
  void endLibrary() { accessFactory.reset(); }

  /// Counts the devices; none at all is a failure.
  std::shared_ptr<Step> countDevices(const StartWording& wording, std::uint32_t& count) const;

  /// Puts the counted devices in display order.
  std::shared_ptr<Step> orderDevices(const StartWording& wording, std::uint32_t count,
                                     std::vector<std::uint32_t>& indices) const;

  /// Counts the devices and puts them in display order.
  std::shared_ptr<Step> listDevices(const StartWording& wording, std::vector<std::uint32_t>& indices) const;

  /// The device that the user asked for by index; null when there is none.
  std::shared_ptr<LumoAccessDevice> deviceAt(std::int64_t index) const;

  /// The device that "-i" names first; other ones behind it do not count.
  std::shared_ptr<Step> findDevice(std::uint32_t& index) const;

  /// The device that "-i" names first, or without it all devices in the library's order.
  std::shared_ptr<Step> findDevices(std::uint32_t count, std::vector<std::uint32_t>& indices) const;

  /// The failure of a device that was asked for by index. A script reads the number as 32 bits.
  static std::shared_ptr<Step> noSuchDevice(std::int64_t index);

  const ParsedOptions options;
  std::shared_ptr<LumoAccessFactory> accessFactory;  ///< null while the library does not run
};

}  // namespace tolk
