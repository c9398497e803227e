// The PCI configuration space of a function, as the bus shows it.
#ifndef CONFIG_SPACE_H
#define CONFIG_SPACE_H

#include <optional>
#include <string>

#include "host.h"

/// 256 bytes: header, command word, BARs, and a capability list that ends in a PCI Express capability if
/// the function has one.
std::string makeConfigSpace(const PciFunction& function);

/// The sysfs file `resource`.
std::string makeResourceFile(const PciFunction& function);

/// Places the BARs one behind the other in a window of the function's own.
void placeBars(PciFunction& function, size_t index);

/// "16.0 GT/s PCIe".
std::string linkSpeedText(double speed);

/// The code of a link speed in GT/s; nothing for a speed that the bus does not have.
std::optional<unsigned> linkSpeedCode(double speed);

#endif
