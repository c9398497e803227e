#pragma once

#include "support/fuzz_input.h"

namespace tolk_fuzz {

/// Asks the driver what the input says: the way to it (protocol 1, protocol 0, misc node with negotiation,
/// render node, render node with negotiation), the chip family, then interface by interface its number in the
/// table of its node, its version where none is agreed on, and its parameters.
void tryDriver(FuzzInput& input);

}  // namespace tolk_fuzz
