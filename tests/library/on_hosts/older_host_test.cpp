#include "on_hosts/values_fixture.h"

// Drivers that know less, or tell it in another way.

namespace {

using tolk_test::ask;
using tolk_test::askList;
using tolk_test::Subject;
using tolk_test::ValuesFixture;

class OlderHost : public ValuesFixture {
 protected:
  OlderHost() : ValuesFixture("older") {}
};

TEST_F(OlderHost, OlderRecordsTellMoreOrLess) {
  EXPECT_EQ(ask(of(0), lumoGpuGetMaxClock), told(0, "values/core_clock_max"));
  EXPECT_EQ(ask(of(0), lumoGpuGetCoreUtilization, 0U), told(0, "values/core_average"));
  EXPECT_EQ(ask(of(0), lumoGpuGetCoreUtilization, 1U), "refused 4");
  EXPECT_EQ(ask(of(0), lumoMemoryGetEdcCounters), "321 404 55 6") << "over all channels";
  EXPECT_EQ(askList(of(1), lumoDeviceCountCoreUnits, lumoDeviceGetCoreUnits), "5; 5; 5")
      << "one number for all";
  EXPECT_EQ(ask(of(1), lumoGpuCountCoreMpx, 6ULL), "10");
}

TEST_F(OlderHost, GpuSharesAreThoseOfTheHostsNumbers) {
  LumoProcessGpuUtilization share;
  ASSERT_EQ(lumoDeviceGetProcessGpuUtilizations(device(0), &share, 1), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(share.pid, number(0, "processes/0/pid"));
  EXPECT_EQ(share.gpu, number(0, "processes/0/utilization/gpu"));
}

TEST_F(OlderHost, NoPowerLimitCanBeMadeToStay) {
  EXPECT_EQ(lumoDeviceSetPowerLimitWithPersistentOption(device(1), 200000, 1), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(ask(of(1), lumoDeviceGetPowerLimit), "250000");
  EXPECT_EQ(lumoDeviceSetPowerLimitWithPersistentOption(device(1), 200000, 0), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(ask(of(1), lumoDeviceGetPowerLimit), "200000");
}

/// The GPUs of ages.json with a driver of the old protocol.
class OldHost : public ValuesFixture {
 protected:
  OldHost() : ValuesFixture("ages") {}
};

TEST_F(OldHost, AFanWhoseHighestDutyIsZeroStands) {
  ASSERT_EQ(number(0, "fans/1/max_duty"), 0U);
  ASSERT_NE(number(0, "fans/1/duty"), 0U);
  EXPECT_EQ(ask(of(0), lumoDeviceGetFanSpeed, 1U), "0");
  EXPECT_EQ(ask(of(0), lumoDeviceGetFanSpeed, 0U), told(0, "fans/0/percent"));
}

/// A driver of the old protocol, with the values that a GPU of its family has by itself.
class LegacyHost : public tolk_test::HostFixture {};

TEST_F(LegacyHost, TheOldMemoryRecordTellsOfTheSystemsMemory) {
  const Subject subject = Subject::of(device(0));
  EXPECT_EQ(ask(subject, lumoMemoryGetSystemTotal), std::to_string(8ULL << 30));
  EXPECT_EQ(ask(subject, lumoMemoryGetGuestReserved), "0");
  EXPECT_EQ(totalMib(0), "16384");
  EXPECT_EQ(usedMib(0), "512");
}

}  // namespace
