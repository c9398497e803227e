#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "command_error.h"
#include "rusk/text.h"

namespace tolk {

/// Looks up the names of a comma-separated list in a table of fields, each of which has a `name`. Null, or
/// the failure that tells the first name that is not there.
template <class Field, std::size_t size>
std::shared_ptr<Step> selectFields(std::string_view list, const Field (&table)[size],
                                   std::vector<const Field*>& selected) {
  selected.clear();
  for (const auto& name : rusk::split(list, ',')) {
    const auto* const field = std::ranges::find(table, name, &Field::name);
    if (field == std::end(table)) {
      return commandError(formatMessage("Error: the requested field \"%s\" is not valid", name.c_str()),
                          ExitCode::kBadArgument);
    }
    selected.push_back(field);
  }
  return nullptr;
}

}  // namespace tolk
