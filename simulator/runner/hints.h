// Names that look like a mistyped one.
#ifndef HINTS_H
#define HINTS_H

#include <string>
#include <string_view>
#include <vector>

/// "; did you mean \"x\"?" for the candidate nearest to `name`, or nothing when none is near.
std::string hintFor(std::string_view name, const std::vector<std::string_view>& candidates);

#endif
