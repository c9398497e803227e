#include "affinity_text.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/log_capture.h"

// Sets of numbers as the kernel spells them.

namespace {

using lumo::affinityStringToUnsignedLong;
using lumo::cpuAffinityBitmaskToUnsignedLong;
using Mask = std::vector<unsigned long long>;

class AffinityTextTest : public testing::Test {
 protected:
  /// The mask, or nothing but the code.
  template <class Convert>
  Mask convert(Convert function, const std::string& text, unsigned count) {
    Mask mask(count, 77);
    code_ = function(text, count, mask.data());
    if (code_ != LUMO_RETURN_SUCCESS) {
      EXPECT_EQ(mask, Mask(count, 77)) << "untouched";
      return {};
    }
    return mask;
  }
  Mask fromBitmask(const std::string& text, unsigned count) {
    return convert(cpuAffinityBitmaskToUnsignedLong, text, count);
  }
  Mask fromList(const std::string& text, unsigned count) {
    return convert(affinityStringToUnsignedLong, text, count);
  }

  LumoReturn code_ = LUMO_RETURN_SUCCESS;
  tolk_test::LogCapture log_;
};

TEST_F(AffinityTextTest, OfTwoWordsTheFirstIsTheLowHalf) {
  EXPECT_EQ(fromBitmask("0000ffff,00000001", 1), (Mask{0x1'0000'FFFF}));
}

TEST_F(AffinityTextTest, ALoneWordHasNoHighHalf) {
  EXPECT_EQ(fromBitmask("ff", 1), (Mask{0xFF}));
  EXPECT_EQ(fromBitmask("1,2,3", 3), (Mask{0x2'0000'0001, 3, 0}));
}

TEST_F(AffinityTextTest, AMaskMustFit) {
  fromBitmask("1,2,3", 1);
  EXPECT_EQ(code_, LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(fromBitmask("ffffffff,ffffffff", 1), (Mask{~0ULL}));
}

TEST_F(AffinityTextTest, ATextThatIsNoMaskIsAFailedRead) {
  for (const char* text : {"fg", "1,", ",1", "100000000", "0x1", "-1", " 1", "1,,2"}) {
    fromBitmask(text, 4);
    EXPECT_EQ(code_, LUMO_RETURN_UNKNOWN_ERROR) << text;
  }
}

TEST_F(AffinityTextTest, AnEmptyTextIsLogged) {
  fromBitmask("", 1);
  EXPECT_EQ(code_, LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(rusk::LogLevel::kError, "affinity bitmask is empty"));
  fromList("", 1);
  EXPECT_EQ(code_, LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(rusk::LogLevel::kError, "affinity string is empty"));
}

TEST_F(AffinityTextTest, RangesAndNumbersSetTheirBits) {
  EXPECT_EQ(fromList("0", 1), (Mask{1}));
  EXPECT_EQ(fromList("0-3,5", 2), (Mask{0x2F, 0}));
  EXPECT_EQ(fromList("62-65", 2), (Mask{0xC000'0000'0000'0000, 3}));
  EXPECT_EQ(fromList("63,64", 2), (Mask{0x8000'0000'0000'0000, 1}));
  EXPECT_TRUE(log_.has(rusk::LogLevel::kInfo, "processing affinity string is  63,64 "));
}

TEST_F(AffinityTextTest, ANumberPastTheMaskDoesNotFit) {
  for (const char* text : {"64", "0-64", "0-4294967295", "1,4000000000"}) {
    fromList(text, 1);
    EXPECT_EQ(code_, LUMO_RETURN_INSUFFICIENT_SIZE) << text;
  }
}

TEST_F(AffinityTextTest, ATextThatIsNoListIsAFailedRead) {
  for (const char* text : {"-1", "3-1", "1-", "a", "1,", "99999999999", "1-2-3"}) {
    fromList(text, 4);
    EXPECT_EQ(code_, LUMO_RETURN_UNKNOWN_ERROR) << text;
  }
}

}  // namespace
