#pragma once

#include <string>

#include "lumo.h"

/// How the kernel spells sets of numbers, as masks: number n is bit n % 64 of word n / 64.
///
/// A text that is empty or no set gives the code 999, a mask that needs more than `count` words the code 6,
/// and `out` stays as it was; otherwise all `count` words are written.
namespace lumo {

/// Hexadecimal words of 32 bits, joined by commas; of every two the first is the low half of a word.
LumoReturn cpuAffinityBitmaskToUnsignedLong(const std::string& text, unsigned count, unsigned long long* out);

/// Ranges of decimal numbers, such as "0-15,32".
LumoReturn affinityStringToUnsignedLong(const std::string& text, unsigned count, unsigned long long* out);

}  // namespace lumo
