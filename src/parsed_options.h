#pragma once

#include <string>
#include <unordered_map>
#include <vector>

namespace tolk {

/// What the command line said, and all that a command gets to see of it: the option's short name, or its
/// long name if it has no short one, to the values as typed. A flag and a sub-command have no values.
using ParsedOptions = std::unordered_map<std::string, std::vector<std::string>>;

}  // namespace tolk
