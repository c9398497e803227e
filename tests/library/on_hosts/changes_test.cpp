#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "on_hosts/values_fixture.h"

// What a call changes is what the next ones read. The driver keeps it between these tests, so each looks at
// what it begins with.

namespace {

using tolk_test::ask;
using tolk_test::askPages;
using tolk_test::Subject;
using tolk_test::ValuesFixture;

class ChangedHost : public ValuesFixture {
 protected:
  ChangedHost() : ValuesFixture("values") {}
  std::string eccModes() { return ask(of(0), lumoMemoryGetEccMode); }
  std::string limits() {
    return ask(of(0), lumoDeviceGetPowerLimit) + " " + ask(of(0), lumoDeviceGetEnforcedPowerLimit);
  }
  LumoReturn setLimit(unsigned milliwatts, unsigned persistent) {
    return lumoDeviceSetPowerLimitWithPersistentOption(device(0), milliwatts, persistent);
  }
  /// All error counters of a link.
  std::string linkErrors(unsigned link) {
    std::string all;
    for (unsigned kind = 0; kind < 6; ++kind) {
      all += (kind == 0 ? "" : " ") + ask(of(0), lumoDeviceGetSablinkErrorCounter, link, kind);
    }
    return all;
  }
  /// Corrected and not, since the start and ever.
  std::string eccErrors() {
    std::string all;
    for (const unsigned location : {0U, 1U}) {
      for (const unsigned errorType : {0U, 1U}) {
        all += (all.empty() ? "" : " ") + ask(of(0), lumoMemoryGetEccErrorCounter, errorType, 1U, location);
      }
    }
    return all;
  }
};

TEST_F(ChangedHost, EccModeWaitsForTheReset) {
  ASSERT_EQ(eccModes(), tolds(0, {"values/ecc_current", "values/ecc_pending"}));
  ASSERT_EQ(eccModes(), "1 0");
  EXPECT_EQ(lumoMemorySetEccMode(of(0), 1), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(eccModes(), "1 1");
  EXPECT_EQ(lumoMemorySetEccMode(of(0), 0), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(eccModes(), "1 0");
  EXPECT_EQ(ask(of(0), lumoMemoryGetRetiredPagesCount), "1 2");
  EXPECT_EQ(ask(of(0), lumoMemoryGetRetiredPagesPendingStatus), "1");

  EXPECT_EQ(lumoDeviceReset(device(0)), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(eccModes(), "0 0");
  EXPECT_EQ(ask(of(0), lumoMemoryGetRetiredPagesCount), "2 2") << "pages that waited are retired";
  EXPECT_EQ(ask(of(0), lumoMemoryGetRetiredPagesPendingStatus), "0");
  EXPECT_EQ(askPages(of(0), LUMO_RETIREMENT_SINGLE_BIT),
            tolds(0, {"retired_pages/0/address", "retired_pages/0/time", "retired_pages/0/cause",
                      "retired_pages/0/location", "retired_pages/0/errors"}) +
                "; " +
                tolds(0, {"pending_pages/0/address", "pending_pages/0/time", "pending_pages/0/cause",
                          "pending_pages/0/location", "pending_pages/0/errors"}));
  for (unsigned index = 0; index < count(); ++index) {
    EXPECT_EQ(ask(of(index), lumoMemoryGetTotal).find("refused"), std::string::npos)
        << "the other devices are open again: " << index;
  }
}

TEST_F(ChangedHost, ResetNeedsTheOtherDevicesClosed) {
  const int user = open("/dev/ovgpu.5", O_RDWR);
  ASSERT_GE(user, 0);
  EXPECT_EQ(lumoDeviceReset(device(0)), LUMO_RETURN_BUSY);
  EXPECT_EQ(close(user), 0);
  EXPECT_EQ(lumoDeviceReset(device(0)), LUMO_RETURN_SUCCESS);
}

TEST_F(ChangedHost, PowerLimitIsRoundedAndComparedInWholeWatts) {
  EXPECT_EQ(setLimit(1499, 0), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(setLimit(number(0, "values/power_limit/4") - 501, 0), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(setLimit(number(0, "values/power_limit/5") + 500, 0), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(setLimit(4294967295U, 0), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(limits(), tolds(0, {"values/power_limit/1", "values/power_limit/2"}));
  EXPECT_EQ(setLimit(number(0, "values/power_limit/4") - 500, 0), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(limits(), "100000 100000");
  EXPECT_EQ(setLimit(number(0, "values/power_limit/5") + 499, 0), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(limits(), "300000 300000");
  EXPECT_EQ(setLimit(150500, 0), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(limits(), "151000 151000");
  EXPECT_EQ(ask(of(0), lumoDeviceGetDefaultPowerLimit), told(0, "values/power_limit/3"));
}

TEST_F(ChangedHost, APersistentPowerLimitOutlivesTheReset) {
  EXPECT_EQ(setLimit(160000, 0), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoDeviceReset(device(0)), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(limits(), tolds(0, {"values/power_limit/1", "values/power_limit/2"}));
  EXPECT_EQ(setLimit(170000, 1), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(setLimit(180000, 0), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(limits(), "180000 180000");
  EXPECT_EQ(lumoDeviceReset(device(0)), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(limits(), "170000 170000");
}

TEST_F(ChangedHost, PerformanceStateHoldsUntilTheGpuIsReset) {
  EXPECT_EQ(ask(of(0), lumoDeviceGetPerformanceState), told(0, "values/pstate"));
  for (const unsigned state : {0U, 15U, 3U}) {
    EXPECT_EQ(lumoDeviceSetPerformanceState(device(0), state), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(ask(of(0), lumoDeviceGetPerformanceState), text(state));
  }
  EXPECT_EQ(lumoDeviceSetPerformanceState(device(0), 16), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(ask(of(0), lumoDeviceGetPerformanceState), "3");
  EXPECT_EQ(lumoGpuReset(of(0)), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(ask(of(0), lumoDeviceGetPerformanceState), told(0, "values/pstate"));
}

TEST_F(ChangedHost, MeasurementsEndWithTheGpusReset) {
  unsigned session = 0;
  ASSERT_EQ(lumoDeviceStartPciePerf(device(0), 100, &session), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoGpuReset(of(0)), LUMO_RETURN_SUCCESS);
  LumoPcieBandWidth data;
  EXPECT_EQ(lumoDeviceGetPcieBandWidth(device(0), session, &data), LUMO_RETURN_NOT_FOUND);
}

TEST_F(ChangedHost, QueuesOfEventMessagesAreEmptied) {
  char message[256];
  const int queue = open("/proc/driver/vela/gpu0/event_report", O_RDONLY | O_NONBLOCK);
  ASSERT_GE(queue, 0);
  EXPECT_EQ(read(queue, message, sizeof message), static_cast<ssize_t>(sizeof message)) << "the first of two";
  EXPECT_EQ(lumoDeviceResetEventMessages(device(0)), LUMO_RETURN_SUCCESS);
  EXPECT_LE(read(queue, message, sizeof message), 0);
  EXPECT_EQ(close(queue), 0);
}

// A reset sets some of these to 0 too, so they have a run of their own.
class CountersHost : public ChangedHost {};

TEST_F(CountersHost, ErrorCountersOfOneLink) {
  const std::string other = linkErrors(1);
  ASSERT_EQ(linkErrors(0), "61 62 63 64 65 66") << told(0, "values/sablink_errors");
  EXPECT_EQ(lumoDeviceResetSablinkErrorCounter(device(0), 0), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(linkErrors(0), "0 0 0 0 0 0");
  EXPECT_EQ(linkErrors(1), other);
  EXPECT_EQ(other, "71 72 73 74 75 76");
}

TEST_F(CountersHost, EccErrorsOfOneLocation) {
  ASSERT_EQ(eccErrors(), "101 102 103 104") << told(0, "values/ecc_errors");
  EXPECT_EQ(lumoMemoryClearEccErrorCounter(of(0), 1), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(eccErrors(), "101 102 0 0");
  EXPECT_EQ(lumoMemoryClearEccErrorCounter(of(0), 0), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(eccErrors(), "0 0 0 0");
}

TEST_F(CountersHost, CountersOfHardwareErrors) {
  ASSERT_EQ(ask(of(0), lumoDeviceGetPcieReplayCounter), told(0, "values/pcie_replays"));
  ASSERT_EQ(ask(of(0), lumoMemoryGetEdcCounters), told(0, "values/edc_total"));
  EXPECT_EQ(lumoGpuResetHwErrorCounts(of(0)), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(ask(of(0), lumoDeviceGetPcieReplayCounter), "0");
  EXPECT_EQ(ask(of(0), lumoMemoryGetEdcCounters), "0 0 0 0");
  EXPECT_EQ(ask(of(0), lumoGpuGetThermalSlowdownStatistics), "0 0");
  EXPECT_EQ(linkErrors(1), "0 0 0 0 0 0");
}

}  // namespace
