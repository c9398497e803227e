#include <array>
#include <cstddef>

#include "lumo_access_fixture.h"

namespace tolk {
namespace {

using testing::ElementsAre;
using tolk_test::device;
using tolk_test::fakeLumo;

/// The methods that hand on what one call gives.
class LumoAccessValuesTest : public LumoAccessTest {
 protected:
  template <class Out>
  using Getter = LumoReturn (LumoAccessDevice::*)(Out&) const;
  using TwoNumbers = std::pair<std::uint32_t, std::uint32_t>;

  template <class Out>
  struct Case {
    const char* method;
    Getter<Out> get;
    const char* call;
  };

  template <class Out, std::size_t count>
  void expectValues(const Case<Out> (&cases)[count], const Out& value) {
    for (const auto& [method, get, call] : cases) {
      expectValue(method, call, value, [&, getter = get](Out& out) { return (device_.*getter)(out); });
    }
  }

  template <class Run>
  void expectTwoNumbers(const char* method, const std::string& call, Run run) {
    fakeLumo().set(call, 17u, 4u);
    expectOutput(method, call, TwoNumbers{1, 2}, TwoNumbers{17, 4},
                 [&](TwoNumbers& out) { return run(out.first, out.second); });
  }

  template <class Run>
  void expectAction(const char* method, const std::string& call, Run run) {
    EXPECT_EQ(run(), LUMO_RETURN_SUCCESS) << method;
    EXPECT_THAT(fakeLumo().lines, ElementsAre(call));
    expectFailure(method, call, run);
    reset();
  }
};

#define METHOD(name) #name, &LumoAccessDevice::name

TEST_F(LumoAccessValuesTest, Numbers) {
  expectValues<std::uint32_t>({{METHOD(devGetIndex), "lumoDeviceGetIndex(device 0)"},
                               {METHOD(devGetBranddType), "lumoDeviceGetBrand(device 0)"},
                               {METHOD(devGetFanNum), "lumoDeviceCountFan(device 0)"},
                               {METHOD(deviceCountDispIntf), "lumoDeviceCountDisplayInterface(device 0)"},
                               {METHOD(deviceGetPerfState), "lumoDeviceGetPerformanceState(device 0)"},
                               {METHOD(gpuGetUtilization), "lumoGpuGetUtilization(gpu 0)"},
                               {METHOD(gpuGetClock), "lumoGpuGetClock(gpu 0)"},
                               {METHOD(gpuGetMaxClock), "lumoGpuGetMaxClock(gpu 0)"},
                               {METHOD(vpuGetClock), "lumoVpuGetClock(vpu 0)"},
                               {METHOD(vpuGetMaxClock), "lumoVpuGetMaxClock(vpu 0)"},
                               {METHOD(memoryGetUtilization), "lumoMemoryGetUtilization(memory 0)"},
                               {METHOD(memoryGetClock), "lumoMemoryGetClock(memory 0)"},
                               {METHOD(memoryGetMaxClock), "lumoMemoryGetMaxClock(memory 0)"},
                               {METHOD(memoryGetBandwidth), "lumoMemoryGetBandwidth(memory 0)"},
                               {METHOD(memoryGetSpeed), "lumoMemoryGetSpeed(memory 0)"},
                               {METHOD(memoryGetType), "lumoMemoryGetType(memory 0)"},
                               {METHOD(memoryGetBusWidth), "lumoMemoryGetBusWidth(memory 0)"}},
                              4000000000u);
}

TEST_F(LumoAccessValuesTest, Bytes) {
  expectValues<unsigned long long>({{METHOD(memoryGetTotal), "lumoMemoryGetTotal(memory 0)"},
                                    {METHOD(memoryGetUsed), "lumoMemoryGetUsed(memory 0)"}},
                                   1ull << 36);
}

TEST_F(LumoAccessValuesTest, DegreesBelowZero) {
  expectValues<std::int32_t>({{METHOD(gpuGetTemperature), "lumoGpuGetTemperature(gpu 0)"}}, -12);
}

TEST_F(LumoAccessValuesTest, TextsWithTheLengthOfTheirBuffers) {
  expectValues<std::string>({{METHOD(devGetUUID), "lumoDeviceGetUUID(device 0, 48)"},
                             {METHOD(deviceGetSerialNumber), "lumoDeviceGetSerialNumber(device 0, 256)"},
                             {METHOD(devGetOvBiosVersion), "lumoDeviceGetOvBiosVersion(device 0, 256)"},
                             {METHOD(memoryGetVendor), "lumoMemoryGetVendor(memory 0, 256)"}},
                            "a text");
}

TEST_F(LumoAccessValuesTest, Records) {
  expectValues<LumoPciSlotInfo>({{METHOD(deviceGetPcieSlotInfo), "lumoDeviceGetPcieSlotInfo(device 0)"}},
                                {3, "SLOT3"});
  expectValues<LumoVpuUtilization>({{METHOD(vpuGetUtilization), "lumoVpuGetUtilization(vpu 0)"}}, {9, 7, 11});
  expectValues<LumoSablinkSpec>({{METHOD(getSablinkSpec), "lumoDeviceGetSablinkSpec(device 0)"}},
                                {4, 50000, 200});
}

TEST_F(LumoAccessValuesTest, TwoNumbersOfOneCall) {
  expectTwoNumbers("gpuGetThermalSlowdownStatistics", "lumoGpuGetThermalSlowdownStatistics(gpu 0)",
                   [&](auto& count, auto& ms) { return device_.gpuGetThermalSlowdownStatistics(count, ms); });
  expectTwoNumbers("vpuGetCodecCapacity", "lumoVpuGetCodecCapacity(vpu 0)",
                   [&](auto& encode, auto& decode) { return device_.vpuGetCodecCapacity(encode, decode); });
  expectTwoNumbers("memoryGetEccMode", "lumoMemoryGetEccMode(memory 0)",
                   [&](auto& current, auto& pending) { return device_.memoryGetEccMode(current, pending); });
  expectTwoNumbers("memoryCountRetiredPages", "lumoMemoryGetRetiredPagesCount(memory 0)",
                   [&](auto& one, auto& two) { return device_.memoryCountRetiredPages(one, two); });
}

TEST_F(LumoAccessValuesTest, OneOfSeveral) {
  expectValue("devGetFanSpeed", "lumoDeviceGetFanSpeed(device 0, 2)", 40u,
              [&](auto& percent) { return device_.devGetFanSpeed(2, percent); });
  expectValue("deviceGetDispIntfSpec", "lumoDeviceGetDisplayInterfaceSpec(device 0, 1)",
              LumoDispIntfSpec{3, 1920, 1080, 1485, 59.94f},
              [&](auto& spec) { return device_.deviceGetDispIntfSpec(1, spec); });
  expectValue("vpuGetEncoderSessionMetrics", "lumoVpuGetEncoderSessionMetrics(vpu 0, 37)",
              LumoVpuSessionMetrics{1, 4242, 12, 1920, 1080, 30, 4000, 37},
              [&](auto& metrics) { return device_.vpuGetEncoderSessionMetrics(37, metrics); });
  expectValue("vpuGetDecoderSessionMetrics", "lumoVpuGetDecoderSessionMetrics(vpu 0, 575)",
              LumoVpuSessionMetrics{1, 4243, 0, 1280, 720, 60, 2000, 575},
              [&](auto& metrics) { return device_.vpuGetDecoderSessionMetrics(575, metrics); });
  expectValue("getSablinkState", "lumoDeviceGetSablinkState(device 0, 3)", 2u,
              [&](auto& state) { return device_.getSablinkState(3, state); });
  expectValue("getSablinkCapStatus", "lumoDeviceGetSablinkCapStatus(device 0, 3, 1)", 1u,
              [&](auto& status) { return device_.getSablinkCapStatus(3, 1, status); });
  expectValue("getSablinkErrCounter", "lumoDeviceGetSablinkErrorCounter(device 0, 4294967295, 2)", 1ull << 40,
              [&](auto& count) { return device_.getSablinkErrCounter(4294967295, 2, count); });
  expectValue("vGpuGetMaxInstance", "lumoDeviceCountMaxVirtDevices(device 0, \"11\")", 8u,
              [&](auto& count) { return device_.vGpuGetMaxInstance("11", count); });
}

TEST_F(LumoAccessValuesTest, Actions) {
  expectAction("deviceReset", "lumoDeviceReset(device 0)", [&] { return device_.deviceReset(); });
  expectAction("gpuReset", "lumoGpuReset(gpu 0)", [&] { return device_.gpuReset(); });
  expectAction("gpuHwrCountsReset", "lumoGpuResetHwErrorCounts(gpu 0)",
               [&] { return device_.gpuHwrCountsReset(); });
  expectAction("memoryEnableEccMode", "lumoMemorySetEccMode(memory 0, 1)",
               [&] { return device_.memoryEnableEccMode(); });
  expectAction("memoryDisableEccMode", "lumoMemorySetEccMode(memory 0, 0)",
               [&] { return device_.memoryDisableEccMode(); });
  expectAction("enableMpcMode", "lumoDeviceSetMpcMode(device 0, 1)", [&] { return device_.enableMpcMode(); });
  expectAction("disableMpcMode", "lumoDeviceSetMpcMode(device 0, 0)",
               [&] { return device_.disableMpcMode(); });
  expectAction("setMpcConfiguration", "lumoDeviceSetMpcConfiguration(device 0, 4294967295)",
               [&] { return device_.setMpcConfiguration(4294967295); });
  expectAction("resetSablinkErrCounters", "lumoDeviceResetSablinkErrorCounter(device 0, 3)",
               [&] { return device_.resetSablinkErrCounters(3); });
  expectAction("setPowerLimit", "lumoDeviceSetPowerLimitWithPersistentOption(device 0, 250400, 1)",
               [&] { return device_.setPowerLimit(250.4, true); });
}

TEST_F(LumoAccessValuesTest, PendingRetirementIsYesOrNo) {
  fakeLumo().set("lumoMemoryGetRetiredPagesPendingStatus", 1u);
  expectOutput("memoryGetRetiredPagesPendingStatus", "lumoMemoryGetRetiredPagesPendingStatus(memory 0)",
               false, true, [&](bool& out) { return device_.memoryGetRetiredPagesPendingStatus(out); });
  bool pending = true;
  EXPECT_EQ(device_.memoryGetRetiredPagesPendingStatus(pending), 0);
  EXPECT_FALSE(pending);
}

TEST_F(LumoAccessValuesTest, PowerIsInWatts) {
  const Case<double> cases[] = {
      {METHOD(getPowerUsage), "lumoDeviceGetPowerUsage(device 0)"},
      {METHOD(getCurrentPowerLimit), "lumoDeviceGetEnforcedPowerLimit(device 0)"},
      {METHOD(getRequestedPowerLimit), "lumoDeviceGetPowerLimit(device 0)"},
      {METHOD(getDefaultPowerLimit), "lumoDeviceGetDefaultPowerLimit(device 0)"},
  };
  for (const auto& [method, get, call] : cases) {
    fakeLumo().set(call, 12345u);
    expectOutput(method, call, 1.0, 12.345,
                 [&, getter = get](double& watts) { return (device_.*getter)(watts); });
  }
}

TEST_F(LumoAccessValuesTest, PowerLimitConstraintsAreInWatts) {
  using Limits = std::pair<double, double>;
  const std::string call = "lumoDeviceGetPowerLimitConstraints(device 0)";
  fakeLumo().set(call, 100500u, 300000u);
  expectOutput("getPowerLimitConstraints", call, Limits{1, 2}, Limits{100.5, 300},
               [&](Limits& limits) { return device_.getPowerLimitConstraints(limits.first, limits.second); });
}

TEST_F(LumoAccessValuesTest, PowerLimitGoesDownInMilliwattsToTheNearest) {
  struct Sent {
    double watts;
    bool persistent;
    const char* arguments;
  };
  for (const auto& [watts, persistent, arguments] : {Sent{250, false, "250000, 0"},
                                                     {150.5, true, "150500, 1"},
                                                     {0.0004, false, "0, 0"},
                                                     {0.0005, false, "1, 0"},
                                                     {1.2346, false, "1235, 0"},
                                                     {0, false, "0, 0"},
                                                     {-1, false, "0, 0"},
                                                     {4294967.295, false, "4294967295, 0"},
                                                     {4294967.296, false, "4294967295, 0"},
                                                     {1e300, false, "4294967295, 0"}}) {
    EXPECT_EQ(device_.setPowerLimit(watts, persistent), 0);
    EXPECT_EQ(fakeLumo().lines.back(),
              std::string("lumoDeviceSetPowerLimitWithPersistentOption(device 0, ") + arguments + ")");
  }
}

TEST_F(LumoAccessValuesTest, EccErrorsAreFourDecimalCounts) {
  const auto call = [](const char* which) {
    return std::string("lumoMemoryGetEccErrorCounter(memory 0, ") + which + ")";
  };
  const std::array<std::string, 4> calls{call("0, 1, 0"), call("1, 1, 0"), call("0, 1, 1"), call("1, 1, 1")};
  fakeLumo().set(calls[0], 0ull);
  fakeLumo().set(calls[1], 12ull);
  fakeLumo().set(calls[2], 18446744073709551615ull);
  fakeLumo().set(calls[3], 3ull);
  EccErrorCounts counts;
  EXPECT_EQ(device_.memoryGetEccErrorCounter(counts), 0);
  EXPECT_THAT(counts, ElementsAre("0", "12", "18446744073709551615", "3"));
  EXPECT_THAT(fakeLumo().lines, testing::ElementsAreArray(calls));

  for (const auto& failing : calls) {
    EccErrorCounts before{"before", "", "", ""};
    const auto kept = before;
    expectFailure("memoryGetEccErrorCounter", failing,
                  [&] { return device_.memoryGetEccErrorCounter(before); });
    EXPECT_EQ(before, kept);
  }
}

TEST_F(LumoAccessValuesTest, HandlesAreThoseThatWereSetLast) {
  EXPECT_EQ(device_.getLumoModuleSet().device, device(0));
  device_.setLumoModuleSet({.device = device(5)});
  EXPECT_EQ(device_.getLumoModuleSet().device, device(5));
  EXPECT_EQ(device_.getLumoModuleSet().gpu, nullptr);
  EXPECT_EQ(device_.deviceReset(), 0);
  EXPECT_EQ(device_.gpuReset(), 0);
  EXPECT_THAT(fakeLumo().lines, ElementsAre("lumoDeviceReset(device 5)", "lumoGpuReset(null)"));
}

/// Number of a virtual method in its table, as this platform's pointers to members hold it.
template <class Method>
std::size_t slotOf(Method method) {
  std::array<std::ptrdiff_t, 2> parts{};
  static_assert(sizeof method == sizeof parts);
  std::memcpy(parts.data(), &method, sizeof method);
  return static_cast<std::size_t>(parts[0] - 1) / sizeof(void*);
}

TEST_F(LumoAccessValuesTest, VirtualMethodsKeepTheirOrder) {
  using D = LumoAccessDevice;
  const std::size_t slots[] = {slotOf(&D::devGetIndex),
                               slotOf(&D::devGetUUID),
                               slotOf(&D::deviceGetSerialNumber),
                               slotOf(&D::deviceGetPcieSlotInfo),
                               slotOf(&D::devGetBranddType),
                               slotOf(&D::devGetName),
                               slotOf(&D::devGetPciInfo),
                               slotOf(&D::devGetFanNum),
                               slotOf(&D::devGetFanSpeed),
                               slotOf(&D::devGetOvBiosVersion),
                               slotOf(&D::devGetMpcCapability),
                               slotOf(&D::devGetDeviceType),
                               slotOf(&D::deviceCountDispIntf),
                               slotOf(&D::deviceGetDispIntfSpec),
                               slotOf(&D::deviceReset),
                               slotOf(&D::deviceGetPerfState),
                               slotOf(&D::gpuGetUtilization),
                               slotOf(&D::gpuGetTemperature),
                               slotOf(&D::gpuGetClock),
                               slotOf(&D::gpuGetMaxClock),
                               slotOf(&D::gpuReset),
                               slotOf(&D::gpuHwrCountsReset),
                               slotOf(&D::gpuGetThermalSlowdownStatistics),
                               slotOf(&D::vpuGetUtilization),
                               slotOf(&D::vpuGetClock),
                               slotOf(&D::vpuGetMaxClock),
                               slotOf(&D::vpuGetCodecCapacity),
                               slotOf(&D::vpuGetEncoderSessionStates),
                               slotOf(&D::vpuGetEncoderSessionMetrics),
                               slotOf(&D::vpuGetDecoderSessionStates),
                               slotOf(&D::vpuGetDecoderSessionMetrics),
                               slotOf(&D::memoryGetTotal),
                               slotOf(&D::memoryGetUsed),
                               slotOf(&D::memoryGetUtilization),
                               slotOf(&D::memoryGetClock),
                               slotOf(&D::memoryGetMaxClock),
                               slotOf(&D::memoryGetBandwidth),
                               slotOf(&D::memoryGetSpeed),
                               slotOf(&D::memoryGetType),
                               slotOf(&D::memoryGetBusWidth),
                               slotOf(&D::memoryGetVendor),
                               slotOf(&D::memoryGetEccMode),
                               slotOf(&D::memoryGetEccErrorCounter),
                               slotOf(&D::memoryEnableEccMode),
                               slotOf(&D::memoryDisableEccMode),
                               slotOf(&D::memoryGetRetiredPagesPendingStatus),
                               slotOf(&D::memoryCountRetiredPages),
                               slotOf(&D::memoryGetRetiredPages)};
  constexpr std::size_t kDestructors = 2;
  for (std::size_t i = 0; i < std::size(slots); ++i) EXPECT_EQ(slots[i], kDestructors + i) << i;
}

}  // namespace
}  // namespace tolk
