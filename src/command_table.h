#pragma once

#include <span>

#include "option_spec.h"

namespace tolk {

/// The grammar of the tool. The order of the rows decides which meaning of a shared name is tried first.
std::span<const CommandRow> fullCommandTable();

/// The grammar in a guest, where most commands have nothing to work on.
std::span<const CommandRow> guestCommandTable();

}  // namespace tolk
