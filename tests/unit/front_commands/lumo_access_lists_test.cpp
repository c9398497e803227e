#include "lumo_access_fixture.h"

namespace tolk {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tolk_test::device;
using tolk_test::fakeLumo;

/// The methods that count and list.
class LumoAccessListsTest : public LumoAccessTest {
 protected:
  /// That a method counts by one function and lists by another, that a count of 0 makes no list call, and
  /// that either failure leaves the output alone.
  template <class Entry, class Run>
  void expectList(const char* method, const char* count, const char* list, std::vector<Entry> entries,
                  Run run) {
    fakeLumo().set(count, 0u);
    std::vector<Entry> found = entries;
    EXPECT_EQ(run(found), LUMO_RETURN_SUCCESS) << method;
    EXPECT_TRUE(found.empty()) << method;
    EXPECT_THAT(fakeLumo().lines, ElementsAre(count));
    fakeLumo().lines.clear();

    fakeLumo().setList(count, list, entries);
    EXPECT_EQ(run(found), LUMO_RETURN_SUCCESS) << method;
    EXPECT_TRUE(same(found, entries)) << method;
    EXPECT_THAT(fakeLumo().lines, ElementsAre(count, list));
    EXPECT_THAT(log_.lines, IsEmpty());

    for (const auto* const failing : {count, list}) {
      std::vector<Entry> kept(2, entries.back());
      expectFailure(method, failing, [&] { return run(kept); });
      EXPECT_EQ(kept.size(), 2u) << method;
    }
    reset();
  }
};

LumoMpcProfile profile(unsigned id, const char* name) {
  LumoMpcProfile made{};
  made.id = id;
  std::snprintf(made.name, sizeof made.name, "%s", name);
  return made;
}

LumoProcessMemUsage usage(unsigned pid) {
  return {pid, 0, 1, 0, 0};
}

LumoRetiredPage page(unsigned long long address, unsigned cause) {
  return {address, 0, cause, 0, 0, 1, {}};
}

LumoEventData event(unsigned xid) {
  LumoEventData made{};
  made.record.xid = xid;
  return made;
}

TEST_F(LumoAccessListsTest, RecordsAreCountedThenListed) {
  expectList<LumoMpcConfiguration>(
      "getSupportedMpcConfiguretions", "lumoDeviceCountSupportedMpcConfigurations(device 0)",
      "lumoDeviceGetSupportedMpcConfigurations(device 0, 2)", {{1, 1, "1x16", {4}}, {2, 2, "2x8", {5, 5}}},
      [&](auto& list) { return device_.getSupportedMpcConfiguretions(list); });
  expectList<LumoMpcProfile>("getSupportedMpcProfiles", "lumoDeviceCountSupportedMpcProfiles(device 0)",
                             "lumoDeviceGetSupportedMpcProfiles(device 0, 2)",
                             {profile(4, "1c.16g"), profile(5, "1c.8g")},
                             [&](auto& list) { return device_.getSupportedMpcProfiles(list); });
  expectList<LumoVirtType>("vGpuGetSupportedType", "lumoDeviceCountSupportedVirtTypes(device 0)",
                           "lumoDeviceGetSupportedVirtTypes(device 0, 1)",
                           {{"11", "vfio-pci", "OVT B230-2Q", 4096, 2160, 2, 4, 2048, 8, 1}},
                           [&](auto& list) { return device_.vGpuGetSupportedType(list); });
  expectList<LumoProcessMemUsage>("getProcessMemoryInfo", "lumoDeviceCountProcessMemoryUsages(device 0)",
                                  "lumoDeviceGetProcessMemoryUsages(device 0, 2)", {usage(17), usage(4242)},
                                  [&](auto& list) { return device_.getProcessMemoryInfo(list); });
  expectList<LumoProcessGpuUtilization>(
      "getProcessGpuUtilization", "lumoDeviceCountProcessGpuUtilizations(device 0)",
      "lumoDeviceGetProcessGpuUtilizations(device 0, 1)", {{4242, 1, 5, 60, 20, 0, 3}},
      [&](auto& list) { return device_.getProcessGpuUtilization(list); });
  expectList<std::string>("getNicDeviceSbdf", "lumoDeviceCountPciNicDevices(device 0)",
                          "lumoDeviceGetPciNicDeviceSbdf(device 0, 32, 2)", {"0000:03:00.0", "0000:04:00.1"},
                          [&](auto& list) { return device_.getNicDeviceSbdf(list); });
}

TEST_F(LumoAccessListsTest, AdaptersThatWentAwayLeaveNoEmptyAddresses) {
  fakeLumo().set("lumoDeviceCountPciNicDevices", 3u);
  fakeLumo().set("lumoDeviceGetPciNicDeviceSbdf", std::vector<std::string>{"0000:03:00.0"});
  std::vector<std::string> sbdfs;
  EXPECT_EQ(device_.getNicDeviceSbdf(sbdfs), 0);
  EXPECT_THAT(sbdfs, ElementsAre("0000:03:00.0"));
}

TEST_F(LumoAccessListsTest, ProcessListThatGrewIsAskedOnceMore) {
  fakeLumo().setList("lumoDeviceCountProcessMemoryUsages", "lumoDeviceGetProcessMemoryUsages",
                     std::vector{usage(4242)});
  fakeLumo().fail("lumoDeviceGetProcessMemoryUsages", {LUMO_RETURN_INSUFFICIENT_SIZE});
  std::vector<LumoProcessMemUsage> processes;
  EXPECT_EQ(device_.getProcessMemoryInfo(processes), 0);
  ASSERT_EQ(processes.size(), 1u);
  EXPECT_EQ(processes[0].pid, 4242u);
  EXPECT_THAT(fakeLumo().calls,
              ElementsAre("lumoDeviceCountProcessMemoryUsages", "lumoDeviceGetProcessMemoryUsages",
                          "lumoDeviceCountProcessMemoryUsages", "lumoDeviceGetProcessMemoryUsages"));
}

TEST_F(LumoAccessListsTest, ProcessListThatGrowsTwiceFails) {
  fakeLumo().set("lumoDeviceCountProcessGpuUtilizations", 1u);
  fakeLumo().fail("lumoDeviceGetProcessGpuUtilizations",
                  {LUMO_RETURN_INSUFFICIENT_SIZE, LUMO_RETURN_INSUFFICIENT_SIZE});
  std::vector<LumoProcessGpuUtilization> processes;
  EXPECT_EQ(device_.getProcessGpuUtilization(processes), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_THAT(processes, IsEmpty());
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceGetProcessGpuUtilizations"), 2);
}

TEST_F(LumoAccessListsTest, OtherListsThatGrewAreNotAskedAgain) {
  fakeLumo().set("lumoDeviceCountSupportedVirtTypes", 1u);
  fakeLumo().fail("lumoDeviceGetSupportedVirtTypes", {LUMO_RETURN_INSUFFICIENT_SIZE});
  std::vector<LumoVirtType> types;
  EXPECT_EQ(device_.vGpuGetSupportedType(types), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(fakeLumo().calls.size(), 2u);
}

TEST_F(LumoAccessListsTest, ProcessListThatShrankHasNoEmptyEntries) {
  fakeLumo().set("lumoDeviceCountProcessMemoryUsages", 3u);
  fakeLumo().set("lumoDeviceGetProcessMemoryUsages", std::vector{usage(4242)});
  std::vector<LumoProcessMemUsage> processes;
  EXPECT_EQ(device_.getProcessMemoryInfo(processes), 0);
  EXPECT_EQ(processes.size(), 1u);
}

TEST_F(LumoAccessListsTest, ProcessOfAnotherNamespaceCountsWithoutAPid) {
  fakeLumo().set("lumoDeviceCountProcessMemoryUsages", 3u);
  fakeLumo().set("lumoDeviceGetProcessMemoryUsages", std::vector{usage(0), usage(4242)});
  std::vector<LumoProcessMemUsage> processes;
  EXPECT_EQ(device_.getProcessMemoryInfo(processes), 0);
  ASSERT_EQ(processes.size(), 2u);
  EXPECT_EQ(processes[0].pid, 0u);
}

TEST_F(LumoAccessListsTest, RetiredPagesOfBothCausesAreJoined) {
  fakeLumo().set("lumoMemoryGetRetiredPagesCount", 2u, 1u);
  fakeLumo().set("lumoMemoryGetRetiredPages(memory 0, 0, 2)", std::vector{page(0x2000, 0), page(0x1000, 0)});
  fakeLumo().set("lumoMemoryGetRetiredPages(memory 0, 1, 1)", std::vector{page(0x500, 1)});
  std::vector<LumoRetiredPage> pages;
  EXPECT_EQ(device_.memoryGetRetiredPages(pages), 0);
  ASSERT_EQ(pages.size(), 3u);
  EXPECT_EQ(pages[0].address, 0x2000u);
  EXPECT_EQ(pages[1].address, 0x1000u);
  EXPECT_EQ(pages[2].address, 0x500u);
  EXPECT_EQ(pages[2].cause, 1u);
  EXPECT_THAT(fakeLumo().calls, ElementsAre("lumoMemoryGetRetiredPagesCount", "lumoMemoryGetRetiredPages",
                                            "lumoMemoryGetRetiredPages"));

  for (const auto* const call :
       {"lumoMemoryGetRetiredPagesCount(memory 0)", "lumoMemoryGetRetiredPages(memory 0, 0, 2)",
        "lumoMemoryGetRetiredPages(memory 0, 1, 1)"}) {
    std::vector<LumoRetiredPage> kept(5);
    expectFailure("memoryGetRetiredPages", call, [&] { return device_.memoryGetRetiredPages(kept); });
    EXPECT_EQ(kept.size(), 5u);
  }
}

TEST_F(LumoAccessListsTest, CauseWithoutRetiredPagesIsSkipped) {
  std::vector<LumoRetiredPage> pages(1);
  EXPECT_EQ(device_.memoryGetRetiredPages(pages), 0);
  EXPECT_THAT(pages, IsEmpty());
  EXPECT_THAT(fakeLumo().lines, ElementsAre("lumoMemoryGetRetiredPagesCount(memory 0)"));

  fakeLumo().lines.clear();
  fakeLumo().set("lumoMemoryGetRetiredPagesCount", 0u, 1u);
  EXPECT_EQ(device_.memoryGetRetiredPages(pages), 0);
  EXPECT_EQ(pages.size(), 1u);
  EXPECT_THAT(fakeLumo().lines, ElementsAre("lumoMemoryGetRetiredPagesCount(memory 0)",
                                            "lumoMemoryGetRetiredPages(memory 0, 1, 1)"));
}

TEST_F(LumoAccessListsTest, SessionsAreThoseOfSlotsThatExist) {
  struct Case {
    const char* method;
    LumoReturn (LumoAccessDevice::*get)(SessionStates&) const;
    const char* call;
  };
  for (const auto& [method, get, call] :
       {Case{"vpuGetEncoderSessionStates", &LumoAccessDevice::vpuGetEncoderSessionStates,
             "lumoVpuGetEncoderSessionStates(vpu 0, 576)"},
        {"vpuGetDecoderSessionStates", &LumoAccessDevice::vpuGetDecoderSessionStates,
         "lumoVpuGetDecoderSessionStates(vpu 0, 576)"}}) {
    std::vector<unsigned> states(576, LUMO_NOT_AVAILABLE);
    states[0] = LUMO_VPU_SESSION_IDLE;
    states[37] = LUMO_VPU_SESSION_ACTIVE;
    states[575] = 7;
    fakeLumo().set(call, states);
    expectOutput(method, call, SessionStates{{9, 9}}, SessionStates{{0, 0}, {37, 1}, {575, 7}},
                 [&, getter = get](SessionStates& out) { return (device_.*getter)(out); });
  }
}

TEST_F(LumoAccessListsTest, InstancesAreReadOneByOne) {
  fakeLumo().setList("lumoDeviceCountMpcInstances", "lumoDeviceGetMpcInstances",
                     std::vector{device(3), device(4)});
  fakeLumo().set("lumoDeviceGetIndex(device 4)", 9u);
  fakeLumo().set("lumoDeviceGetMpcInstanceIndex(device 4)", 1u);
  fakeLumo().set("lumoDeviceGetMpcProfileInfo(device 4)", profile(4, "1c.16g"));
  std::vector<MpcInstance> instances;
  EXPECT_EQ(device_.getMpcInstances(instances), 0);
  ASSERT_EQ(instances.size(), 2u);
  EXPECT_EQ(instances[1].deviceIndex, 9u);
  EXPECT_EQ(instances[1].instanceIndex, 1u);
  EXPECT_STREQ(instances[1].profile.name, "1c.16g");
  EXPECT_THAT(fakeLumo().lines,
              ElementsAre("lumoDeviceCountMpcInstances(device 0)", "lumoDeviceGetMpcInstances(device 0, 2)",
                          "lumoDeviceGetMpcInstanceIndex(device 3)", "lumoDeviceGetIndex(device 3)",
                          "lumoDeviceGetMpcProfileInfo(device 3)", "lumoDeviceGetMpcInstanceIndex(device 4)",
                          "lumoDeviceGetIndex(device 4)", "lumoDeviceGetMpcProfileInfo(device 4)"));

  const auto calls = fakeLumo().lines;
  for (const auto& call : calls) {
    std::vector<MpcInstance> kept(5);
    expectFailure("getMpcInstances", call, [&] { return device_.getMpcInstances(kept); });
    EXPECT_EQ(kept.size(), 5u);
  }
}

TEST_F(LumoAccessListsTest, ParentWithoutInstancesMakesNoListCall) {
  std::vector<MpcInstance> instances(1);
  EXPECT_EQ(device_.getMpcInstances(instances), 0);
  EXPECT_THAT(instances, IsEmpty());
  EXPECT_THAT(fakeLumo().calls, ElementsAre("lumoDeviceCountMpcInstances"));
}

TEST_F(LumoAccessListsTest, InstancesThatWentAwayAreLeftOut) {
  fakeLumo().set("lumoDeviceCountMpcInstances", 3u);
  fakeLumo().set("lumoDeviceGetMpcInstances", std::vector{device(3)});
  std::vector<MpcInstance> instances;
  EXPECT_EQ(device_.getMpcInstances(instances), 0);
  EXPECT_EQ(instances.size(), 1u);
}

TEST_F(LumoAccessListsTest, ActiveVgpusComeWithTheirParts) {
  fakeLumo().setList("lumoDeviceCountActiveVirtDevices", "lumoDeviceGetActiveVirtDeviceUuids",
                     std::vector<std::string>{"first", "second"});
  fakeLumo().set("lumoDeviceInitVirtDevice(device 0, \"second\")", device(6));
  fakeLumo().set("lumoDeviceInitVirtDevice(device 0, \"first\")", device(5));
  fakeLumo().set("lumoDeviceInitGpu(device 6)", tolk_test::handleOf<LumoGpu>(6));
  std::vector<ActiveVirtDevice> devices;
  EXPECT_EQ(device_.vGpuGetActiveVirtDevice(devices), 0);
  ASSERT_EQ(devices.size(), 2u);
  EXPECT_EQ(devices[0].uuid, "first");
  EXPECT_EQ(devices[1].uuid, "second");
  EXPECT_EQ(devices[1].modules.device, device(6));
  EXPECT_EQ(devices[1].modules.gpu, tolk_test::handleOf<LumoGpu>(6));
  EXPECT_TRUE(devices[1].modules.vpu && devices[1].modules.memory);
  EXPECT_THAT(fakeLumo().lines,
              ElementsAre("lumoDeviceCountActiveVirtDevices(device 0)",
                          "lumoDeviceGetActiveVirtDeviceUuids(device 0, 48, 2)",
                          "lumoDeviceInitVirtDevice(device 0, \"first\")", "lumoDeviceInitGpu(device 5)",
                          "lumoDeviceInitVpu(device 5)", "lumoDeviceInitMemory(device 5)",
                          "lumoDeviceInitVirtDevice(device 0, \"second\")", "lumoDeviceInitGpu(device 6)",
                          "lumoDeviceInitVpu(device 6)", "lumoDeviceInitMemory(device 6)"));

  const auto calls = fakeLumo().lines;
  for (const auto& call : calls) {
    std::vector<ActiveVirtDevice> kept(5);
    expectFailure("vGpuGetActiveVirtDevice", call, [&] { return device_.vGpuGetActiveVirtDevice(kept); });
    EXPECT_EQ(kept.size(), 5u);
  }
}

TEST_F(LumoAccessListsTest, GpuWithoutVgpusMakesNoListCall) {
  std::vector<ActiveVirtDevice> devices(1);
  EXPECT_EQ(device_.vGpuGetActiveVirtDevice(devices), 0);
  EXPECT_THAT(devices, IsEmpty());
  EXPECT_THAT(fakeLumo().calls, ElementsAre("lumoDeviceCountActiveVirtDevices"));
}

TEST_F(LumoAccessListsTest, SupportedEventsAreTheBitsOfTheMask) {
  using Types = std::vector<unsigned long long>;
  const std::string call = "lumoDeviceGetSupportedEventTypes(device 0)";
  fakeLumo().set(call, 0x8000000000000005ull);
  expectOutput("getSupportedEventTypes", call, Types{2}, Types{1, 4, 0x8000000000000000},
               [&](Types& out) { return device_.getSupportedEventTypes(out); });
  Types types{2};
  EXPECT_EQ(device_.getSupportedEventTypes(types), 0);
  EXPECT_THAT(types, IsEmpty());
}

TEST_F(LumoAccessListsTest, EventsAreAsManyAsWereWritten) {
  const std::vector stored{event(31), event(13)};
  const auto ofDevice = [&](auto& events) { return device_.getEventInfo(1, 500, events); };
  const auto ofUuid = [](auto& events) {
    return LumoAccessDevice::getTargetUuidEventInfo("the uuid", 1, 500, events);
  };
  const std::string deviceCall = "lumoDeviceGetEventDataByEventType(device 0, 1, 500)";
  const std::string uuidCall = "lumoGetTargetUuidEventDataByEventType(\"the uuid\", 1, 500)";
  fakeLumo().set(deviceCall, stored, 2u);
  expectOutput("getEventInfo", deviceCall, std::vector<LumoEventData>(1), stored, ofDevice);
  fakeLumo().set(uuidCall, stored, 2u);
  expectOutput("getTargetUuidEventInfo", uuidCall, std::vector<LumoEventData>(1), stored, ofUuid);

  fakeLumo().set(deviceCall, stored, 501u);
  std::vector<LumoEventData> events;
  EXPECT_EQ(ofDevice(events), 0);
  EXPECT_EQ(events.size(), 500u);
}

TEST_F(LumoAccessListsTest, NoEventsWantedMakeNoCall) {
  std::vector<LumoEventData> events(1);
  EXPECT_EQ(device_.getEventInfo(1, 0, events), 0);
  EXPECT_THAT(events, IsEmpty());
  EXPECT_EQ(LumoAccessDevice::getTargetUuidEventInfo("the uuid", 1, 0, events), 0);
  EXPECT_THAT(fakeLumo().calls, IsEmpty());
}

}  // namespace
}  // namespace tolk
