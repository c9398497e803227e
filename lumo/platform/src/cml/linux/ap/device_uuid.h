#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "board_values.h"

// The uuid of a device. The driver forms it alike and names its fault records by it, so every bit of
// this is fixed.

namespace kelp::linux_ {

/// The 64 bits that tell one chip from every other; 0 when none were burnt in.
std::uint64_t chipValue(const Efuse& efuse);

/// SHA-1 of a text as an 8-4-4-4-12 uuid of its first 16 bytes; no version bits are set.
std::string makeUuidFromText(std::string_view text);

std::string uuidOfChip(std::uint64_t chip);
/// `profileId` is the whole id of the instance's profile, its index in the parent included.
std::string uuidOfInstance(std::uint64_t chip, std::uint32_t profileId, std::uint32_t parentMiscId);
/// The uuid of a device without chip value: its node number.
std::string uuidOfNode(std::uint64_t intId);

}  // namespace kelp::linux_
