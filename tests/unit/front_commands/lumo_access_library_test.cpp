#include "command_access/lumo_access/lumo_access_library.h"

#include "command_access/lumo_access/lumo_access_system.h"
#include "lumo_access_fixture.h"

namespace tolk {
namespace {

using tolk_test::fakeLumo;
using tolk_test::handleOf;

/// What is asked of the library and of the machine.
class LumoAccessLibraryTest : public LumoAccessTest {
 protected:
  LumoAccessLibraryTest() {
    library_.setLumoLibrary(handleOf<LumoLibrary>());
    system_.setLumoSystem(handleOf<LumoSystem>());
  }

  LumoAccessLibrary library_;
  LumoAccessSystem system_;
};

TEST_F(LumoAccessLibraryTest, DevicesAreCounted) {
  expectValue("getAccessDeviceNum", "lumoLibraryCountDevice(library 0)", 5u,
              [&](std::uint32_t& count) { return library_.getAccessDeviceNum(count); });
}

TEST_F(LumoAccessLibraryTest, DriverVersionIsAText) {
  expectValue("getDriverVersion", "lumoSystemGetDriverVersion(system 0, 80)", std::string("3.1.0"),
              [&](std::string& version) { return system_.getDriverVersion(version); });
}

TEST_F(LumoAccessLibraryTest, ProcessHasAName) {
  expectValue("getProcessName", "lumoSystemGetProcessName(system 0, 4242, 4096)", std::string("/usr/bin/x"),
              [&](std::string& name) { return system_.getProcessName(4242, name); });
}

TEST_F(LumoAccessLibraryTest, ProcessWithoutANameHasAnEmptyOne) {
  std::string name = "before";
  EXPECT_EQ(system_.getProcessName(4242, name), 0);
  EXPECT_EQ(name, "");
}

}  // namespace
}  // namespace tolk
