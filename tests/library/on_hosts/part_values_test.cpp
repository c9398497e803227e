#include "on_hosts/values_fixture.h"

// What the GPU, the memory and the video engine of a device say, against the description of the host.

namespace {

using tolk_test::ask;
using tolk_test::askPages;
using tolk_test::askStates;
using tolk_test::askText;
using tolk_test::ValuesHost;

constexpr unsigned long long kMega = 1'000'000;

TEST_F(ValuesHost, TheGpuTellsItsLoad) {
  const auto of0 = of(kTor1);
  EXPECT_EQ(ask(of0, lumoGpuGetUtilization), told(kTor1, "values/utilization"));
  EXPECT_EQ(ask(of(kPeer), lumoGpuGetUtilization), "100") << "no more than that";
  EXPECT_EQ(ask(of0, lumoGpuGetEngineUtilization, 0U), told(kTor1, "values/engine0"));
  EXPECT_EQ(ask(of0, lumoGpuGetEngineUtilization, 1U), told(kTor1, "values/engine1"));
  EXPECT_EQ(ask(of0, lumoGpuGetEngineUtilization, 2U), told(kTor1, "values/engine2"));
  EXPECT_EQ(ask(of0, lumoGpuGetEngineUtilization, 3U), told(kTor1, "values/engine3"));
  EXPECT_EQ(ask(of0, lumoGpuGetCoreUtilization, 0U), told(kTor1, "values/core_average"));
  EXPECT_EQ(ask(of0, lumoGpuGetCoreUtilization, 1U), told(kTor1, "values/core_max"));
  EXPECT_EQ(ask(of0, lumoGpuGetMemoryControllerUtilization), told(kTor1, "values/memory_busy"));
  EXPECT_EQ(ask(of0, lumoGpuGetGuestUtilization), told(kTor1, "values/vgpu_utilization/0"));
}

TEST_F(ValuesHost, TheGpuTellsItsTemperature) {
  EXPECT_EQ(ask(of(kTor1), lumoGpuGetTemperature), text(number(kTor1, "values/temperature/1000") / 1000));
  EXPECT_EQ(ask(of(kTor1), lumoGpuGetSensorTemperature, 0U),
            text(number(kTor1, "values/temperature/1000") / 1000));
  EXPECT_EQ(ask(of(kTor1), lumoGpuGetSensorTemperature, 1U),
            text(number(kTor1, "values/temperature/1002") / 1000));
  EXPECT_EQ(ask(of(kTor1), lumoGpuGetSensorTemperature, 2U), kNotSupported);
  EXPECT_EQ(ask(of(kTor1), lumoGpuGetMaxTemperature), text(number(kTor1, "values/temperature/1000") / 1000))
      << "the family asks the one sensor that stands for the GPU";
  EXPECT_EQ(ask(of(kFen2), lumoGpuGetTemperature), text(number(kFen2, "values/temperature/9") / 1000));
  EXPECT_EQ(ask(of(kFen2), lumoGpuGetSensorTemperature, 1U),
            text(number(kFen2, "values/temperature/18") / 1000));
  EXPECT_EQ(ask(of(kFen2), lumoGpuGetMaxTemperature), text(number(kFen2, "values/temperature/27") / 1000));
  EXPECT_EQ(ask(of(kWold), lumoGpuGetTemperature), text(number(kWold, "values/temperature/1") / 1000));
  EXPECT_EQ(ask(of(kWold), lumoGpuGetSensorTemperature, 1U),
            text(number(kWold, "values/temperature/2") / 1000));
}

TEST_F(ValuesHost, TheGpuTellsItsClocks) {
  EXPECT_EQ(ask(of(kTor1), lumoGpuGetClock), text(number(kTor1, "values/clock/1000") / kMega));
  EXPECT_EQ(ask(of(kFen2), lumoGpuGetClock), text(number(kFen2, "values/clock/79") / kMega)) << "the larger";
  EXPECT_EQ(ask(of(kB230E), lumoGpuGetClock), text(number(kB230E, "values/clock/72") / kMega));
  EXPECT_EQ(ask(of(kWold), lumoGpuGetClock), text(number(kWold, "values/clock/0") / kMega));
  EXPECT_EQ(ask(of(kB230E), lumoGpuGetMaxClock), kNotSupported) << "drivers of today do not tell it";
  EXPECT_EQ(ask(of(kFen2), lumoGpuGetMaxClock), kNotSupported);
}

TEST_F(ValuesHost, TheGpuTellsItsUnitsAndSlowdowns) {
  const unsigned long long third = number(kTor1, "values/units_per_core/3");
  EXPECT_EQ(ask(of(kTor1), lumoGpuCountCoreMpx, 1ULL << 3), text(third));
  EXPECT_EQ(ask(of(kTor1), lumoGpuCountCoreMpx, 0xBULL),
            text(third + number(kTor1, "values/units_per_core/1")));
  EXPECT_EQ(ask(of(kTor1), lumoGpuCountCoreMpx, 1ULL), "0") << "a core that is absent";
  EXPECT_EQ(ask(of(kTor1), lumoGpuCountCoreMpx, 0ULL), "refused 3");
  EXPECT_EQ(ask(of(kTor1), lumoGpuCountCoreMpx, 1ULL << 13), told(kTor1, "values/units_per_core/13"));
  EXPECT_EQ(ask(of(kTor1), lumoGpuCountCoreMpx, 1ULL << 14), "refused 3") << "the core count is 14";
  EXPECT_EQ(ask(of(kTor1), lumoGpuGetThermalSlowdownStatistics),
            tolds(kTor1, {"values/slowdown_count", "values/slowdown_time"}));
}

TEST_F(ValuesHost, TheMemoryTellsItsUse) {
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetTotal), told(kTor1, "values/memory_total"));
  const unsigned long long regions = number(kTor1, "values/memory_region0") +
                                     number(kTor1, "values/memory_region1") +
                                     number(kTor1, "values/memory_region2");
  ASSERT_GT(regions, number(kTor1, "values/memory_used"));
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetUsed), text(regions)) << "the larger of total and sum";
  EXPECT_EQ(ask(of(kPeer), lumoMemoryGetUsed),
            text(number(kPeer, "values/memory_region1") + number(kPeer, "values/memory_region2")))
      << "without what is not known";
  EXPECT_EQ(ask(of(kPeer), lumoMemoryGetTotal), "0");
  EXPECT_EQ(ask(of(kPeer), lumoMemoryGetUtilization), "refused 999") << "a memory of 0 bytes";
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetUtilization),
            text(regions * 100 / number(kTor1, "values/memory_total")));
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetSystemTotal), kNotSupported)
      << "a driver of this protocol has it not";
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetGuestReserved), kNotSupported);
}

