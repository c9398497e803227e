#include "command_error.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <iostream>
#include <utility>

#include "event_queue.h"

namespace tolk {

CommandError::CommandError(std::string text, ExitCode exitCode) : message(std::move(text)), code(exitCode) {}

std::shared_ptr<Step> CommandError::work() {
  postEvent(std::make_shared<ExitEvent>(code));
  std::cout << message << std::endl;
  return nullptr;
}

std::shared_ptr<Step> commandError(std::string message, ExitCode code) {
  return std::make_shared<CommandError>(std::move(message), code);
}

std::string formatMessage(const char* format, ...) {
  std::array<char, 1000> text;
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  return text.data();
}

}  // namespace tolk
