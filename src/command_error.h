#pragma once

#include <string>

#include "exit_code.h"
#include "step.h"

namespace tolk {

/// The end of a run that failed: prints one line on standard output and makes `code` the exit status,
/// whatever the command's factory posted before. The only way in which a step reports a failure.
class CommandError : public Step {
 public:
  CommandError(std::string text, ExitCode exitCode);

  std::shared_ptr<Step> work() override;

  const std::string message;
  const ExitCode code;
};

/// printf's format of a refused value; `%s` is the option.
inline constexpr const char* kIllegalValue =
    "Illegal value for '%s' options. Please run 'orvane-tolk -h' for help.";

/// The step to return for a failure.
std::shared_ptr<Step> commandError(std::string message, ExitCode code);

/// A message made like printf's. Of a longer one the first 999 bytes are kept.
[[gnu::format(printf, 1, 2)]] std::string formatMessage(const char* format, ...);

}  // namespace tolk
