#include "host_environment.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "common_define.h"

namespace tolk {

bool hostHasMdevBus() {
  std::error_code ignored;
  return std::filesystem::exists("/sys/class/mdev_bus", ignored);
}

bool isTargetEnv(const char* path) {
  std::ifstream file(path);
  if (!file) {
    TOLK_LOG(kError) << "failed to open env path";
    return false;
  }
  for (std::string line; std::getline(file, line);) {
    if (line == "envType: 0") return true;
  }
  return false;
}

}  // namespace tolk
