#include "command_access/lumo_access/lumo_access_device.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "command_access/lumo_access/lumo_access_system.h"
#include "fake_lumo.h"
#include "front_log_capture.h"

namespace tolk {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tolk_test::fakeLumo;
using tolk_test::FrontLogCapture;

constexpr unsigned long long kMpcParent = 1u << LUMO_PROPERTY_MPC_TYPE_SHIFT;
constexpr unsigned long long kMpcInstance = 2u << LUMO_PROPERTY_MPC_TYPE_SHIFT;
constexpr unsigned long long kMediated = 1u << LUMO_PROPERTY_ROLE_SHIFT;
constexpr unsigned long long kGuest = 2u << LUMO_PROPERTY_ROLE_SHIFT;

class LumoAccessDeviceTest : public testing::Test {
 protected:
  void SetUp() override { fakeLumo() = {}; }

  static void setProfile(const char* name) {
    std::snprintf(fakeLumo().profile.name, sizeof fakeLumo().profile.name, "%s", name);
  }

  FrontLogCapture log_;
  LumoAccessDevice device_{LumoModuleSet{}};
};

TEST_F(LumoAccessDeviceTest, TypeFollowsFromMpcTypeAndRole) {
  struct Expected {
    unsigned long long property;
    unsigned type;
  };
  for (const auto& [property, expected] : {Expected{0, 2},
                                           {LUMO_PROPERTY_MPC_CAPABLE | LUMO_PROPERTY_SABLINK_CAPABLE, 2},
                                           {kMpcParent | LUMO_PROPERTY_MPC_CAPABLE, 3},
                                           {kMpcInstance, 4},
                                           {kMediated, 1},
                                           {kGuest, 1},
                                           {kMpcInstance | kMediated, 4},
                                           {kMpcParent | kGuest, 3}}) {
    fakeLumo().property = property;
    DeviceType type{};
    EXPECT_EQ(device_.devGetDeviceType(type), 0);
    EXPECT_EQ(static_cast<unsigned>(type), expected) << property;
  }
}

TEST_F(LumoAccessDeviceTest, MpcCapabilityIsBitFourAlone) {
  bool capable = true;
  fakeLumo().property = ~0ull & ~static_cast<unsigned long long>(LUMO_PROPERTY_MPC_CAPABLE);
  EXPECT_EQ(device_.devGetMpcCapability(capable), 0);
  EXPECT_FALSE(capable);
  fakeLumo().property = LUMO_PROPERTY_MPC_CAPABLE;
  EXPECT_EQ(device_.devGetMpcCapability(capable), 0);
  EXPECT_TRUE(capable);
}

TEST_F(LumoAccessDeviceTest, NameOfAnInstanceEndsInItsProfile) {
  setProfile("1c.16g");
  fakeLumo().property = kMpcInstance;
  std::string name;
  EXPECT_EQ(device_.devGetName(name), 0);
  EXPECT_EQ(name, "OVT B240 1c.16g");
}

TEST_F(LumoAccessDeviceTest, NameOfAnInstanceWithoutAProfileStandsAlone) {
  fakeLumo().property = kMpcInstance;
  std::string name;
  EXPECT_EQ(device_.devGetName(name), 0);
  EXPECT_EQ(name, "OVT B240");

  setProfile("1c.16g");
  fakeLumo().fail("lumoDeviceGetMpcProfileInfo", {LUMO_RETURN_NOT_SUPPORTED});
  EXPECT_EQ(device_.devGetName(name), 0);
  EXPECT_EQ(name, "OVT B240");

  fakeLumo().fail("lumoDeviceGetProperty", {LUMO_RETURN_UNKNOWN_ERROR});
  EXPECT_EQ(device_.devGetName(name), 0);
  EXPECT_EQ(name, "OVT B240");
}

TEST_F(LumoAccessDeviceTest, NoOtherDeviceAsksForAProfile) {
  setProfile("1c.16g");
  std::string name;
  for (const auto property : {0ull, kMpcParent, kGuest}) {
    fakeLumo().property = property;
    EXPECT_EQ(device_.devGetName(name), 0);
    EXPECT_EQ(name, "OVT B240");
  }
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceGetMpcProfileInfo"), 0);
}

TEST_F(LumoAccessDeviceTest, NameThatCannotBeReadAsksNothingMore) {
  fakeLumo().property = kMpcInstance;
  fakeLumo().fail("lumoDeviceGetName", {LUMO_RETURN_DEVICE_LOST});
  std::string name = "before";
  EXPECT_EQ(device_.devGetName(name), LUMO_RETURN_DEVICE_LOST);
  EXPECT_EQ(name, "before");
  EXPECT_THAT(fakeLumo().calls, ElementsAre("lumoDeviceGetName"));
}

TEST_F(LumoAccessDeviceTest, ProfileNameWithoutAnEndIsCutToItsField) {
  std::memset(fakeLumo().profile.name, 'p', sizeof fakeLumo().profile.name);
  fakeLumo().property = kMpcInstance;
  std::string name;
  device_.devGetName(name);
  EXPECT_EQ(name, "OVT B240 " + std::string(64, 'p'));
}

TEST_F(LumoAccessDeviceTest, TextsFitTheirBuffers) {
  const auto longest = [](std::size_t size) { return std::string(size - 1, 'x'); };
  std::string text;
  fakeLumo().name = longest(256);
  device_.devGetName(text);
  EXPECT_EQ(text.size(), 255u);
  fakeLumo().uuid = longest(48);
  device_.devGetUUID(text);
  EXPECT_EQ(text.size(), 47u);

  const LumoAccessSystem system;
  fakeLumo().version = longest(80);
  system.getDriverVersion(text);
  EXPECT_EQ(text.size(), 79u);
  fakeLumo().name = longest(4096);
  system.getProcessName(4242, text);
  EXPECT_EQ(text.size(), 4095u);
}

TEST_F(LumoAccessDeviceTest, FailureIsLoggedInTheNameOfTheMethodAndLeavesTheOutputAlone) {
  std::uint32_t number = 1;
  std::int32_t degrees = 1;
  unsigned long long bytes = 1;
  std::string text = "before";
  bool flag = true;
  DeviceType type = DeviceType::kVirtual;
  LumoPciInfo pci{};
  pci.bus = 1;
  fakeLumo().pci.bus = 9;
  fakeLumo().uuid = "after";

  struct Case {
    const char* entryPoint;
    const char* method;
    std::function<LumoReturn()> call;
  };
  const Case cases[] = {
      {"lumoDeviceGetIndex", "devGetIndex", [&] { return device_.devGetIndex(number); }},
      {"lumoDeviceGetUUID", "devGetUUID", [&] { return device_.devGetUUID(text); }},
      {"lumoDeviceGetName", "devGetName", [&] { return device_.devGetName(text); }},
      {"lumoDeviceGetPciInfo", "devGetPciInfo", [&] { return device_.devGetPciInfo(pci); }},
      {"lumoDeviceGetProperty", "devGetMpcCapability", [&] { return device_.devGetMpcCapability(flag); }},
      {"lumoDeviceGetProperty", "devGetDeviceType", [&] { return device_.devGetDeviceType(type); }},
      {"lumoDeviceGetPerformanceState", "deviceGetPerfState",
       [&] { return device_.deviceGetPerfState(number); }},
      {"lumoGpuGetUtilization", "gpuGetUtilization", [&] { return device_.gpuGetUtilization(number); }},
      {"lumoGpuGetTemperature", "gpuGetTemperature", [&] { return device_.gpuGetTemperature(degrees); }},
      {"lumoMemoryGetTotal", "memoryGetTotal", [&] { return device_.memoryGetTotal(bytes); }},
      {"lumoMemoryGetUsed", "memoryGetUsed", [&] { return device_.memoryGetUsed(bytes); }},
      {"lumoMemoryGetEccMode", "memoryGetEccMode", [&] { return device_.memoryGetEccMode(number, number); }},
      {"lumoDeviceGetMpcParentDevice", "getParentDeviceIndex",
       [&] { return device_.getParentDeviceIndex(number); }},
      {"lumoDeviceGetIndex", "getParentDeviceIndex", [&] { return device_.getParentDeviceIndex(number); }},
  };
  for (const auto& [entryPoint, method, call] : cases) {
    log_.lines.clear();
    fakeLumo().fail(entryPoint, {LUMO_RETURN_BUSY});
    EXPECT_EQ(call(), LUMO_RETURN_BUSY) << method;
    EXPECT_THAT(log_.lines,
                ElementsAre(std::string("E ") + method + " >> " + entryPoint + " () failed, ret =  11 "));
    EXPECT_EQ(number, 1u) << method;
  }
  EXPECT_EQ(degrees, 1);
  EXPECT_EQ(bytes, 1u);
  EXPECT_EQ(text, "before");
  EXPECT_TRUE(flag);
  EXPECT_EQ(type, DeviceType::kVirtual);
  EXPECT_EQ(pci.bus, 1u);
}

TEST_F(LumoAccessDeviceTest, SuccessIsNotLogged) {
  std::uint32_t number = 0;
  EXPECT_EQ(device_.deviceGetPerfState(number), 0);
  EXPECT_EQ(number, 7u);
  EXPECT_THAT(log_.lines, IsEmpty());
}

TEST_F(LumoAccessDeviceTest, NoProcessesMakeNoListCall) {
  std::vector<LumoProcessMemUsage> processes(3);
  EXPECT_EQ(device_.getProcessMemoryInfo(processes), 0);
  EXPECT_THAT(processes, IsEmpty());
  EXPECT_THAT(fakeLumo().calls, ElementsAre("lumoDeviceCountProcessMemoryUsages"));
}

TEST_F(LumoAccessDeviceTest, ProcessListThatGrewIsAskedOnceMore) {
  fakeLumo().processes = {{4242, 0, 1, 0, 0}};
  fakeLumo().fail("lumoDeviceGetProcessMemoryUsages", {LUMO_RETURN_INSUFFICIENT_SIZE});
  std::vector<LumoProcessMemUsage> processes;
  EXPECT_EQ(device_.getProcessMemoryInfo(processes), 0);
  ASSERT_EQ(processes.size(), 1u);
  EXPECT_EQ(processes[0].pid, 4242u);
  EXPECT_THAT(fakeLumo().calls,
              ElementsAre("lumoDeviceCountProcessMemoryUsages", "lumoDeviceGetProcessMemoryUsages",
                          "lumoDeviceCountProcessMemoryUsages", "lumoDeviceGetProcessMemoryUsages"));
}

TEST_F(LumoAccessDeviceTest, ProcessListThatGrowsTwiceFails) {
  fakeLumo().processes = {{4242, 0, 1, 0, 0}};
  fakeLumo().fail("lumoDeviceGetProcessMemoryUsages",
                  {LUMO_RETURN_INSUFFICIENT_SIZE, LUMO_RETURN_INSUFFICIENT_SIZE});
  std::vector<LumoProcessMemUsage> processes;
  EXPECT_EQ(device_.getProcessMemoryInfo(processes), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_THAT(processes, IsEmpty());
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceGetProcessMemoryUsages"), 2);
}

TEST_F(LumoAccessDeviceTest, OtherFailuresOfTheProcessListAreFinal) {
  fakeLumo().processes = {{4242, 0, 1, 0, 0}};
  fakeLumo().fail("lumoDeviceGetProcessMemoryUsages", {LUMO_RETURN_DRIVER_ACCESS_FAILED});
  std::vector<LumoProcessMemUsage> processes;
  EXPECT_EQ(device_.getProcessMemoryInfo(processes), LUMO_RETURN_DRIVER_ACCESS_FAILED);
  EXPECT_EQ(fakeLumo().calls.size(), 2u);
}

TEST_F(LumoAccessDeviceTest, ProcessListThatShrankHasNoEmptyEntries) {
  fakeLumo().processes = {{4242, 0, 1, 0, 0}};
  fakeLumo().processesAtCount = 3;
  std::vector<LumoProcessMemUsage> processes;
  EXPECT_EQ(device_.getProcessMemoryInfo(processes), 0);
  EXPECT_EQ(processes.size(), 1u);
}

TEST_F(LumoAccessDeviceTest, InstancesAreReadOneByOne) {
  fakeLumo().instanceCount = 2;
  setProfile("1c.16g");
  std::vector<MpcInstance> instances;
  EXPECT_EQ(device_.getMpcInstances(instances), 0);
  ASSERT_EQ(instances.size(), 2u);
  EXPECT_EQ(instances[1].deviceIndex, 3u);
  EXPECT_EQ(instances[1].instanceIndex, 7u);
  EXPECT_STREQ(instances[1].profile.name, "1c.16g");
  EXPECT_THAT(fakeLumo().calls, ElementsAre("lumoDeviceCountMpcInstances", "lumoDeviceGetMpcInstances",
                                            "lumoDeviceGetMpcInstanceIndex", "lumoDeviceGetIndex",
                                            "lumoDeviceGetMpcProfileInfo", "lumoDeviceGetMpcInstanceIndex",
                                            "lumoDeviceGetIndex", "lumoDeviceGetMpcProfileInfo"));
}

TEST_F(LumoAccessDeviceTest, StatusHasATextForPeople) {
  EXPECT_STREQ(LumoAccessDevice::getReturnText(LUMO_RETURN_SUCCESS), "The operation was successful!");
  EXPECT_STREQ(LumoAccessDevice::getReturnText(LUMO_RETURN_NOT_FOUND), "A query to find an object was unsuccessful!");
  EXPECT_STREQ(LumoAccessDevice::getReturnText(LUMO_RETURN_BUSY), "An internal unspecified error occurred!");
}

TEST_F(LumoAccessDeviceTest, OneInstanceThatCannotBeReadFailsThemAll) {
  fakeLumo().instanceCount = 2;
  for (const auto* entryPoint :
       {"lumoDeviceCountMpcInstances", "lumoDeviceGetMpcInstances", "lumoDeviceGetMpcInstanceIndex",
        "lumoDeviceGetIndex", "lumoDeviceGetMpcProfileInfo"}) {
    fakeLumo().fail(entryPoint, {LUMO_RETURN_NOT_FOUND});
    std::vector<MpcInstance> instances;
    EXPECT_EQ(device_.getMpcInstances(instances), LUMO_RETURN_NOT_FOUND) << entryPoint;
    EXPECT_THAT(instances, IsEmpty());
  }
}

}  // namespace
}  // namespace tolk
