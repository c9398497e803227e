// Records that change the device: settings, counters, resets.
#include <gtest/gtest.h>

#include <cerrno>

#include "test_driver.h"

namespace {

constexpr int kDone = 0;
constexpr int kBadArgument = 1;
constexpr int kNotSupported = 5;
constexpr int kBusy = 7;
constexpr int kNoSuchObject = 12;

class SimSettings : public testing::Test {
 protected:
  static std::string tor1With(const std::string& values, const std::string& more = "") {
    return R"({"gpus": [{"model": "B250A", "misc": 3,)" + more + R"("values": {)" + values + "}}]}";
  }

  static int set(TestDriver& driver, unsigned name, unsigned version, Record payload) {
    return driver.call("ovgpu.3", name, version, payload);
  }

  static Record ask(TestDriver& driver, unsigned name, unsigned version, Record payload) {
    EXPECT_EQ(driver.call("ovgpu.3", name, version, payload), kDone) << "interface " << name;
    return payload;
  }

  static uint64_t powerLimit(TestDriver& driver, uint64_t kind) {
    return ask(driver, 72, 0, Record(24).put(0, 4, kind)).get(4, 4);
  }

  static uint64_t eccErrors(TestDriver& driver, uint64_t type, uint64_t location) {
    return ask(driver, 69, 0, Record(36).put(0, 4, type).put(4, 4, 1).put(8, 4, location)).get(12, 8);
  }

  static uint64_t sablinkErrors(TestDriver& driver, uint64_t link, uint64_t kind) {
    return ask(driver, 20, 3, Record(32).put(0, 4, link).put(4, 4, kind)).get(8, 8);
  }

