#include "rusk/log_cipher.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

std::string bytesOf(std::string_view hex) {
  std::string bytes;
  for (std::size_t index = 0; index + 1 < hex.size(); index += 2) {
    bytes += static_cast<char>(std::stoi(std::string(hex.substr(index, 2)), nullptr, 16));
  }
  return bytes;
}

// The cipher texts were made with another implementation of the cipher.

TEST(LogCipher, ShortLineIsFilledToOneBlock) {
  EXPECT_EQ(rusk::encipherLine("hello"), bytesOf("10000000"
                                                 "a62f25c2c4e7f2b3f8149aa7b0945f54"
                                                 "00"));
}

TEST(LogCipher, LineOfWholeBlocksStaysAsLongAsItIs) {
  EXPECT_EQ(rusk::encipherLine("0123456789abcdef"), bytesOf("10000000"
                                                            "7bc4c42bcacd0cb82491c6620dff5a92"
                                                            "00"));
}

TEST(LogCipher, LaterBlocksAreChained) {
  EXPECT_EQ(rusk::encipherLine("0123456789abcdef!"),
            bytesOf("20000000"
                    "7bc4c42bcacd0cb82491c6620dff5a9280c746ac4b0d372bf71b2fbaefba35a8"
                    "00"));
}

TEST(LogCipher, EmptyLineIsAnEmptyRecord) {
  EXPECT_EQ(rusk::encipherLine(""), std::string(5, '\0'));
}

TEST(LogCipher, LengthStandsLeastSignificantByteFirst) {
  const std::string record = rusk::encipherLine(std::string(70000, 'x'));
  ASSERT_EQ(record.size(), 4u + 70000 + 1);
  EXPECT_EQ(record.substr(0, 4), bytesOf("70110100"));
  EXPECT_EQ(record.back(), '\0');
}

TEST(LogCipher, EachLineStartsAnew) {
  const std::string first = rusk::encipherLine("same");
  rusk::encipherLine("other");
  EXPECT_EQ(rusk::encipherLine("same"), first);
}

TEST(LogCipher, ThreadsEncipherSideBySide) {
  const std::string expected = bytesOf("10000000a62f25c2c4e7f2b3f8149aa7b0945f5400");
  std::vector<int> wrong(4);
  std::vector<std::thread> threads;
  for (int& count : wrong) {
    threads.emplace_back([&] {
      for (int line = 0; line < 500; ++line) count += rusk::encipherLine("hello") != expected;
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(wrong, std::vector<int>(4));
}

}  // namespace
