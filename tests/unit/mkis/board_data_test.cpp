#include <sys/mman.h>

#include <array>

#include "linux/ap/misc/mkis_protocol_v0/misc_kernel_accessor_v0.h"
#include "old_driver.h"
#include "support/log_capture.h"

// What old drivers tell of the board and of the memory's errors: in a command's reply, in a shared buffer or
// in a record. Numbers, sizes and offsets are typed from the driver's tables.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::Fields;
using tolk_test::get;
using tolk_test::LogCapture;
using tolk_test::OldDriver;
using tolk_test::put;
using enum MiscMkisIntfName;
using Steps = std::vector<std::string>;

constexpr std::uint32_t kAlloc = 0xC0104D03;
constexpr std::uint32_t kFree = 0xC0104D04;
constexpr std::uint32_t kBoardRecord = 0x80684DAC;
constexpr std::uint64_t kHandle = 0x1122334455667788;

/// An old driver that has the board's data in all three forms, and keeps what was done with its buffer.
class BoardDriver : public OldDriver {
 public:
  BoardDriver() : OldDriver({{57, 0}, {60, 0}, {61, 0}, {64, 0}}) {
    answer(kAlloc, [this](std::uint8_t* r) {
      steps.push_back("alloc " + std::to_string(get<std::uint32_t>(r, 0)));
      EXPECT_EQ(get<std::uint32_t>(r, 4), 0U);
      EXPECT_EQ(get<std::uint64_t>(r, 8), 0U);
      asked_ = get<std::uint32_t>(r, 0);
      put<std::uint32_t>(r, 0, 0xA5A5A5A5);
      put<std::uint32_t>(r, 4, mapSize);
      put<std::uint64_t>(r, 8, kHandle);
      return allocError;
    });
    answer(kFree, [this](std::uint8_t* r) {
      steps.emplace_back("free");
      EXPECT_EQ(get<std::uint32_t>(r, 0), asked_);
      EXPECT_EQ(get<std::uint32_t>(r, 4), mapSize);
      EXPECT_EQ(get<std::uint64_t>(r, 8), kHandle);
      return 0;
    });
    answer(kCommand, [this](std::uint8_t* r) { return command(r); });
    answer(kBoardRecord, [this](std::uint8_t* r) {
      EXPECT_EQ(std::vector<std::uint8_t>(r, r + 104), std::vector<std::uint8_t>(104));
      std::memcpy(r, data.data(), 104);
      return recordError;
    });
  }

  void* mmap(std::size_t length, int protection, int flags, int fd, off_t offset) override {
    steps.push_back("map " + std::to_string(length));
    EXPECT_EQ(protection, PROT_READ | PROT_WRITE);
    EXPECT_EQ(flags, MAP_SHARED);
    EXPECT_GE(fd, 0);
    EXPECT_EQ(offset, 0);
    if (mapError != 0) {
      errno = mapError;
      return MAP_FAILED;
    }
    return mapped_.data();
  }

  int munmap(void* address, std::size_t length) override {
    steps.push_back("unmap " + std::to_string(length));
    EXPECT_EQ(address, mapped_.data());
    mapped_.fill(0xEE);
    return 0;
  }

  /// What the firmware has to tell, from its start.
  std::array<std::uint8_t, 616> data{};
  std::uint32_t mapSize = 4096;
  std::uint32_t status = 0;
  int allocError = 0;
  int mapError = 0;
  int commandError = 0;
  int recordError = 0;
  Steps steps;

 private:
  int command(std::uint8_t* r) {
    const auto word = get<std::uint64_t>(r, 0);
    std::vector<std::uint8_t> expected(264);
    put<std::uint64_t>(expected.data(), 0, word);
    if (word == 0x0003400042000FA0) {  // 0x7D, length 0x1A
      steps.emplace_back("inline");
    } else {
      EXPECT_TRUE(word == 0x0000800042000FA0 || word == 0x0000800042000380) << std::hex << word;
      steps.emplace_back(word == 0x0000800042000FA0 ? "board" : "edc");
      put<std::uint32_t>(expected.data(), 8, 0x55667788);
    }
    EXPECT_EQ(std::vector<std::uint8_t>(r, r + 264), expected);
    std::memset(r, 0xA5, 264);
    put<std::uint32_t>(r, 8, status);
    if (steps.back() == "inline") {
      std::memcpy(r + 12, data.data(), 24);
    } else {
      std::memcpy(mapped_.data(), data.data(), asked_);
    }
    return commandError;
  }