TEST_F(ValuesHost, TheMemoryTellsItsKind) {
  const unsigned long long width =
      number(kTor1, "values/channel_count") * number(kTor1, "values/channel_width");
  const unsigned long long clock = number(kTor1, "values/clock/1001") / kMega;
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetClock), text(clock));
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetSpeed), text(clock * 8));
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetBusWidth), text(width));
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetBandwidth), text(clock * 8 * width / 8000));
  EXPECT_EQ(askText(of(kTor1), lumoMemoryGetVendor), "Micron") << told(kTor1, "values/memory_vendor");
  EXPECT_EQ(askText(of(kB230E), lumoMemoryGetVendor), "Hynix");
  EXPECT_EQ(askText(of(kWold), lumoMemoryGetVendor), "Samsung");
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetType), told(kTor1, "values/memory_type"));
  EXPECT_EQ(ask(of(kB230E), lumoMemoryGetType), told(kB230E, "values/memory_type"));
  EXPECT_EQ(ask(of(kWold), lumoMemoryGetSpeed), "3733") << "of a clock of 1866 MHz";
  EXPECT_EQ(ask(of(kWold), lumoMemoryGetBandwidth), text(3733 * 32 / 8000));
  EXPECT_EQ(ask(of(kB230E), lumoMemoryGetClock), "0") << "1 Hz";
  EXPECT_EQ(ask(of(kB230E), lumoMemoryGetSpeed), "0");
  EXPECT_EQ(ask(of(kB230E), lumoMemoryGetMaxClock), text(number(kB230E, "values/memory_clock_max") / kMega));
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetMaxClock), kNotSupported);
}

