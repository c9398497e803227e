#include "command_output/help_output.h"

#include <iomanip>

#include "command_output/help_text.h"
#include "driver_mode.h"

namespace tolk {

std::shared_ptr<Step> HelpOutput::work() {
  const LeftAlignment alignment;
  const bool shortText = driverMode() == DriverMode::kGuest;
  for (const auto& line : helpText()) {
    if (shortText && !line.inGuest) continue;
    std::cout << std::setw(line.width) << line.left << line.right << '\n';
  }
  std::cout << std::flush;
  return nullptr;
}

}  // namespace tolk
