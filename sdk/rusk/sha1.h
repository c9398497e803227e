#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace rusk {

/// The SHA-1 digest, as name-based uuids are made of it.
std::array<std::uint8_t, 20> sha1(std::span<const std::uint8_t> bytes);

}  // namespace rusk
