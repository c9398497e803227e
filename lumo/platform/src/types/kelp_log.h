#pragma once

#include <mutex>

#include "rusk/log_line.h"
#include "rusk/log_target.h"
#include "rusk/log_to_console.h"
#include "rusk/log_to_file.h"
#include "rusk/logger.h"

namespace kelp {

/// Hands each line to a function of the library's caller. The message ends in a NUL.
class LogToCallBack final : public rusk::LogTarget {
 public:
  using CallBack = void (*)(const char* message, unsigned length);

  bool write(const std::string& line, int level) override;
  bool open() override { return true; }

  CallBack callback = nullptr;
};

/// The library's log: one process-wide object, so that it can be configured before the library is
/// started. All three targets pass nothing until they are given a level.
struct LibraryLog {
  LibraryLog();

  rusk::LogToConsole console;
  rusk::LogToFile file;
  LogToCallBack callback;
  rusk::Logger logger;
};

LibraryLog& libraryLog();

}  // namespace kelp

/// A line of the library's log: `KELP_LOG(kError) << "..." << value;`
#define KELP_LOG(level) RUSK_LOG(::kelp::libraryLog().logger, ::rusk::LogLevel::level)
