#include "linux/ap/device_uuid.h"

#include <array>
#include <bit>
#include <bitset>
#include <cstdio>
#include <span>

#include "rusk/sha1.h"

namespace kelp::linux_ {
namespace {

/// The 64 characters "0" and "1", highest bit first.
std::string bitText(std::uint64_t value) {
  return std::bitset<64>(value).to_string();
}

}  // namespace

std::uint64_t chipValue(const Efuse& efuse) {
  return (std::uint64_t{efuse.chipField1.value()} << 10) | (std::uint64_t{efuse.chipField23.value()} << 22) |
         std::rotl(std::uint64_t{efuse.chipField0.value()}, 32);
}

std::string makeUuidFromText(std::string_view text) {
  const auto digest = rusk::sha1(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
  std::string uuid;
  for (std::size_t i = 0; i < 16; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) {
      uuid += '-';
    }
    std::array<char, 3> digits{};
    std::snprintf(digits.data(), digits.size(), "%02x", digest[i]);
    uuid += digits.data();
  }
  return uuid;
}

std::string uuidOfChip(std::uint64_t chip) {
  return makeUuidFromText(bitText(chip));
}

std::string uuidOfInstance(std::uint64_t chip, std::uint32_t profileId, std::uint32_t parentMiscId) {
  return makeUuidFromText(bitText(chip) + bitText(profileId | (std::uint64_t{parentMiscId} << 32)));
}

std::string uuidOfNode(std::uint64_t intId) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "00000000-0000-0000-0000-%012llx",
                static_cast<unsigned long long>(intId));
  return text.data();
}

}  // namespace kelp::linux_
