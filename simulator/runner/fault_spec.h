// Faults: what the user writes, as the model's table takes it.
//
//   TARGET [ "(" SELECTION ")" ] [ "#" WHEN ] ":" EFFECT
#ifndef FAULT_SPEC_H
#define FAULT_SPEC_H

#include <optional>
#include <string>
#include <string_view>

#include "sim_image.h"

struct FaultSpec {
  SimFault fault;       // without the offsets of the two texts
  std::string pattern;  // glob, empty for any
  std::string text;     // of SIM_EFFECT_TEXT
};

/// Throws HostError that names the fault and what is wrong with it.
FaultSpec parseFault(const std::string& written);

/// Number of an errno by its name, such as "EIO"; nothing for an unknown one.
std::optional<int> errnoFromName(std::string_view name);

/// The part of --help that tells the grammar.
std::string_view faultHelp();

#endif
