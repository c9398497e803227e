#include "common_define.h"

namespace tolk {

rusk::Logger& frontLogger() {
  static rusk::Logger logger;
  return logger;
}

rusk::LogToFile& frontLogFile() {
  static rusk::LogToFile file;
  return file;
}

}  // namespace tolk