  std::array<std::uint8_t, 4096> mapped_{};
  std::uint32_t asked_ = 0;
};

class BoardDataTest : public testing::Test {
 protected:
  BoardDataTest() {
    put<std::uint32_t>(data(), 0, 1);
    put<std::uint32_t>(data(), 4, 5);  // 16384 MiB
    put<std::uint32_t>(data(), 8, 1);  // 3733 MT/s
    put<std::uint8_t>(data(), 12, 1);  // GDDR6
    put<std::uint8_t>(data(), 13, 2);  // Micron
    put<std::uint8_t>(data(), 14, 8);
    put<std::uint8_t>(data(), 15, 32);
    put<std::uint8_t>(data(), 16, 3);
    put<std::uint8_t>(data(), 17, 128);
    put<std::uint16_t>(data(), 18, 1800);
    put<std::uint8_t>(data(), 20, 2);
    put<std::uint16_t>(data(), 22, 2);
    for (std::size_t i = 0; i < 8; ++i) {
      put<std::uint32_t>(data(), 24 + 16 * i, 3);
      put<std::uint32_t>(data(), 28 + 16 * i, static_cast<std::uint32_t>(1000 + i));
      put<std::uint32_t>(data(), 32 + 16 * i, 2160);
      put<std::uint32_t>(data(), 36 + 16 * i, 0xFFFFFFFF);
    }
  }

  std::uint8_t* data() { return driver_.data.data(); }

  template <MiscMkisIntfName Name>
  auto ask(DevArch arch) {
    MiscMkisProvider provider("ovgpu.3");
    EXPECT_TRUE(provider.init().ok());
    provider.setArch(arch);
    return provider.getIntf<Name>().value().operation();
  }

  BoardDriver driver_;
  LogCapture log_;
};

