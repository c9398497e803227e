#include "rusk/sha1.h"

#include <gtest/gtest.h>

#include <span>
#include <string>
#include <string_view>

namespace {

std::string digestOf(std::string_view text) {
  std::string hex;
  for (const unsigned byte : rusk::sha1({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()})) {
    hex += "0123456789abcdef"[byte >> 4];
    hex += "0123456789abcdef"[byte & 15];
  }
  return hex;
}

TEST(Sha1, KnownDigests) {
  EXPECT_EQ(digestOf("abc"), "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(digestOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "84983e441c3bd26ebaae4aa1f95129e5e54670f1");
}

TEST(Sha1, NoBytes) {
  EXPECT_EQ(digestOf(""), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
}

}  // namespace
