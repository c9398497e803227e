#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "calls/subject.h"

namespace tolk_test {

/// A question that the library answers about a device, or a thing that it does with one.
struct Operation {
  std::string_view name; /**< of the function; of the second one for a list */
  std::string (*ask)(const Subject& on);
  std::vector<LumoReturn> (*nulls)(const Subject& on); /**< with each pointer left out in turn */
};

/// All that only reads. Whoever asks twice gets the same answer.
std::span<const Operation> readings();

/// All that changes something, or measures; each with arguments that are in range.
std::span<const Operation> changes();

/// The operation of that name; the program ends without one.
const Operation& operation(std::string_view name);

}  // namespace tolk_test
