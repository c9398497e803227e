#include <gtest/gtest.h>

#include "linux/ap/access_point.h"
#include "old_driver.h"
#include "unit/cml/host_tree.h"

// Initialisation with a driver of protocol 0, whose identity and firmware come from the board's controller.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::get;
using tolk_test::OldDriver;
using tolk_test::put;

constexpr const char* kChipUuid = "69a595f8-b61c-1978-3817-019f596bec2d";
constexpr const char* kNodeUuid = "00000000-0000-0000-0000-000000000003";

class OldAccessPointTest : public tolk_test::HostTree {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(HostTree::SetUp());
    driver_.answer(0x802A4DB2, [](std::uint8_t* r) {
      put<std::uint16_t>(r, 0, 3);
      put<std::uint16_t>(r, 28, 0);
      put<std::uint16_t>(r, 30, 128);
      return 0;
    });
    driver_.answer(OldDriver::kCommand, [this](std::uint8_t* r) {
      const auto command = (get<std::uint64_t>(r, 0) >> 5) & 0x7F;
      std::memset(r + 8, 0, 256);
      if (command == 0x0B) {
        put<std::uint32_t>(r, 16, rtos_);
        return 0;
      }
      EXPECT_EQ(command, 0x08U);
      efuseForm_ = (get<std::uint64_t>(r, 0) >> 45) & 0xFF;
      put<std::uint32_t>(r, 12, startBit_);
      put<std::uint32_t>(r, 16, 1024);
      for (const auto& [word, bits] : words_) {
        put<std::uint32_t>(r, 20 + 4 * word, bits);
      }
      return efuseError_;
    });
  }

  static DevCuid cuid(DevArch arch) {
    return {.type = DevType::kPhysical, .arch = arch, .sbdf = 0x410000, .intId = 3};
  }

  std::string uuidOf(DevArch arch) {
    AccessPoint point(cuid(arch));
    EXPECT_TRUE(point.init().ok());
    return point.getDevDesc().value().uuid;
  }

  OldDriver driver_{{{8, 0}, {52, 0}, {62, 0}}};
  std::uint32_t rtos_ = 20001;
  std::uint32_t startBit_ = 2048;
  std::vector<std::pair<std::size_t, std::uint32_t>> words_{
      {7, 0x3456789A}, {8, 0x556AF012}, {14, 0x02000030}};
  int efuseError_ = 0;
  std::uint64_t efuseForm_ = 0;  ///< length value of the last command for the identity
};

TEST_F(OldAccessPointTest, UuidComesFromTheIdentityThatTheControllerReads) {
  EXPECT_EQ(uuidOf(DevArch::kFen1), kChipUuid);
  EXPECT_EQ(uuidOf(DevArch::kFen2), kChipUuid);
  EXPECT_EQ(efuseForm_, 0x23U);
}

TEST_F(OldAccessPointTest, FirstFamilyAnswersFromItsFirstBit) {
  startBit_ = 0;
  words_ = {{8, 0x3456789A}, {9, 0x556AF012}, {10, 0x70100000}};
  EXPECT_EQ(uuidOf(DevArch::kWold), kChipUuid);
  EXPECT_EQ(efuseForm_, 0x0EU) << "the family is known before the first command";
}

TEST_F(OldAccessPointTest, LastFamilyHasNoIdentityThere) {
  EXPECT_EQ(uuidOf(DevArch::kTor1), kNodeUuid);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> get efuse failed "));
}

TEST_F(OldAccessPointTest, IdentityOfZerosIsThatOfTheNode) {
  words_.clear();
  EXPECT_EQ(uuidOf(DevArch::kFen1), kNodeUuid);
}

TEST_F(OldAccessPointTest, ControllerThatNeverAnswersEndsInitialisation) {
  efuseError_ = EAGAIN;
  AccessPoint point(cuid(DevArch::kFen1));
  EXPECT_EQ(point.init().state(), KelpReturn::kFailure);
  EXPECT_EQ(point.getDevDesc().state(), KelpReturn::kNotSupported);
  EXPECT_EQ(driver_.slept, 1'000'000'000);
}

TEST_F(OldAccessPointTest, OldFirmwareIsWorthAWarning) {
  rtos_ = 20000;
  EXPECT_EQ(uuidOf(DevArch::kFen1), kChipUuid);
  EXPECT_TRUE(log_.has(LogLevel::kWarn, " fw version is out-of-date, please update ovbios!"));
}

}  // namespace
}  // namespace kelp::linux_
