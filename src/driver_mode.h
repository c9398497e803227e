#pragma once

#include <cstdint>
#include <string_view>

namespace tolk {

/// How the kernel module was loaded, in the module parameter's own numbers.
enum class DriverMode : std::int32_t {
  kOther = -2,  ///< no module, an unreadable parameter or another number
  kBareHost = -1,
  kVirtualisationHost = 0,
  kGuest = 1,
};

/// The mode at the start of the program. Written once, before the worker exists.
DriverMode driverMode();
void setDriverMode(DriverMode mode);

/// Reads the module parameter afresh.
DriverMode readDriverMode();

/// The mode that the parameter's text stands for; white space around it does not count.
DriverMode driverModeOf(std::string_view text);

}  // namespace tolk