  static int resetDevice(TestDriver& driver) { return set(driver, 50, 1, Record(16)); }
};

TEST_F(SimSettings, PerformanceStateIsSetUntilAReset) {
  TestDriver driver(tor1With(R"("pstate": 8)"));
  EXPECT_EQ(set(driver, 68, 0, Record(20).put(0, 4, 15)), kDone);
  EXPECT_EQ(ask(driver, 67, 0, Record(20)).get(0, 4), 15u);
  EXPECT_EQ(set(driver, 68, 0, Record(20).put(0, 4, 16)), kBadArgument);
  EXPECT_EQ(set(driver, 29, 1, Record(20)), kDone);
  EXPECT_EQ(ask(driver, 67, 0, Record(20)).get(0, 4), 8u);
}

TEST_F(SimSettings, PowerLimitMustLieBetweenLowestAndHighest) {
  TestDriver driver(tor1With(R"("power_limit": {"1": 250000, "4": 100000, "5": 300000})"));
  EXPECT_EQ(set(driver, 76, 1, Record(20).put(0, 4, 99999)), kBadArgument);
  EXPECT_EQ(set(driver, 76, 1, Record(20).put(0, 4, 300001)), kBadArgument);
  EXPECT_EQ(set(driver, 76, 1, Record(20).put(0, 4, 200000).put(4, 4, 2)), kBadArgument);
  EXPECT_EQ(powerLimit(driver, 1), 250000u);
  EXPECT_EQ(set(driver, 76, 1, Record(20).put(0, 4, 300000)), kDone);
  EXPECT_EQ(powerLimit(driver, 1), 300000u);
  EXPECT_EQ(powerLimit(driver, 2), 300000u) << "what is requested is enforced";
  EXPECT_EQ(powerLimit(driver, 3), 250000u);
}

TEST_F(SimSettings, PowerLimitSurvivesAResetOnlyWhenItIsPersistent) {
  TestDriver driver(R"({"interfaces": {"76": [0, 1]}, "gpus": [{"model": "B250A", "misc": 3}]})");
  EXPECT_EQ(set(driver, 76, 0, Record(20).put(0, 4, 150000)), kDone);
  EXPECT_EQ(powerLimit(driver, 1), 150000u);
  EXPECT_EQ(resetDevice(driver), kDone);
  EXPECT_EQ(powerLimit(driver, 1), 250000u);
  EXPECT_EQ(powerLimit(driver, 2), 250000u);
  EXPECT_EQ(set(driver, 76, 1, Record(20).put(0, 4, 160000).put(4, 4, 1)), kDone);
  EXPECT_EQ(set(driver, 76, 1, Record(20).put(0, 4, 170000)), kDone);
  EXPECT_EQ(resetDevice(driver), kDone);
  EXPECT_EQ(powerLimit(driver, 1), 160000u);
}

TEST_F(SimSettings, PowerLimitThatRefusesIsNotSet) {
  TestDriver driver(tor1With(R"("power_limit": {"status": 10})"));
  EXPECT_EQ(set(driver, 76, 1, Record(20).put(0, 4, 150000)), 10);
}

TEST_F(SimSettings, EccModeIsPendingUntilTheDeviceIsReset) {
  TestDriver driver(tor1With(R"("ecc_current": 0, "ecc_pending": 0)"));
  EXPECT_EQ(set(driver, 49, 1, Record(20).put(0, 4, 1)), kDone);
  EXPECT_EQ(ask(driver, 48, 1, Record(21)).get(0, 4), 0u);
  EXPECT_EQ(set(driver, 29, 1, Record(20)), kDone);
  EXPECT_EQ(ask(driver, 48, 1, Record(21)).get(0, 4), 0u) << "the reset of the GPU alone changes nothing";
  EXPECT_EQ(resetDevice(driver), kDone);
  EXPECT_EQ(ask(driver, 48, 1, Record(21)).get(0, 4), 1u);
  EXPECT_EQ(ask(driver, 48, 1, Record(21)).get(4, 1), 1u);
}

TEST_F(SimSettings, EccErrorsByTypeAndLocationAreClearedByLocation) {
  TestDriver driver(tor1With(R"("ecc_errors": {"0,1,0": 11, "0,1,1": 12, "1,1,0": 13, "1,1,1": 14})"));
  EXPECT_EQ(eccErrors(driver, 0, 0), 11u);
  EXPECT_EQ(eccErrors(driver, 0, 1), 12u);
  EXPECT_EQ(eccErrors(driver, 1, 0), 13u);
  EXPECT_EQ(eccErrors(driver, 1, 1), 14u);
  EXPECT_EQ(set(driver, 69, 0, Record(36).put(4, 4, 2)), kNoSuchObject);
  EXPECT_EQ(set(driver, 70, 0, Record(20).put(0, 4, 2)), kBadArgument);
  EXPECT_EQ(set(driver, 70, 0, Record(20).put(0, 4, 1)), kDone);
  EXPECT_EQ(eccErrors(driver, 0, 1), 0u);
  EXPECT_EQ(eccErrors(driver, 1, 1), 0u);
  EXPECT_EQ(eccErrors(driver, 1, 0), 13u);
  EXPECT_EQ(set(driver, 70, 0, Record(20).put(0, 4, 0)), kDone);
  EXPECT_EQ(eccErrors(driver, 1, 0), 0u);
}

TEST_F(SimSettings, DeviceWithoutEccHasNothingToClear) {
  TestDriver driver(R"({"gpus": [{"model": "B230", "misc": 3}]})");
  EXPECT_EQ(set(driver, 70, 0, Record(20)), kNotSupported);
  EXPECT_EQ(set(driver, 49, 1, Record(20).put(0, 4, 1)), kNotSupported);
}

TEST_F(SimSettings, ResetOfTheDeviceClearsWhatIsVolatile) {
  TestDriver driver(tor1With(R"("sablink_capable": 1, "sablink_links": 2, "pcie_replays": 7,
      "sablink_errors": {"0,0": 5, "1,4": 6}, "ecc_errors": {"0,1,0": 11, "0,1,1": 12})"));
  EXPECT_EQ(resetDevice(driver), kDone);
  EXPECT_EQ(eccErrors(driver, 0, 0), 0u);
  EXPECT_EQ(eccErrors(driver, 0, 1), 12u);
  EXPECT_EQ(sablinkErrors(driver, 0, 0), 0u);
  EXPECT_EQ(sablinkErrors(driver, 1, 4), 0u);
  EXPECT_EQ(ask(driver, 35, 1, Record(32)).get(0, 8), 7u) << "counts since boot";
}

TEST_F(SimSettings, PendingPagesRetireWithAReset) {
  TestDriver driver(tor1With("", R"(
      "retired_pages": [{"cause": "single", "address": "0x1000", "time": 11, "errors": 2}],
      "pending_pages": [
        {"cause": "double", "address": "0x2000", "time": 21, "errors": 3, "last_error": 31,
         "location": {"channel": 4, "bank": 5, "row": 6}},
        {"cause": "single", "address": "0x3000", "time": 22, "errors": 4, "last_error": 32}],)"));
  const Record pending = ask(driver, 47, 1, Record(56).put(24, 4, 0));
  EXPECT_EQ(pending.get(0, 8), 2u);
  EXPECT_EQ(pending.get(8, 8), 0x2000u);
  EXPECT_EQ(pending.get(16, 8), 21u);
  EXPECT_EQ(pending.get(28, 4), 1u);
  EXPECT_EQ(pending.get(32, 8), 0x60504u);
  EXPECT_EQ(pending.get(40, 8), 3u);
  EXPECT_EQ(pending.get(48, 8), 31u);
  EXPECT_EQ(ask(driver, 47, 1, Record(56).put(24, 4, 1)).get(8, 8), 0x3000u);
  EXPECT_EQ(ask(driver, 47, 1, Record(56, 0xAA).put(24, 4, 2)).get(8, 8), 0xAAAAAAAAAAAAAAAAu);
  EXPECT_EQ(ask(driver, 45, 1, Record(24)).get(0, 8), 1u) << "one single, none double";

  EXPECT_EQ(resetDevice(driver), kDone);
  EXPECT_EQ(ask(driver, 47, 1, Record(56)).get(0, 8), 0u);
  EXPECT_EQ(ask(driver, 47, 1, Record(56)).get(8, 8), 0u) << "no row any more";
  const Record counts = ask(driver, 45, 1, Record(24));
  EXPECT_EQ(counts.get(0, 4), 2u);
  EXPECT_EQ(counts.get(4, 4), 1u);
  const Record single = ask(driver, 46, 1, Record(56).put(24, 4, 0).put(28, 4, 1));
  EXPECT_EQ(single.get(0, 8), 2u);
  EXPECT_EQ(single.get(8, 8), 0x3000u);
  EXPECT_EQ(single.get(16, 8), 22u);
  const Record doubled = ask(driver, 46, 1, Record(56).put(24, 4, 1).put(28, 4, 0));
  EXPECT_EQ(doubled.get(8, 8), 0x2000u);
  EXPECT_EQ(doubled.get(36, 4), 1u);
  EXPECT_EQ(doubled.get(40, 8), 0x60504u);
  EXPECT_EQ(doubled.get(48, 8), 3u);
}

TEST_F(SimSettings, CountersOfOneLinkAreReset) {
  TestDriver driver(tor1With(R"("sablink_capable": 1, "sablink_links": 3,
      "sablink_errors": {"0,0": 5, "1,0": 6, "1,5": 7}, "sablink_reset": {"2": {"status": 11}})"));
  EXPECT_EQ(set(driver, 21, 2, Record(20).put(0, 4, 1)), kDone);
  EXPECT_EQ(sablinkErrors(driver, 1, 0), 0u);
  EXPECT_EQ(sablinkErrors(driver, 1, 5), 0u);
  EXPECT_EQ(sablinkErrors(driver, 0, 0), 5u);
  EXPECT_EQ(set(driver, 21, 2, Record(20).put(0, 4, 2)), 11);
  EXPECT_EQ(set(driver, 21, 2, Record(20).put(0, 4, 3)), kNoSuchObject);
}

TEST_F(SimSettings, HardwareErrorCountsAreClearedByGroup) {
  TestDriver driver(tor1With(R"("sablink_capable": 1, "sablink_links": 1, "sablink_errors": {"0,0": 5},
      "pcie_replays": 6, "edc_total": [1, 2, 3, 4], "ecc_errors": {"0,1,0": 7, "0,1,1": 8},
      "slowdown_count": 9, "slowdown_time": 10)"));
  EXPECT_EQ(set(driver, 44, 1, Record(24).put(16, 8, 1)), kDone);
  EXPECT_EQ(ask(driver, 35, 1, Record(32)).get(0, 8), 0u);
  EXPECT_EQ(sablinkErrors(driver, 0, 0), 5u);
  EXPECT_EQ(set(driver, 44, 1, Record(24).put(16, 8, ~uint64_t{0})), kDone);
  EXPECT_EQ(sablinkErrors(driver, 0, 0), 0u);
  EXPECT_EQ(eccErrors(driver, 0, 0), 0u);
  EXPECT_EQ(eccErrors(driver, 0, 1), 8u);
  const Record edc = ask(driver, 64, 2, Record(32));
  EXPECT_EQ(edc.get(0, 8) | edc.get(8, 8), 0u);
  const Record slowdown = ask(driver, 73, 0, Record(24));
  EXPECT_EQ(slowdown.get(0, 8), 0u);
}

TEST_F(SimSettings, EventQueuesAreTheShellsToEmpty) {
  TestDriver driver(tor1With(""));
  EXPECT_EQ(set(driver, 43, 1, Record(16)), kDone);
  EXPECT_TRUE(driver.last().dropsEvents);
  ask(driver, 67, 0, Record(20));
  EXPECT_FALSE(driver.last().dropsEvents);
}

TEST_F(SimSettings, ResetWaitsForOtherDevicesToBeClosed) {
  TestDriver driver(tor1With(R"("pstate": 8, "ecc_current": 0, "ecc_pending": 1)"));
  driver.othersAreOpen = true;
  EXPECT_EQ(resetDevice(driver), kBusy);
  EXPECT_EQ(ask(driver, 48, 1, Record(21)).get(0, 4), 0u);
  EXPECT_EQ(set(driver, 29, 1, Record(20)), kDone) << "the GPU alone does not need them closed";
  EXPECT_EQ(set(driver, 49, 1, Record(20).put(0, 4, 0)), kDone);
  driver.othersAreOpen = false;
  EXPECT_EQ(resetDevice(driver), kDone);
}

}  // namespace
