#include "rusk/text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace {

using rusk::parseNumber;

TEST(Trim, CutsWhiteSpaceAtBothEndsOnly) {
  EXPECT_EQ(rusk::trim(" \t1 2\r\n\v\f"), "1 2");
  EXPECT_EQ(rusk::trim("plain"), "plain");
}

TEST(Trim, WhiteSpaceAloneBecomesEmpty) {
  EXPECT_EQ(rusk::trim(" \n"), "");
  EXPECT_EQ(rusk::trim(""), "");
}

TEST(Split, KeepsEmptyPieces) {
  EXPECT_EQ(rusk::split(",a,,b,", ','), (std::vector<std::string>{"", "a", "", "b", ""}));
}

TEST(Split, TextWithoutSeparatorIsOnePiece) {
  EXPECT_EQ(rusk::split("abc", ','), std::vector<std::string>{"abc"});
  EXPECT_EQ(rusk::split("", ','), std::vector<std::string>{""});
}

TEST(Split, NulIsACharacterLikeAnyOther) {
  EXPECT_EQ(rusk::split(std::string_view("a\0b", 3), '\0'), (std::vector<std::string>{"a", "b"}));
}

TEST(ParseNumber, WholeTextIsTheNumber) {
  EXPECT_EQ(parseNumber<int>("-12"), -12);
  EXPECT_EQ(parseNumber<unsigned>("007"), 7u);
  for (const char* text : {"", "-", " 1", "1 ", "1\n", "1x", "x", "+1", "1.0", "--1"}) {
    EXPECT_EQ(parseNumber<int>(text), std::nullopt) << '"' << text << '"';
  }
}

TEST(ParseNumber, NumberThatDoesNotFitIsNone) {
  EXPECT_EQ(parseNumber<std::uint8_t>("255"), 255);
  EXPECT_EQ(parseNumber<std::uint8_t>("256"), std::nullopt);
  EXPECT_EQ(parseNumber<std::int32_t>("2147483648"), std::nullopt);
  EXPECT_EQ(parseNumber<std::uint64_t>("18446744073709551615"), UINT64_MAX);
  EXPECT_EQ(parseNumber<std::uint64_t>("18446744073709551616"), std::nullopt);
  EXPECT_EQ(parseNumber<unsigned>("-1"), std::nullopt);
}

TEST(ParseNumber, HexadecimalPrefixMayStand) {
  EXPECT_EQ(parseNumber<unsigned>("0x1eD5", 16), 0x1ED5u);
  EXPECT_EQ(parseNumber<unsigned>("0X10", 16), 16u);
  EXPECT_EQ(parseNumber<unsigned>("ffffffff", 16), 0xFFFFFFFFu);
  EXPECT_EQ(parseNumber<int>("-a", 16), -10);
  for (const char* text : {"0x", "0x-1", "x1", "0x0x1", "0xg", "100000000"}) {
    EXPECT_EQ(parseNumber<unsigned>(text, 16), std::nullopt) << text;
  }
  EXPECT_EQ(parseNumber<int>("0x-1", 16), std::nullopt);
}

TEST(ParseNumber, DecimalHasNoPrefix) {
  EXPECT_EQ(parseNumber<unsigned>("0x10"), std::nullopt);
}

TEST(ParseNumber, ReadsNothingBehindTheText) {
  EXPECT_EQ(parseNumber<int>(std::string_view("123456", 3)), 123);
}

}  // namespace
