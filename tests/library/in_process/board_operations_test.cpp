#include "in_process/lumo_fixture.h"

// Fans, firmware, power, display and resets.

namespace {

using kelp::DevArch;
using kelp::DevType;
using kelp::KelpReturn;
using rusk::LogLevel;
using tolk_test::LumoFixture;

class BoardOperationsTest : public LumoFixture {
 protected:
  unsigned number_ = 99;
  char text_[64] = "before";
};

TEST_F(BoardOperationsTest, AFanIsAskedByItsPlace) {
  platform_.answer<kelp::QueryFanChnlCountCmd>(2U);
  platform_.answerBy<kelp::QueryFanSpeedCmd>([](const kelp::DevCuid&, const kelp::QueryFanSpeedCmd& cmd) {
    const auto& param = std::get<0>(cmd.params);
    return kelp::Stated<unsigned>(param.unit == kelp::FanUnit::kPercent ? 40 + param.fanIndex
                                                                        : 4000 + param.fanIndex);
  });
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceCountFan(handle_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 2U);
  EXPECT_EQ(lumoDeviceGetFanSpeed(handle_, 1, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 41U);
  EXPECT_EQ(lumoDeviceGetFanRpm(handle_, 0, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 4000U);
}

TEST_F(BoardOperationsTest, AFanAtTheCountIsAnInvalidArgument) {
  platform_.answer<kelp::QueryFanChnlCountCmd>(2U);
  startWith(DevType::kPhysical, DevArch::kTor1);
  for (const unsigned index : {2U, ~0U}) {
    EXPECT_EQ(lumoDeviceGetFanSpeed(handle_, index, &number_), LUMO_RETURN_INVALID_ARGUMENT);
    EXPECT_EQ(lumoDeviceGetFanRpm(handle_, index, &number_), LUMO_RETURN_INVALID_ARGUMENT);
  }
  EXPECT_EQ(number_, 99U);
  EXPECT_EQ(platform_.count("QueryFanSpeed"), 0U);
}

TEST_F(BoardOperationsTest, WithoutFansNoneHasASpeed) {
  platform_.answer<kelp::QueryFanChnlCountCmd>(0U);
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceCountFan(handle_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 0U);
  EXPECT_EQ(lumoDeviceGetFanSpeed(handle_, 0, &number_), LUMO_RETURN_NOT_SUPPORTED);
  platform_.answer<kelp::QueryFanChnlCountCmd>(KelpReturn::kAccessFailed);
  EXPECT_EQ(lumoDeviceGetFanSpeed(handle_, 0, &number_), LUMO_RETURN_DRIVER_ACCESS_FAILED);
}

TEST_F(BoardOperationsTest, VersionsAreThreeNumbersWithoutPadding) {
  const std::pair<unsigned, const char*> rows[] = {{10203, "1.2.3"},  {0, "0.0.0"},
                                                   {99, "0.0.99"},    {120000, "12.0.0"},
                                                   {9999, "0.99.99"}, {4294967295U, "429496.72.95"}};
  for (const auto& [number, version] : rows) {
    platform_.answer<kelp::QuerySmcFwVersionCmd>(
        kelp::FirmwareVersions{{"ov-bios", number}, {"rtos", number}});
    startWith(DevType::kPhysical, DevArch::kTor1);
    EXPECT_EQ(lumoDeviceGetOvBiosVersion(handle_, text_, sizeof text_), LUMO_RETURN_SUCCESS);
    EXPECT_STREQ(text_, version);
    EXPECT_EQ(lumoDeviceGetRtosVersion(handle_, text_, sizeof text_), LUMO_RETURN_SUCCESS);
    EXPECT_STREQ(text_, version);
    stop();
  }
}

TEST_F(BoardOperationsTest, AnUnknownVersionIsNoText) {
  platform_.answer<kelp::QuerySmcFwVersionCmd>(
      kelp::FirmwareVersions{{"ov-bios", KelpReturn::kNotSupported}});
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceGetOvBiosVersion(handle_, text_, sizeof text_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoDeviceGetRtosVersion(handle_, text_, sizeof text_), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_STREQ(text_, "before");
}

TEST_F(BoardOperationsTest, BrandAndSerialNumberComeFromTheBoard) {
  platform_.answer<kelp::QueryInfoRomCmd>(kelp::DeviceInfoRom{.serialNumber = "S-1", .brand = "OVT"});
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceGetBrand(handle_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, static_cast<unsigned>(LUMO_BRAND_OVT));
  EXPECT_EQ(lumoDeviceGetSerialNumber(handle_, text_, sizeof text_), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(text_, "S-1");
}

TEST_F(BoardOperationsTest, AnEmptySerialNumberIsASuccess) {
  platform_.answer<kelp::QueryInfoRomCmd>(kelp::DeviceInfoRom{});
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceGetSerialNumber(handle_, text_, sizeof text_), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(text_, "");
}

/// Limits of a board: 100 W to 400 W.
class PowerLimitTest : public BoardOperationsTest {
 protected:
  PowerLimitTest() {
    platform_.answerBy<kelp::QueryPowerLimitCmd>(
        [](const kelp::DevCuid&, const kelp::QueryPowerLimitCmd& cmd) -> kelp::Stated<unsigned> {
          switch (std::get<0>(cmd.params)) {
            case kelp::PowerLimitType::kRequested:
              return 300'000U;
            case kelp::PowerLimitType::kEnforced:
              return 250'000U;
            case kelp::PowerLimitType::kDefault:
              return 350'000U;
            case kelp::PowerLimitType::kMinimum:
              return minimum;
            case kelp::PowerLimitType::kMaximum:
              return maximum;
          }
          return KelpReturn::kBadArgument;
        });
    platform_.answerBy<kelp::SetPowerLimitCmd>(
        [this](const kelp::DevCuid&, const kelp::SetPowerLimitCmd& cmd) {
          set_.push_back(std::get<0>(cmd.params));
          return kelp::Stated<int>(0);
        });
  }

  static inline kelp::Stated<unsigned> minimum = 100'000U;
  static inline kelp::Stated<unsigned> maximum = 400'000U;
  std::vector<kelp::SetPowerLimitParam> set_;
};

TEST_F(PowerLimitTest, EachLimitIsAnotherNumber) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  unsigned other = 0;
  EXPECT_EQ(lumoDeviceGetPowerLimit(handle_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 300'000U);
  EXPECT_EQ(lumoDeviceGetEnforcedPowerLimit(handle_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 250'000U);
  EXPECT_EQ(lumoDeviceGetDefaultPowerLimit(handle_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 350'000U);
  EXPECT_EQ(lumoDeviceGetPowerLimitConstraints(handle_, &number_, &other), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 100'000U);
  EXPECT_EQ(other, 400'000U);
}

TEST_F(PowerLimitTest, ALimitIsSetInWholeWatts) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  const std::pair<unsigned, unsigned> rows[] = {
      {250'400, 250'000}, {150'500, 151'000}, {99'500, 100'000}, {400'499, 400'000}, {100'000, 100'000}};
  for (const auto& [asked, limit] : rows) {
    set_.clear();
    EXPECT_EQ(lumoDeviceSetPowerLimitWithPersistentOption(handle_, asked, 1), LUMO_RETURN_SUCCESS) << asked;
    ASSERT_EQ(set_.size(), 1U) << asked;
    EXPECT_EQ(set_[0].limit, limit);
    EXPECT_TRUE(set_[0].persistent);
  }
  EXPECT_EQ(lumoDeviceSetPowerLimitWithPersistentOption(handle_, 250'000, 0), LUMO_RETURN_SUCCESS);
  EXPECT_FALSE(set_.back().persistent);
}

TEST_F(PowerLimitTest, OneWattAndAHalfRoundsBelowTwo) {
  minimum = 1'000U;
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceSetPowerLimitWithPersistentOption(handle_, 1'499, 0), LUMO_RETURN_SUCCESS);
  ASSERT_EQ(set_.size(), 1U);
  EXPECT_EQ(set_[0].limit, 1'000U);
  minimum = 100'000U;
}

TEST_F(PowerLimitTest, ALimitOutsideOfTheConstraintsIsRefused) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  for (const unsigned limit : {100'000U - 501, 400'500U, 0U, 4'294'967'295U}) {
    EXPECT_EQ(lumoDeviceSetPowerLimitWithPersistentOption(handle_, limit, 0), LUMO_RETURN_INVALID_ARGUMENT)
        << limit;
  }
  EXPECT_TRUE(set_.empty());
}

TEST_F(PowerLimitTest, WithoutConstraintsNothingIsSet) {
  maximum = KelpReturn::kBusy;
  startWith(DevType::kPhysical, DevArch::kTor1);
  unsigned other = 99;
  EXPECT_EQ(lumoDeviceGetPowerLimitConstraints(handle_, &number_, &other), LUMO_RETURN_BUSY);
  EXPECT_EQ(number_, 99U) << "both or none";
  EXPECT_EQ(lumoDeviceSetPowerLimitWithPersistentOption(handle_, 250'000, 0), LUMO_RETURN_BUSY);
  EXPECT_TRUE(set_.empty());
  maximum = 400'000U;
}

TEST_F(PowerLimitTest, OlderFamiliesHaveNone) {
  startWith(DevType::kPhysical, DevArch::kFen2);
  EXPECT_EQ(lumoDeviceGetPowerLimit(handle_, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoDeviceSetPowerLimitWithPersistentOption(handle_, 250'000, 0), LUMO_RETURN_NOT_SUPPORTED);
}

TEST_F(BoardOperationsTest, PowerIsInMilliwatts) {
  platform_.answer<kelp::QueryPowerCmd>(123'456U);
  startWith(DevType::kPhysical, DevArch::kWold);
  EXPECT_EQ(lumoDeviceGetPowerUsage(handle_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 123'456U);
}

TEST_F(BoardOperationsTest, ThePerformanceStateCanBeSet) {
  std::vector<unsigned> set;
  platform_.answerBy<kelp::SetPstateCmd>([&set](const kelp::DevCuid&, const kelp::SetPstateCmd& cmd) {
    set.push_back(std::get<0>(cmd.params).state);
    return kelp::Stated<int>(0);
  });
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceSetPerformanceState(handle_, 15), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(set, (std::vector<unsigned>{15}));
}

TEST_F(BoardOperationsTest, ADisplayIsThereWithWhatIsKnownOfIt) {
  std::vector<kelp::DispInterfaceInfo> rows(2);
  rows[0].type = kelp::DispIntfType::kHdmi;
  rows[0].hRes = 1920U;
  rows[0].vRes = 1080U;
  rows[0].pixelClock = 1485U;
  rows[1].type = kelp::DispIntfType::kVga;
  rows[1].hRes = KelpReturn::kNotSupported;
  rows[1].vRes = 1080U;
  rows[1].pixelClock = 1485U;
  platform_.answer<kelp::QueryDisplayInterfaceSpecCmd>(rows);
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceCountDisplayInterface(handle_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 2U);
  LumoDispIntfSpec spec{};
  ASSERT_EQ(lumoDeviceGetDisplayInterfaceSpec(handle_, 0, &spec), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(spec.type, 3U);
  EXPECT_EQ(spec.hRes, 1920U);
  EXPECT_EQ(spec.vRes, 1080U);
  EXPECT_EQ(spec.pixelClock, 1485U);
  EXPECT_EQ(spec.refreshRate, 60.0F);
  ASSERT_EQ(lumoDeviceGetDisplayInterfaceSpec(handle_, 1, &spec), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(spec.type, 2U);
  EXPECT_EQ(spec.hRes, 0U);
  EXPECT_EQ(spec.refreshRate, 0.0F);
  EXPECT_EQ(lumoDeviceGetDisplayInterfaceSpec(handle_, 2, &spec), LUMO_RETURN_INVALID_ARGUMENT);
}

TEST_F(BoardOperationsTest, AResetFindsTheOtherDevicesClosed) {
  std::vector<std::string> touchedBefore;
  platform_.answerBy<kelp::ResetDeviceCmd>([&](const kelp::DevCuid&, const kelp::ResetDeviceCmd&) {
    touchedBefore = platform_.othersTouched;
    return kelp::Stated<int>(KelpReturn::kBusy);
  });
  addGpu(1);
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceReset(handle_), LUMO_RETURN_BUSY);
  EXPECT_EQ(touchedBefore, (std::vector<std::string>{"close 0"}));
  EXPECT_EQ(platform_.othersTouched, (std::vector<std::string>{"close 0", "reopen 0"}))
      << "also after a failure";
}

TEST_F(BoardOperationsTest, OnlyAPhysicalDeviceIsReset) {
  startMpc();
  for (LumoDevice* part : {parent_, instance_}) {
    EXPECT_EQ(lumoDeviceReset(part), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoDeviceResetEventMessages(part), LUMO_RETURN_NOT_SUPPORTED);
  }
  EXPECT_EQ(platform_.count("ResetDevice"), 0U);
}

TEST_F(BoardOperationsTest, EventMessagesAreResetWithoutClosingAnything) {
  platform_.answer<kelp::ResetDeviceEventMsgsCmd>(0);
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceResetEventMessages(handle_), LUMO_RETURN_SUCCESS);
  EXPECT_TRUE(platform_.othersTouched.empty());
}

TEST_F(BoardOperationsTest, AFeatureThatIsMissingIsLoggedInTheNameOfTheOperation) {
  startMpc(DevArch::kTor1);
  EXPECT_EQ(lumoDeviceCountFan(instance_, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_TRUE(log_.has(LogLevel::kError, ":getFanCount >> Feat not supported ! "));
  EXPECT_EQ(lumoDeviceGetFanSpeed(instance_, 0, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoDeviceCountDisplayInterface(instance_, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_TRUE(log_.has(LogLevel::kError, ":getDisplayInterfaceCount >> Feat not supported ! "));
  EXPECT_EQ(lumoDeviceCountCoreUnits(instance_, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_TRUE(log_.has(LogLevel::kError, ":getCoreUnits >> Feat not supported ! "));
}

TEST_F(BoardOperationsTest, CoresAreCountedAndDescribedOneByOne) {
  addGpu(0, DevType::kPhysical, DevArch::kTor1);
  auto desc = describe("uuid-0", addressOf(0x40));
  desc.kmdValue32 = 3U;
  desc.kmdValue64 = 5UL;
  platform_.descOf[0] = desc;
  kelp::GpuSpec spec;
  spec.unitsPerCore = std::vector<unsigned>{8, 0, 4};
  platform_.answer<kelp::QueryGpuCapCmd>(spec);
  mustStart();
  LumoDevice* const gpu = device(0);
  unsigned long long mask = 0;
  EXPECT_EQ(lumoDeviceGetCoreCount(gpu, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 3U);
  EXPECT_EQ(lumoDeviceGetUsableCores(gpu, &mask), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(mask, 5U);
  EXPECT_EQ(lumoDeviceCountCoreUnits(gpu, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 3U);
  unsigned units[4] = {9, 9, 9, 9};
  EXPECT_EQ(lumoDeviceGetCoreUnits(gpu, units, 2), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(units[0], 9U);
  EXPECT_EQ(lumoDeviceGetCoreUnits(gpu, units, 4), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(std::vector(units, units + 4), (std::vector<unsigned>{8, 0, 4, 0}));
}

TEST_F(BoardOperationsTest, ACountOfCoresThatLiesEndsWhereTheDescriptionEnds) {
  addGpu(0, DevType::kPhysical, DevArch::kTor1);
  auto desc = describe("uuid-0", addressOf(0x40));
  desc.kmdValue32 = ~0U;
  platform_.descOf[0] = desc;
  kelp::GpuSpec spec;
  spec.unitsPerCore = std::vector<unsigned>{8};
  platform_.answer<kelp::QueryGpuCapCmd>(spec);
  mustStart();
  EXPECT_NE(lumoDeviceCountCoreUnits(device(0), &number_), LUMO_RETURN_SUCCESS);
}

TEST_F(BoardOperationsTest, EachFamilyHasItsInstructionSet) {
  const std::tuple<DevArch, unsigned, unsigned> rows[] = {
      {DevArch::kWold, 1, 0}, {DevArch::kFen1, 2, 1}, {DevArch::kFen2, 2, 2}, {DevArch::kTor1, 3, 1}};
  for (const auto& [arch, major, minor] : rows) {
    startWith(DevType::kPhysical, arch);
    unsigned other = 99;
    EXPECT_EQ(lumoDeviceGetComputeCapability(handle_, &number_, &other), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(number_, major);
    EXPECT_EQ(other, minor);
    stop();
    platform_.pcieCuids = kelp::DevCuidSet{};
  }
}

TEST_F(BoardOperationsTest, ADeviceKnowsItsKindNumberAndNodes) {
  addMpc();
  auto desc = describe("uuid-3", addressOf(0x42));
  desc.miscPath = std::string("/dev/ovgpu.3");
  desc.cardPath = std::string("/dev/dri/card3");
  desc.renderPath = std::string("/dev/dri/renderD131");
  platform_.descOf[3] = desc;
  mustStart();
  LumoDevice* const instance = deviceOf("uuid-3");
  unsigned long long intId = 0;
  EXPECT_EQ(lumoDeviceGetType(instance, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, static_cast<unsigned>(LUMO_DEVICE_MPC_INSTANCE));
  EXPECT_EQ(lumoDeviceGetIntId(instance, &intId), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(intId, 3U);
  EXPECT_EQ(lumoDeviceGetIndex(instance, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 1U) << "an instance is in the order";
  EXPECT_EQ(lumoDeviceGetMiscPath(instance, text_, sizeof text_), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(text_, "/dev/ovgpu.3");
  EXPECT_EQ(lumoDeviceGetCardPath(instance, text_, sizeof text_), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(text_, "/dev/dri/card3");
  EXPECT_EQ(lumoDeviceGetRenderPath(instance, text_, sizeof text_), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(text_, "/dev/dri/renderD131");
  EXPECT_EQ(lumoDeviceGetIonPath(instance, text_, sizeof text_), LUMO_RETURN_NOT_SUPPORTED);
}

TEST_F(BoardOperationsTest, SharesOfProcessesComeByPid) {
  platform_.answer<kelp::QueryProcGpuUtilCmd>(kelp::ProcessGpuUtilMap{
      {30, {.pid = 30, .kind = 1, .timestamp = 7, .gpu = 50, .memory = 20, .encoder = 3, .decoder = 4}},
      {4, {.pid = 4, .gpu = 10}}});
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceCountProcessGpuUtilizations(handle_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 2U);
  LumoProcessGpuUtilization shares[2] = {};
  EXPECT_EQ(lumoDeviceGetProcessGpuUtilizations(handle_, shares, 1), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(shares[0].pid, 0U);
  ASSERT_EQ(lumoDeviceGetProcessGpuUtilizations(handle_, shares, 2), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(shares[0].pid, 4U);
  EXPECT_EQ(shares[1].pid, 30U);
  EXPECT_EQ(shares[1].kind, 1U);
  EXPECT_EQ(shares[1].timestamp, 7U);
  EXPECT_EQ(shares[1].gpu, 50U);
  EXPECT_EQ(shares[1].memory, 20U);
  EXPECT_EQ(shares[1].encoder, 3U);
  EXPECT_EQ(shares[1].decoder, 4U);
}

}  // namespace
