#include "in_process/lumo_fixture.h"

// The memory, without its error correction.

namespace {

using kelp::DevArch;
using kelp::DevType;
using kelp::KelpReturn;
using rusk::LogLevel;
using tolk_test::LumoFixture;

class MemoryOperationsTest : public LumoFixture {
 protected:
  void setUsage(kelp::Stated<unsigned long> total, kelp::Stated<unsigned long> used) {
    kelp::MemoryUsage usage;
    usage.total = total;
    usage.used = used;
    platform_.answer<kelp::QueryMemUsageCmd>(usage);
  }

  unsigned number_ = 99;
  unsigned long long bytes_ = 99;
  char text_[32] = "before";
};

TEST_F(MemoryOperationsTest, UtilizationIsAWholeShare) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  const std::tuple<unsigned long, unsigned long, unsigned> rows[] = {
      {0, 100, 0},
      {1, 3, 33},
      {199, 100, 199},
      {0xFFFF'FFFF'FFFF'FFFF, 0xFFFF'FFFF'FFFF'FFFF, 100},
      {0xFFFF'FFFF'FFFF'FFFF, 1, ~0U},
  };
  for (const auto& [used, total, percent] : rows) {
    setUsage(total, used);
    EXPECT_EQ(lumoMemoryGetUtilization(memory(handle_), &number_), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(number_, percent) << used << " of " << total;
  }
}

TEST_F(MemoryOperationsTest, NoMemoryHasNoUtilization) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  setUsage(0UL, 0UL);
  EXPECT_EQ(lumoMemoryGetUtilization(memory(handle_), &number_), LUMO_RETURN_UNKNOWN_ERROR);
  setUsage(0UL, 5UL);
  EXPECT_EQ(lumoMemoryGetUtilization(memory(handle_), &number_), LUMO_RETURN_UNKNOWN_ERROR);
  setUsage(KelpReturn::kNotSupported, 5UL);
  EXPECT_EQ(lumoMemoryGetUtilization(memory(handle_), &number_), LUMO_RETURN_NOT_SUPPORTED);
  platform_.answer<kelp::QueryMemUsageCmd>(KelpReturn::kBusy);
  EXPECT_EQ(lumoMemoryGetUtilization(memory(handle_), &number_), LUMO_RETURN_BUSY);
  EXPECT_EQ(number_, 99U);
}

TEST_F(MemoryOperationsTest, OlderDriversKnowTwoFiguresMore) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoMemoryGetSystemTotal(memory(handle_), &bytes_), LUMO_RETURN_UNKNOWN_ERROR);
  kelp::MemoryUsage usage;
  platform_.answer<kelp::QueryMemUsageCmd>(usage);
  EXPECT_EQ(lumoMemoryGetSystemTotal(memory(handle_), &bytes_), LUMO_RETURN_NOT_SUPPORTED);
  usage.systemTotal = 11UL;
  usage.guestReserved = 12UL;
  platform_.answer<kelp::QueryMemUsageCmd>(usage);
  EXPECT_EQ(lumoMemoryGetSystemTotal(memory(handle_), &bytes_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(bytes_, 11U);
  EXPECT_EQ(lumoMemoryGetGuestReserved(memory(handle_), &bytes_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(bytes_, 12U);
}

TEST_F(MemoryOperationsTest, OnlyAVgpuHasTheMemoryOfAGuest) {
  startWith(DevType::kPhysical, DevArch::kFen2);
  EXPECT_EQ(lumoMemoryGetGuestTotal(memory(handle_), &bytes_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_TRUE(log_.has(LogLevel::kError, ":getGuestTotal >> Feat not supported ! "));
  EXPECT_EQ(lumoMemoryGetGuestUsed(memory(handle_), &bytes_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_TRUE(log_.has(LogLevel::kError, ":getGuestUsed >> Feat not supported ! "));
  EXPECT_EQ(lumoMemoryGetGuestUtilization(memory(handle_), &number_), LUMO_RETURN_NOT_SUPPORTED);
}

TEST_F(MemoryOperationsTest, WhatIsBuiltIn) {
  kelp::MemorySpec spec;
  spec.type = 1U;
  spec.vendor = std::string("Micron");
  spec.channelCount = 8U;
  spec.channelWidth = 32U;
  platform_.answer<kelp::QueryDdrCapCmd>(spec);
  platform_.answer<kelp::QueryClockCmd>(2'000'000'000UL);
  platform_.answer<kelp::QueryMemEdcCmd>(
      kelp::MemoryEdc{.readErrors = 1, .writeErrors = 2, .readRetries = 3, .writeRetries = 4});
  startWith(DevType::kPhysical, DevArch::kTor1);
  LumoMemory* const own = memory(handle_);
  EXPECT_EQ(lumoMemoryGetBusWidth(own, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 256U);
  EXPECT_EQ(lumoMemoryGetSpeed(own, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 16000U);
  EXPECT_EQ(lumoMemoryGetBandwidth(own, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 512U);
  EXPECT_EQ(lumoMemoryGetType(own, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 1U);
  EXPECT_EQ(lumoMemoryGetVendor(own, text_, sizeof text_), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(text_, "Micron");
  EXPECT_EQ(lumoMemoryGetVendor(own, text_, 6), LUMO_RETURN_INSUFFICIENT_SIZE);
  LumoMemoryEdcCounters edc{};
  EXPECT_EQ(lumoMemoryGetEdcCounters(own, &edc), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(edc.readErrors, 1U);
  EXPECT_EQ(edc.writeErrors, 2U);
  EXPECT_EQ(edc.readRetries, 3U);
  EXPECT_EQ(edc.writeRetries, 4U);
}

}  // namespace
