#include "kelp_log.h"

#include <cerrno>

namespace kelp {
namespace {

constexpr int kPassNothing = 7;
constexpr unsigned kMaxLines = 10000;

}  // namespace

bool LogToCallBack::write(const std::string& line, int level) {
  if (level >= minLevel && callback != nullptr) {
    callback(line.c_str(), static_cast<unsigned>(line.size()));
  }
  return true;
}

LibraryLog::LibraryLog() {
  // The first line may be about a call whose errno is looked at after it.
  const int error = errno;
  file.maxLines = kMaxLines;
  for (rusk::LogTarget* target : {static_cast<rusk::LogTarget*>(&console),
                                  static_cast<rusk::LogTarget*>(&file),
                                  static_cast<rusk::LogTarget*>(&callback)}) {
    target->minLevel = kPassNothing;
    logger.add(target);
    target->open();
  }
  errno = error;
}

LibraryLog& libraryLog() {
  // Never destroyed: threads of a caller may still log while the process ends.
  static LibraryLog& log = *new LibraryLog;
  return log;
}

}  // namespace kelp
