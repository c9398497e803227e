// The efuse words of a chip, from the fields that carry its identity.
#ifndef EFUSE_H
#define EFUSE_H

#include <array>
#include <cstdint>

#include "families.h"

constexpr size_t kEfuseWords = 32;

/// The window that a driver delivers. `fields` are 0 to 3, the chip's number; the device id goes into
/// the fields of the family that hold it. All zero for a family without an identity there.
std::array<uint32_t, kEfuseWords> makeEfuse(Family family, uint16_t deviceId,
                                            const std::array<uint64_t, 4>& fields);

#endif
