#include "rusk/log_line.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <sstream>

#include "rusk/time_stamp.h"

namespace rusk {
namespace {

constexpr std::size_t kUsualLength = 256;
constexpr std::size_t kLongestName = 100;

char letterOf(LogLevel level) {
  constexpr std::string_view kLetters = "TDIWEF";
  const auto index = static_cast<std::size_t>(level) - 1;
  return index < kLetters.size() ? kLetters[index] : 'U';
}

pid_t threadId() {
  thread_local const pid_t id = ::gettid();
  return id;
}

void appendName(std::string& text, std::string_view name) {
  if (name.size() > kLongestName) {
    text += "...";
    name.remove_prefix(name.size() - kLongestName);
  }
  text += name;
}

}  // namespace

LogLine::LogLine(std::string_view source, unsigned line, std::string_view function, LogLevel level,
                 const Logger& logger)
    : logger_(logger), level_(level), errno_(errno) {
  text_.reserve(kUsualLength);
  text_ += '[';
  appendTimeStamp(text_, std::chrono::system_clock::now());
  text_ += "] ";
  text_ += letterOf(level);
  text_ += '/';
  appendNumber(text_, threadId());
  text_ += ' ';
  appendName(text_, source);
  text_ += ':';
  appendNumber(text_, line);
  text_ += ':';
  appendName(text_, function);
  text_ += " >> ";
}

LogLine::~LogLine() {
  try {
    logger_.write(text_, static_cast<int>(level_));
  } catch (...) {
    // A log that fails must not end the program it reports on.
  }
  errno = errno_;
}

void LogLine::appendPrinted(const void* item, Print* print) {
  std::ostringstream out;
  print(out, item);
  text_ += std::move(out).str();
}

}  // namespace rusk
