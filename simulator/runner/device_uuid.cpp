#include "device_uuid.h"

#include <algorithm>
#include <bit>
#include <cstdio>

namespace {

constexpr uint32_t kEfuseInterface = 62;
constexpr std::string_view kGuestMode = "1";

uint64_t chipValue(const std::array<uint64_t, 4>& fields) {
  const uint64_t low = fields[0] & 0xFFFFFFFF;
  const uint64_t high = fields[0] >> 32;
  return fields[1] << 10 | (fields[2] | fields[3] << 5) << 22 | low << 32 | high;
}

std::string asUuid(const uint8_t* bytes) {
  std::string text;
  for (size_t i = 0; i < 16; ++i) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02x", bytes[i]);
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += digits;
  }
  return text;
}

void addBlock(std::array<uint32_t, 5>& state, const uint8_t* block) {
  std::array<uint32_t, 80> words{};
  for (size_t i = 0; i < 16; ++i) {
    words[i] = uint32_t{block[4 * i]} << 24 | uint32_t{block[4 * i + 1]} << 16 |
               uint32_t{block[4 * i + 2]} << 8 | block[4 * i + 3];
  }
  for (size_t i = 16; i < 80; ++i) {
    words[i] = std::rotl(words[i - 3] ^ words[i - 8] ^ words[i - 14] ^ words[i - 16], 1);
  }
  auto [a, b, c, d, e] = state;
  for (size_t i = 0; i < 80; ++i) {
    const bool isFirst = i < 20;
    const bool isMajority = i >= 40 && i < 60;
    const uint32_t mixed = isFirst      ? (b & c) | (~b & d)
                           : isMajority ? (b & c) | (b & d) | (c & d)
                                        : b ^ c ^ d;
    const uint32_t constant = isFirst      ? 0x5A827999
                              : i < 40     ? 0x6ED9EBA1
                              : isMajority ? 0x8F1BBCDC
                                           : 0xCA62C1D6;
    const uint32_t next = std::rotl(a, 5) + mixed + e + constant + words[i];
    e = d;
    d = c;
    c = std::rotl(b, 30);
    b = a;
    a = next;
  }
  const std::array<uint32_t, 5> added{a, b, c, d, e};
  for (size_t i = 0; i < state.size(); ++i) state[i] += added[i];
}

}  // namespace

std::array<uint8_t, 20> sha1(std::string_view text) {
  std::array<uint32_t, 5> state{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
  std::string padded(text);
  padded += '\x80';
  while (padded.size() % 64 != 56) padded += '\0';
  const uint64_t bits = text.size() * 8;
  for (int shift = 56; shift >= 0; shift -= 8) padded += static_cast<char>(bits >> shift);
  for (size_t at = 0; at < padded.size(); at += 64) {
    addBlock(state, reinterpret_cast<const uint8_t*>(padded.data()) + at);
  }
  std::array<uint8_t, 20> digest{};
  for (size_t i = 0; i < digest.size(); ++i) {
    digest[i] = static_cast<uint8_t>(state[i / 4] >> (24 - 8 * (i % 4)));
  }
  return digest;
}

std::string deviceUuid(const Host& host, const Device& device, uint32_t misc) {
  if (host.driverMode == kGuestMode) return {};
  const bool listsEfuse = std::any_of(host.listed.begin(), host.listed.end(),
                                      [](const auto& listed) { return listed.name == kEfuseInterface; });
  const bool hasIdentity = device.family != Family::kTor1 && listsEfuse;
  const uint64_t value = hasIdentity ? chipValue(device.efuse) : 0;
  if (value == 0) {
    char text[40];
    std::snprintf(text, sizeof text, "00000000-0000-0000-0000-%012x", misc);
    return text;
  }
  std::string digits;
  for (int bit = 63; bit >= 0; --bit) digits += value >> bit & 1 ? '1' : '0';
  return asUuid(sha1(digits).data());
}
