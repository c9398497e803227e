#include "command_output/version_output.h"

#include "common_define.h"

namespace tolk {

std::shared_ptr<Step> VersionOutput::work() {
  TOLK_LOG(kTrace);
  std::cout << "orvane-tolk version : " << kVersion << std::endl;
  return nullptr;
}

}  // namespace tolk
