#pragma once

#include "lumo.h"

namespace tolk {

/// Writes a PCI address with eight digits of domain, as reports show it: "0000:41:00.0" becomes
/// "00000000:41:00.0". An empty text stays empty, and so does one that is no address stay as it is.
void widenPciDomain(char (&sbdf)[LUMO_PCI_SBDF_SIZE]);

}  // namespace tolk
