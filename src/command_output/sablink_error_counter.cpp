#include "command_output/sablink_error_counter.h"

namespace tolk {

std::shared_ptr<Step> SablinkErrorCounter::work() {
  if (!devices_.empty()) return SablinkOutput::work();
  std::cout << "no sablink error counters info." << std::endl;
  return nullptr;
}

}  // namespace tolk
