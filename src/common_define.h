#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <string_view>
#include <system_error>
#include <type_traits>

#include "rusk/log_line.h"
#include "rusk/log_to_file.h"
#include "rusk/logger.h"

namespace tolk {

inline constexpr std::string_view kVersion = "2.4.0";

/// The front end's log. It has no target until the user names a file; the library's lines come to it
/// through a callback, so that one file holds both. Both objects last until the process ends.
rusk::Logger& frontLogger();
rusk::LogToFile& frontLogFile();

/// A line of the front end's log: `TOLK_LOG(kError) << "..." << value;`
#define TOLK_LOG(level) RUSK_LOG(::tolk::frontLogger(), ::rusk::LogLevel::level)

/// What a library call that took too long counts as.
inline constexpr int kLumoCallTimedOut = 11;
inline constexpr std::chrono::milliseconds kLumoCallTimeout{10'000};

/// Calls a function of the library on a thread of its own and returns its status, or the status above
/// when it took longer than `timeout`. It always waits for the call to end, since the call writes into
/// the caller's buffers: a hanging driver shows in the log, not in an early return.
template <class Function, class... Arguments>
auto wrapperLumo(std::chrono::milliseconds timeout, std::string_view name, Function function,
                 Arguments... arguments) {
  using Status = std::invoke_result_t<Function, Arguments...>;
  std::future<Status> call;
  try {
    call = std::async(std::launch::async, function, arguments...);
  } catch (const std::system_error&) {
    // Where no thread is to be had the caller's must do: it would only wait for the other anyway.
    return std::invoke(function, arguments...);
  }
  if (call.wait_for(timeout) == std::future_status::ready) return call.get();
  RUSK_LOG_AS(frontLogger(), rusk::LogLevel::kError, "common_define", "wrapperLumo") << name << " timeout";
  return static_cast<Status>(kLumoCallTimedOut);
}

/// @param name the function's name as the log shall tell it
template <class Function, class... Arguments>
auto wrapperLumo(std::string_view name, Function function, Arguments... arguments) {
  return wrapperLumo(kLumoCallTimeout, name, function, arguments...);
}

}  // namespace tolk