TEST_F(BoardDataTest, MemoryPropertiesOfTheFirstFamilyAreInTheReply) {
  const auto spec = ask<kQueryDdrCap>(DevArch::kWold).value();
  EXPECT_EQ(driver_.steps, Steps{"inline"});
  EXPECT_EQ(spec.size.value(), 16384U);
  EXPECT_EQ(spec.maxClock.value(), 1'866'000'000UL) << "two transfers per clock, in integers";
  EXPECT_EQ(spec.type.value(), 1U);
  EXPECT_EQ(spec.vendor.value(), "Micron");
  EXPECT_EQ(spec.channelCount.value(), 8U);
  EXPECT_EQ(spec.channelWidth.value(), 32U);
}

TEST_F(BoardDataTest, MemoryPropertiesOfTheMiddleFamiliesAreInASharedBuffer) {
  for (const DevArch arch : {DevArch::kFen1, DevArch::kFen2}) {
    driver_.steps.clear();
    const auto spec = ask<kQueryDdrCap>(arch).value();
    EXPECT_EQ(driver_.steps, (Steps{"alloc 616", "map 4096", "board", "unmap 4096", "free"}));
    EXPECT_EQ(spec.maxClock.value(), 466'000'000UL) << "eight transfers per clock, in integers";
    EXPECT_EQ(spec.size.value(), 16384U);
  }
}

TEST_F(BoardDataTest, MemoryPropertiesOfTheLastFamilyAreARecord) {
  const auto spec = ask<kQueryDdrCap>(DevArch::kTor1).value();
  EXPECT_TRUE(driver_.steps.empty());
  EXPECT_EQ(driver_.count(kBoardRecord), 1U);
  EXPECT_EQ(spec.maxClock.value(), 466'000'000UL);
  EXPECT_EQ(spec.vendor.value(), "Micron");
}

TEST_F(BoardDataTest, SizesAndRatesAreThoseOfTheTables) {
  constexpr std::array<unsigned, 10> kSizes{1024, 2048, 4096, 8192, 12288, 16384, 24576, 32768, 49152, 65536};
  constexpr std::array<unsigned, 8> kRates{3200, 3733, 4266, 12000, 14000, 16000, 18000, 20000};
  for (std::uint32_t i = 0; i < kSizes.size(); ++i) {
    put<std::uint32_t>(data(), 4, i);
    EXPECT_EQ(ask<kQueryDdrCap>(DevArch::kTor1).value().size.value(), kSizes[i]);
  }
  for (std::uint32_t i = 0; i < kRates.size(); ++i) {
    put<std::uint32_t>(data(), 8, i);
    EXPECT_EQ(ask<kQueryDdrCap>(DevArch::kTor1).value().maxClock.value(), kRates[i] / 8 * 1'000'000UL);
    EXPECT_EQ(ask<kQueryDdrCap>(DevArch::kWold).value().maxClock.value(), kRates[i] / 2 * 1'000'000UL);
  }
}

TEST_F(BoardDataTest, UnknownIndexesHaveNoValueAndALine) {
  put<std::uint32_t>(data(), 4, 10);
  put<std::uint32_t>(data(), 8, 8);
  for (const DevArch arch : {DevArch::kWold, DevArch::kFen1}) {
    const auto spec = ask<kQueryDdrCap>(arch).value();
    EXPECT_EQ(spec.size.state(), KelpReturn::kNotSupported);
    EXPECT_EQ(spec.maxClock.state(), KelpReturn::kNotSupported);
    EXPECT_EQ(spec.type.value(), 1U) << "the rest is there";
  }
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> getDdrSpecV0() unknown mem size idx  10 "));
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> getDdrSpecV1() unknown mem size idx  10 "));
  EXPECT_EQ(log_.count(">> getDdrSpecV0() not found the ddr frequency type :  8 "), 2U);
}

TEST_F(BoardDataTest, WhatTheBoardDoesNotKnowHasNoValue) {
  put<std::uint8_t>(data(), 12, 15);
  put<std::uint8_t>(data(), 13, 0);
  put<std::uint16_t>(data(), 14, 0);
  put<std::uint16_t>(data(), 18, 0);
  const auto spec = ask<kQueryDdrCap>(DevArch::kTor1).value();
  EXPECT_EQ(spec.type.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(spec.vendor.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(spec.channelCount.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(spec.channelWidth.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(ask<kQueryGpuCap>(DevArch::kTor1).value().maxClock.state(), KelpReturn::kNotSupported);
}

TEST_F(BoardDataTest, GpuProperties) {
  for (const DevArch arch : {DevArch::kWold, DevArch::kFen1, DevArch::kFen2, DevArch::kTor1}) {
    const auto spec = ask<kQueryGpuCap>(arch).value();
    EXPECT_EQ(spec.coreCount.value(), 3U);
    EXPECT_EQ(spec.clusterCount.value(), 2U);
    EXPECT_EQ(spec.unitsPerCore.value(), (std::vector<unsigned int>{128, 128, 128}));
    EXPECT_EQ(spec.maxClock.value(), 1'800'000'000UL);
  }
}

TEST_F(BoardDataTest, DisplaysOfASharedBuffer) {
  const auto displays = ask<kQueryDisplayInterfaceSpec>(DevArch::kFen2).value();
  ASSERT_EQ(displays.size(), 2U);
  EXPECT_EQ(displays[1].type, DispIntfType::kHdmi);
  EXPECT_EQ(displays[1].hRes.value(), 1001U);
  EXPECT_EQ(displays[1].vRes.value(), 2160U);
  EXPECT_EQ(displays[1].pixelClock.state(), KelpReturn::kNotSupported);
}

TEST_F(BoardDataTest, DisplaysAreCutToTheRowsThatCame) {
  put<std::uint16_t>(data(), 22, 65535);
  EXPECT_EQ(ask<kQueryDisplayInterfaceSpec>(DevArch::kFen1).value().size(), 8U);
  const auto five = ask<kQueryDisplayInterfaceSpec>(DevArch::kTor1).value();
  ASSERT_EQ(five.size(), 5U);
  EXPECT_EQ(five[4].hRes.value(), 1004U);
  EXPECT_TRUE(ask<kQueryDisplayInterfaceSpec>(DevArch::kWold).value().empty()) << "the reply has no rows";
}

TEST_F(BoardDataTest, MemoryErrorsAreAddedUp) {
  put<std::uint32_t>(data(), 0, 25);
  for (std::size_t i = 0; i < 24; ++i) {
    for (std::uint32_t counter = 0; counter < 4; ++counter) {
      put<std::uint32_t>(data(), 4 + 16 * i + 4 * counter, counter == 3 ? 0xFFFFFFFF : counter + 1);
    }
  }
  for (const DevArch arch : {DevArch::kWold, DevArch::kFen1, DevArch::kTor1}) {
    driver_.steps.clear();
    const auto errors = ask<kQueryMemEdc>(arch).value();
    EXPECT_EQ(driver_.steps, (Steps{"alloc 388", "map 4096", "edc", "unmap 4096", "free"}));
    EXPECT_EQ(errors.readErrors, 24U);
    EXPECT_EQ(errors.writeErrors, 48U);
    EXPECT_EQ(errors.readRetries, 72U);
    EXPECT_EQ(errors.writeRetries, 0xFFFFFFFFU);
  }
}

// The buffer is given back on every path.

TEST_F(BoardDataTest, RefusedBufferIsNotGivenBack) {
  driver_.allocError = ENOMEM;
  EXPECT_EQ(ask<kQueryGpuCap>(DevArch::kFen1).state(), KelpReturn::kFailure);
  EXPECT_EQ(driver_.steps, Steps{"alloc 616"});
  ASSERT_TRUE(
      log_.has(LogLevel::kError, ">> access< MkiAllocMemV0 > ioctl return error =  -1 , errno =  12 "));
  EXPECT_FALSE(log_.has("failed to map memory!"));
}

TEST_F(BoardDataTest, FailedMappingGivesTheBufferBack) {
  driver_.mapError = ENODEV;
  EXPECT_EQ(ask<kQueryGpuCap>(DevArch::kFen1).state(), KelpReturn::kFailure);
  EXPECT_EQ(driver_.steps, (Steps{"alloc 616", "map 4096", "free"}));
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> getBoardCapInfoV1() failed to map memory! "));
  driver_.steps.clear();
  EXPECT_EQ(ask<kQueryMemEdc>(DevArch::kFen1).state(), KelpReturn::kFailure);
  EXPECT_EQ(driver_.steps, (Steps{"alloc 388", "map 4096", "free"}));
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> queryMemEdcV0() failed to map memory! "));
}

TEST_F(BoardDataTest, MappingBelowTheSizeIsAFailedOne) {
  driver_.mapSize = 615;
  EXPECT_EQ(ask<kQueryGpuCap>(DevArch::kFen1).state(), KelpReturn::kFailure);
  EXPECT_EQ(driver_.steps, (Steps{"alloc 616", "free"}));
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> getBoardCapInfoV1() failed to map memory! "));
  driver_.mapSize = 616;
  EXPECT_TRUE(ask<kQueryGpuCap>(DevArch::kFen1).ok());
}

TEST_F(BoardDataTest, FailedOrRefusedCommandGivesTheBufferBack) {
  driver_.status = 7;
  EXPECT_EQ(ask<kQueryGpuCap>(DevArch::kFen1).state(), KelpReturn::kNotSupported);
  EXPECT_EQ(driver_.steps, (Steps{"alloc 616", "map 4096", "board", "unmap 4096", "free"}));
  driver_.steps.clear();
  driver_.commandError = EIO;
  EXPECT_EQ(ask<kQueryMemEdc>(DevArch::kFen1).state(), KelpReturn::kFailure);
  ASSERT_EQ(driver_.steps.size(), 14U);
  EXPECT_EQ(driver_.steps[12], "unmap 4096");
  EXPECT_EQ(driver_.steps[13], "free");
  EXPECT_EQ(driver_.slept, 1'000'000'000);
}

TEST_F(BoardDataTest, DisplaysWithoutBoardDataHaveALineMore) {
  driver_.status = 7;
  EXPECT_EQ(ask<kQueryDisplayInterfaceSpec>(DevArch::kWold).state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> getDisplayInterfaceSpecV0() get board info error, status:  6 "));
  driver_.recordError = EIO;
  EXPECT_EQ(ask<kQueryDisplayInterfaceSpec>(DevArch::kTor1).state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> getDisplayInterfaceSpecV0() get board info error, status:  1 "));
}

TEST_F(BoardDataTest, FamilyThatIsNotKnownHasNoBoardData) {
  EXPECT_EQ(ask<kQueryGpuCap>(DevArch::kUnknown).state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(driver_.steps.empty());
}

TEST_F(BoardDataTest, NothingIsAskedOnAClosedDescriptor) {
  MiscKernelAccessorV0 accessor{NodeFile()};
  accessor.setArch(DevArch::kFen1);
  EXPECT_EQ(accessor.doQueryGpuCap().at(0)().state(), KelpReturn::kFailure);
  EXPECT_EQ(accessor.doQueryMemEdc().at(0)().state(), KelpReturn::kFailure);
  EXPECT_TRUE(driver_.calls.empty());
  EXPECT_TRUE(driver_.steps.empty());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> miscFd_ is invalid, value is  -1 "));
  EXPECT_EQ(log_.count(">> miscFd_ is invalid, value is  -1 "), 2U) << "one line each";
  EXPECT_EQ(log_.count("fd is invalid !"), 0U);
}

}  // namespace
}  // namespace kelp::linux_
