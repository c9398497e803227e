#include "command_output/list_output.h"

#include <gtest/gtest.h>

#include <sstream>

namespace tolk {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kFirstOrphan = "39396984-de14-b1aa-005d-f1475ce9edee";
constexpr const char* kSecondOrphan = "8abaa4c8-e8f3-b8b8-1a4c-1f45eed06dc2";
constexpr const char* kDevice = "00000000-0000-0000-0000-000000000000";

/// Two instances whose parent could not be read, and a device.
Json orphans() {
  return {{"2", {{"Brand Name", "OVT B240 1c.16g"}, {"UUID", kFirstOrphan}, {"DeviceType", "MPC Instance"}}},
          {"3", {{"Brand Name", "OVT B240 1c.16g"}, {"UUID", kSecondOrphan}, {"DeviceType", "MPC Instance"}}},
          {"0", {{"Brand Name", "OVT B250A"}, {"UUID", kDevice}}}};
}

std::string printed(const Json& devices, bool hideInstances) {
  std::ostringstream text;
  auto* const old = std::cout.rdbuf(text.rdbuf());
  EXPECT_EQ(ListOutput(devices, hideInstances).work(), nullptr);
  std::cout.rdbuf(old);
  return text.str();
}

TEST(ListOutput, OrphansStandUnderALineThatSaysSo) {
  EXPECT_EQ(printed(orphans(), false),
            "MPC Parent Device(N/A):\n"
            "  GPU 2 : OVT B240 1c.16g (UUID : 39396984-de14-b1aa-005d-f1475ce9edee)\n"
            "  GPU 3 : OVT B240 1c.16g (UUID : 8abaa4c8-e8f3-b8b8-1a4c-1f45eed06dc2)\n"
            "GPU 0 : OVT B250A  (UUID : 00000000-0000-0000-0000-000000000000)\n");
}

TEST(ListOutput, HiddenOrphansHideTheirLineToo) {
  EXPECT_EQ(printed(orphans(), true), "GPU 0 : OVT B250A  (UUID : 00000000-0000-0000-0000-000000000000)\n");
}

TEST(ListOutput, OrphanBehindADeviceHasNoLineOfItsOwn) {
  const Json devices{{"0", {{"Brand Name", "a"}, {"UUID", "u"}}},
                     {"2", {{"Brand Name", "b"}, {"UUID", "v"}, {"DeviceType", "MPC Instance"}}}};
  EXPECT_EQ(printed(devices, false), "GPU 0 : a          (UUID : u)\n  GPU 2 : b          (UUID : v)\n");
}

TEST(ListOutput, IndexOfThreeDigitsIsNotCut) {
  EXPECT_EQ(printed({{"100", {{"Brand Name", "a"}, {"UUID", "u"}}}}, false),
            "GPU 100: a          (UUID : u)\n");
}

}  // namespace
}  // namespace tolk
