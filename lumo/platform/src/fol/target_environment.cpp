#include "target_environment.h"

#include <fstream>
#include <string>

namespace kelp {

bool readIsTargetEnvironment(const char* path) {
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (line == "envType: 0") {
      return true;
    }
  }
  return false;
}

}  // namespace kelp
