#include "rusk/sha1.h"

#include <mbedtls/sha1.h>

namespace rusk {

std::array<std::uint8_t, 20> sha1(std::span<const std::uint8_t> bytes) {
  std::array<std::uint8_t, 20> digest{};
  mbedtls_sha1_ret(bytes.data(), bytes.size(), digest.data());
  return digest;
}

}  // namespace rusk
