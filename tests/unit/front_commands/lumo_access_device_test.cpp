#include <cstring>

#include "command_access/lumo_access/lumo_access_system.h"
#include "lumo_access_fixture.h"

namespace tolk {
namespace {

using testing::ElementsAre;
using tolk_test::fakeLumo;

constexpr unsigned long long kMpcParent = 1u << LUMO_PROPERTY_MPC_TYPE_SHIFT;
constexpr unsigned long long kMpcInstance = 2u << LUMO_PROPERTY_MPC_TYPE_SHIFT;
constexpr unsigned long long kMediated = 1u << LUMO_PROPERTY_ROLE_SHIFT;
constexpr unsigned long long kGuest = 2u << LUMO_PROPERTY_ROLE_SHIFT;

class LumoAccessDeviceTest : public LumoAccessTest {
 protected:
  static void setProperty(unsigned long long property) { fakeLumo().set("lumoDeviceGetProperty", property); }

  static void setProfile(const char* name) {
    LumoMpcProfile profile{};
    std::snprintf(profile.name, sizeof profile.name, "%s", name);
    fakeLumo().set("lumoDeviceGetMpcProfileInfo", profile);
  }
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
    setProperty(property);
    DeviceType type{};
    EXPECT_EQ(device_.devGetDeviceType(type), 0);
    EXPECT_EQ(static_cast<unsigned>(type), expected) << property;
  }
}

TEST_F(LumoAccessDeviceTest, MpcCapabilityIsBitFourAlone) {
  bool capable = true;
  setProperty(~0ull & ~static_cast<unsigned long long>(LUMO_PROPERTY_MPC_CAPABLE));
  EXPECT_EQ(device_.devGetMpcCapability(capable), 0);
  EXPECT_FALSE(capable);
  setProperty(LUMO_PROPERTY_MPC_CAPABLE);
  EXPECT_EQ(device_.devGetMpcCapability(capable), 0);
  EXPECT_TRUE(capable);
}

TEST_F(LumoAccessDeviceTest, NameOfAnInstanceEndsInItsProfile) {
  setProfile("1c.16g");
  setProperty(kMpcInstance);
  std::string name;
  EXPECT_EQ(device_.devGetName(name), 0);
  EXPECT_EQ(name, "OVT B240 1c.16g");
}

TEST_F(LumoAccessDeviceTest, NameOfAnInstanceWithoutAProfileStandsAlone) {
  setProperty(kMpcInstance);
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
    setProperty(property);
    EXPECT_EQ(device_.devGetName(name), 0);
    EXPECT_EQ(name, "OVT B240");
  }
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceGetMpcProfileInfo"), 0);
}

TEST_F(LumoAccessDeviceTest, NameThatCannotBeReadAsksNothingMore) {
  setProperty(kMpcInstance);
  fakeLumo().fail("lumoDeviceGetName", {LUMO_RETURN_DEVICE_LOST});
  std::string name = "before";
  EXPECT_EQ(device_.devGetName(name), LUMO_RETURN_DEVICE_LOST);
  EXPECT_EQ(name, "before");
  EXPECT_THAT(fakeLumo().calls, ElementsAre("lumoDeviceGetName"));
}

TEST_F(LumoAccessDeviceTest, ProfileNameWithoutAnEndIsCutToItsField) {
  LumoMpcProfile profile{};
  std::memset(profile.name, 'p', sizeof profile.name);
  fakeLumo().set("lumoDeviceGetMpcProfileInfo", profile);
  setProperty(kMpcInstance);
  std::string name;
  device_.devGetName(name);
  EXPECT_EQ(name, "OVT B240 " + std::string(64, 'p'));
}

TEST_F(LumoAccessDeviceTest, TextsFitTheirBuffers) {
  const auto longest = [](std::size_t size) { return std::string(size - 1, 'x'); };
  std::string text;
  fakeLumo().set("lumoDeviceGetName", longest(256));
  device_.devGetName(text);
  EXPECT_EQ(text.size(), 255u);
  fakeLumo().set("lumoDeviceGetUUID", longest(48));
  device_.devGetUUID(text);
  EXPECT_EQ(text.size(), 47u);

  const LumoAccessSystem system;
  fakeLumo().set("lumoSystemGetDriverVersion", longest(80));
  system.getDriverVersion(text);
  EXPECT_EQ(text.size(), 79u);
  fakeLumo().set("lumoSystemGetProcessName", longest(4096));
  system.getProcessName(4242, text);
  EXPECT_EQ(text.size(), 4095u);
}

TEST_F(LumoAccessDeviceTest, AddressGetsEightDigitsOfDomain) {
  LumoPciInfo info{};
  std::snprintf(info.sbdf, sizeof info.sbdf, "0000:C1:00.0");
  info.domain = 0;
  info.bus = 0xC1;
  info.deviceId = 0x0411;
  info.maxSpeed = 16.0f;
  info.curWidth = 16;
  LumoPciInfo widened = info;
  std::snprintf(widened.sbdf, sizeof widened.sbdf, "00000000:c1:00.0");
  fakeLumo().set("lumoDeviceGetPciInfo", info);
  expectOutput("devGetPciInfo", "lumoDeviceGetPciInfo(device 0)", LumoPciInfo{}, widened,
               [&](auto& out) { return device_.devGetPciInfo(out); });

  LumoPciInfo empty = widened;
  EXPECT_EQ(device_.devGetPciInfo(empty), 0);
  EXPECT_STREQ(empty.sbdf, "");
}

TEST_F(LumoAccessDeviceTest, PropertyThatCannotBeReadTellsNothing) {
  setProperty(kMpcParent | LUMO_PROPERTY_MPC_CAPABLE);
  expectOutput("devGetMpcCapability", "lumoDeviceGetProperty(device 0)", false, true,
               [&](bool& capable) { return device_.devGetMpcCapability(capable); });
  setProperty(kMpcParent);
  expectOutput("devGetDeviceType", "lumoDeviceGetProperty(device 0)", DeviceType::kPhysical,
               DeviceType::kMpcParent, [&](DeviceType& type) { return device_.devGetDeviceType(type); });
}

TEST_F(LumoAccessDeviceTest, FailuresOfTheNameAreLoggedInItsName) {
  const std::string call = "lumoDeviceGetName(device 0, 256)";
  std::string name;
  expectFailure("devGetName", call, [&] { return device_.devGetName(name); });
}

TEST_F(LumoAccessDeviceTest, CallThatCameBackTooLateHasFailedThoughItWroteItsValue) {
  fakeLumo().set("lumoDeviceGetUUID", std::string("after"));
  fakeLumo().fail("lumoDeviceGetUUID", {LUMO_RETURN_BUSY});
  std::string uuid = "before";
  EXPECT_EQ(device_.devGetUUID(uuid), LUMO_RETURN_BUSY);
  EXPECT_EQ(uuid, "before");
}

TEST_F(LumoAccessDeviceTest, StatusHasATextForPeople) {
  EXPECT_STREQ(LumoAccessDevice::getReturnText(LUMO_RETURN_SUCCESS), "The operation was successful!");
  EXPECT_STREQ(LumoAccessDevice::getReturnText(LUMO_RETURN_NOT_FOUND),
               "A query to find an object was unsuccessful!");
  EXPECT_STREQ(LumoAccessDevice::getReturnText(LUMO_RETURN_BUSY), "An internal unspecified error occurred!");
}

}  // namespace
}  // namespace tolk
