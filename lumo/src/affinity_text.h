#pragma once

#include <string>

#include "lumo.h"

/// How the kernel spells sets of numbers, as 64-bit words. A text that is empty or no set gives the code 999, a mask that needs more than `count` words the code 6,
/// and `out` stays as it was; otherwise all `count` words are written.
namespace lumo {

/// Hexadecimal words of 32 bits, joined by commas, as they stand: of every two the first is the low half.
LumoReturn cpuAffinityBitmaskToUnsignedLong(const std::string& text, unsigned count, unsigned long long* out);

/// Ranges of decimal numbers, such as "0-15,32": number n becomes bit n % 64 of word n / 64.
LumoReturn affinityStringToUnsignedLong(const std::string& text, unsigned count, unsigned long long* out);

}  // namespace lumo
