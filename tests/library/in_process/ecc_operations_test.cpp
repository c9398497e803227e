#include "in_process/lumo_fixture.h"

// Error correction of the memory.

namespace {

using kelp::DevArch;
using kelp::DevType;
using kelp::KelpReturn;
using rusk::LogLevel;
using tolk_test::LumoFixture;

class EccOperationsTest : public LumoFixture {
 protected:
  unsigned number_ = 99;
  unsigned other_ = 99;
};

TEST_F(EccOperationsTest, ASwitchFindsTheOtherDevicesClosed) {
  std::vector<std::string> touchedBefore;
  kelp::EccMode set = kelp::EccMode::kOff;
  platform_.answerBy<kelp::SetEccModeCmd>([&](const kelp::DevCuid&, const kelp::SetEccModeCmd& cmd) {
    touchedBefore = platform_.othersTouched;
    set = std::get<0>(cmd.params);
    return kelp::Stated<int>(0);
  });
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoMemorySetEccMode(memory(handle_), 1), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(set, kelp::EccMode::kOn);
  EXPECT_EQ(touchedBefore, (std::vector<std::string>{"close 0"}));
  EXPECT_EQ(platform_.othersTouched, (std::vector<std::string>{"close 0", "reopen 0"}));
}

TEST_F(EccOperationsTest, ADeviceWithoutItIsLeftAlone) {
  addGpu(0, DevType::kPhysical, DevArch::kFen2);
  startMpc(DevArch::kTor1);
  for (LumoDevice* const asked : {deviceOf("uuid-0"), parent_, instance_}) {
    LumoMemory* const none = memory(asked);
    unsigned long long count = 99;
    LumoRetiredPage page;
    EXPECT_EQ(lumoMemorySetEccMode(none, 1), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoMemoryGetRetiredPagesCount(none, &number_, &other_), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoMemoryGetRetiredPages(none, 0, 1, &page), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoMemoryGetRetiredPagesPendingStatus(none, &number_), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoMemoryGetEccErrorCounter(none, 0, 1, 0, &count), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoMemoryClearEccErrorCounter(none, 0), LUMO_RETURN_NOT_SUPPORTED);
  }
  EXPECT_EQ(log_.count(":setEccMode >> Feat not supported ! "), 3U);
  EXPECT_TRUE(platform_.othersTouched.empty());
}

/// Pages of both causes, whose addresses tell cause and place.
class RetiredPagesTest : public EccOperationsTest {
 protected:
  RetiredPagesTest() {
    platform_.answer<kelp::QueryEccRetiredPagesCntCmd>(
        kelp::EccPageRetirementCount{.singleBit = 2, .doubleBit = 1});
    platform_.answerBy<kelp::QueryEccRetiredPagesInfoCmd>(
        [](const kelp::DevCuid&, const kelp::QueryEccRetiredPagesInfoCmd& cmd) {
          const auto& param = std::get<0>(cmd.params);
          return kelp::Stated<kelp::EccPageRetirementInfo>({.count = 3,
                                                            .address = 0x1000UL * param.cause + param.index,
                                                            .timestamp = 5,
                                                            .cause = param.cause,
                                                            .location = 7,
                                                            .errorCount = 9});
        });
  }
};

TEST_F(RetiredPagesTest, PagesAreCountedByCause) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoMemoryGetRetiredPagesCount(memory(handle_), &number_, &other_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 2U);
  EXPECT_EQ(other_, 1U);
}

TEST_F(RetiredPagesTest, PagesAreListedByCause) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  LumoRetiredPage pages[3];
  std::memset(pages, '#', sizeof pages);
  ASSERT_EQ(lumoMemoryGetRetiredPages(memory(handle_), 0, 3, pages), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(pages[0].address, 0U);
  EXPECT_EQ(pages[1].address, 1U);
  EXPECT_EQ(pages[1].timestamp, 5U);
  EXPECT_EQ(pages[1].cause, 0U);
  EXPECT_EQ(pages[1].location, 7U);
  EXPECT_EQ(pages[1].errorCount, 9U);
  EXPECT_EQ(pages[2].errorCount, 0U) << "cleared";
  ASSERT_EQ(lumoMemoryGetRetiredPages(memory(handle_), 1, 1, pages), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(pages[0].address, 0x1000U);
}

TEST_F(RetiredPagesTest, ABufferThatIsTooShortIsClearedAndNoPageIsAskedFor) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  LumoRetiredPage page;
  std::memset(&page, '#', sizeof page);
  EXPECT_EQ(lumoMemoryGetRetiredPages(memory(handle_), 0, 1, &page), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(page.address, 0U);
  EXPECT_EQ(page.errorCount, 0U);
  EXPECT_EQ(platform_.count("QueryEccRetiredPagesInfo"), 0U);
}

TEST_F(RetiredPagesTest, APageThatCannotBeReadFailsTheList) {
  platform_.answer<kelp::QueryEccRetiredPagesInfoCmd>(KelpReturn::kFirmwareFailed);
  startWith(DevType::kPhysical, DevArch::kTor1);
  LumoRetiredPage pages[2];
  EXPECT_EQ(lumoMemoryGetRetiredPages(memory(handle_), 0, 2, pages), LUMO_RETURN_DRIVER_ACCESS_FAILED);
  EXPECT_EQ(pages[0].errorCount, 0U);
}

TEST_F(EccOperationsTest, PagesArePendingWhenTheirCountSaysSo) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  for (const unsigned long count : {0UL, 1UL, 1UL << 40}) {
    kelp::EccPendingErrorInfo info;
    info.count = count;
    platform_.answer<kelp::QueryEccRetiredPagesPendingInfoCmd>(info);
    EXPECT_EQ(lumoMemoryGetRetiredPagesPendingStatus(memory(handle_), &number_), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(number_, count > 0 ? 1U : 0U);
  }
}

TEST_F(EccOperationsTest, ErrorCountersAreAskedAndClearedByTheirPlace) {
  kelp::QueryEccErrorsParam asked;
  kelp::EccCounterType cleared = kelp::EccCounterType::kVolatile;
  platform_.answerBy<kelp::QueryEccErrCmd>([&](const kelp::DevCuid&, const kelp::QueryEccErrCmd& cmd) {
    asked = std::get<0>(cmd.params);
    return kelp::Stated<unsigned long long>(12345678901ULL);
  });
  platform_.answerBy<kelp::ClearEccErrCmd>([&](const kelp::DevCuid&, const kelp::ClearEccErrCmd& cmd) {
    cleared = std::get<0>(cmd.params);
    return kelp::Stated<int>(0);
  });
  startWith(DevType::kPhysical, DevArch::kTor1);
  unsigned long long count = 0;
  EXPECT_EQ(lumoMemoryGetEccErrorCounter(memory(handle_), 1, 1, 0, &count), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(count, 12345678901ULL);
  EXPECT_EQ(asked.errorType, 1U);
  EXPECT_EQ(asked.counterType, 1U);
  EXPECT_EQ(asked.location, 0U);
  EXPECT_EQ(lumoMemoryClearEccErrorCounter(memory(handle_), 1), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(cleared, kelp::EccCounterType::kAggregate);
}

}  // namespace