TEST_F(ValuesHost, TheMemoryTellsItsErrors) {
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetEdcCounters), told(kTor1, "values/edc_total"));
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetEccMode), tolds(kTor1, {"values/ecc_current", "values/ecc_pending"}));
  for (const unsigned errorType : {0U, 1U}) {
    for (const unsigned location : {0U, 1U}) {
      EXPECT_EQ(ask(of(kTor1), lumoMemoryGetEccErrorCounter, errorType, 1U, location),
                told(kTor1, "values/ecc_errors/" + text(errorType) + ",1," + text(location)));
    }
  }
  const auto page = [this](const std::string& row) {
    return tolds(kTor1, {(row + "/address").c_str(), (row + "/time").c_str(), (row + "/cause").c_str(),
                         (row + "/location").c_str(), (row + "/errors").c_str()});
  };
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetRetiredPagesCount), "1 2");
  EXPECT_EQ(askPages(of(kTor1), LUMO_RETIREMENT_SINGLE_BIT), page("retired_pages/0"));
  EXPECT_EQ(askPages(of(kTor1), LUMO_RETIREMENT_DOUBLE_BIT),
            page("retired_pages/1") + "; " + page("retired_pages/2"));
  EXPECT_EQ(ask(of(kTor1), lumoMemoryGetRetiredPagesPendingStatus), "1");
  EXPECT_EQ(ask(of(kPeer), lumoMemoryGetRetiredPagesPendingStatus), "0");
  EXPECT_EQ(askPages(of(kPeer), LUMO_RETIREMENT_SINGLE_BIT), "empty");
}

TEST_F(ValuesHost, TheVideoEngineTellsItsLoad) {
  // Of the cores 1 and 3 encode, 0 decodes, and 2 does both.
  EXPECT_EQ(ask(of(kTor1), lumoVpuGetUtilization),
            text((10 + 20 + 35 + 41) / 4) + " " + text((20 + 41) / 2) + " 10");
  EXPECT_EQ(ask(of(kPeer), lumoVpuGetUtilization), "90 0 0") << "a core that does both";
  EXPECT_EQ(ask(of(kTor1), lumoVpuGetClock), text(number(kTor1, "vpu_cores/1/clock") / kMega))
      << "of the first encoder";
  EXPECT_EQ(ask(of(kPeer), lumoVpuGetClock), text(number(kPeer, "vpu_cores/0/clock") / kMega));
  EXPECT_EQ(ask(of(kTor1), lumoVpuGetMaxClock), kNotSupported);
  EXPECT_EQ(ask(of(kB230E), lumoVpuGetMaxClock), text(number(kB230E, "vpu_cores/1/clock") / kMega));
  // Cores that do both count for either.
  EXPECT_EQ(ask(of(kTor1), lumoVpuGetCodecCapacity), text(2 + 3 + 4) + " " + text(2 + 4));
}

TEST_F(ValuesHost, TheVideoEngineTellsItsSessions) {
  const auto session = [this](const std::string& row, unsigned id) {
    return "1 " +
           tolds(kTor1, {(row + "/pid").c_str(), (row + "/codec").c_str(), (row + "/h_res").c_str(),
                         (row + "/v_res").c_str(), (row + "/fps").c_str(), (row + "/bitrate").c_str()}) +
           " " + text(id);
  };
  EXPECT_EQ(askStates(of(kTor1), lumoVpuGetEncoderSessionStates), "01100") << "two slots, then three";
  EXPECT_EQ(askStates(of(kTor1), lumoVpuGetDecoderSessionStates), "10");
  EXPECT_EQ(askStates(of(kPeer), lumoVpuGetEncoderSessionStates), "empty");
  EXPECT_EQ(ask(of(kTor1), lumoVpuGetEncoderSessionMetrics, 1U), session("vpu_sessions/0", 1));
  EXPECT_EQ(ask(of(kTor1), lumoVpuGetEncoderSessionMetrics, 2U), session("vpu_sessions/1", 2));
  EXPECT_EQ(ask(of(kTor1), lumoVpuGetDecoderSessionMetrics, 0U), session("vpu_sessions/2", 0));
  EXPECT_EQ(ask(of(kTor1), lumoVpuGetEncoderSessionMetrics, 0U), "0 0 0 0 0 0 0 0") << "an idle one";
  EXPECT_EQ(ask(of(kTor1), lumoVpuGetEncoderSessionMetrics, 5U), "refused 3") << "past the end";
  EXPECT_EQ(ask(of(kTor1), lumoVpuGetDecoderSessionMetrics, 2U), "refused 3");
}

}  // namespace
