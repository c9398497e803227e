#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "device_object.h"
#include "fen1/fen1_device_factory.h"
#include "support/fake_platform.h"
#include "support/log_capture.h"
#include "target_environment.h"
#include "tor1/tor1_device_factory.h"

// Where the name of a device comes from. What /etc/ovparams does to it is tested on simulated hosts.

namespace kelp {
namespace {

using rusk::LogLevel;
using tolk_test::FakePlatform;
using tolk_test::LogCapture;
using tolk_test::makeCuid;

class DeviceNameTest : public testing::Test {
 protected:
  DeviceNameTest() { setPci(0x0210, 0); }

  void setPci(unsigned deviceId, unsigned subsystemDeviceId) {
    PcieInfo info;
    info.deviceId = deviceId;
    info.subsystemDeviceId = subsystemDeviceId;
    platform_.answer<QueryPcieInfoCmd>(info);
  }

  Stated<std::string> nameOf(DevType type, DevArch arch) {
    device_ = arch == DevArch::kTor1
                  ? Tor1DeviceFactory().createDevice(makeCuid(type, arch), manager_).take()
                  : Fen1DeviceFactory().createDevice(makeCuid(type, arch), manager_).take();
    EXPECT_TRUE(device_->init().ok());
    return device_->getDeviceName();
  }
  Stated<std::string> physical() { return nameOf(DevType::kPhysical, DevArch::kFen1); }
  Stated<std::string> guest() { return nameOf(DevType::kGuest, DevArch::kFen1); }

  FakePlatform platform_;
  LogCapture log_;
  std::shared_ptr<ModelManager> manager_ = std::make_shared<ModelManager>();
  std::shared_ptr<DeviceObj> device_;
};

TEST_F(DeviceNameTest, TheDriversNameComesFirst) {
  platform_.answer<QueryDevNameCmd>(std::string("OVT X1"));
  EXPECT_EQ(physical().value(), "OVT X1");
  EXPECT_TRUE(log_.has(LogLevel::kInfo, "get device name  OVT X1  from kmd "));
  EXPECT_TRUE(log_.has(LogLevel::kInfo, "not the target environment"));
  EXPECT_EQ(platform_.count("QueryPcieInfo"), 0U);
}

TEST_F(DeviceNameTest, TheDriverIsAskedEachTime) {
  platform_.answer<QueryDevNameCmd>(std::string("OVT X1"));
  EXPECT_TRUE(physical().ok());
  EXPECT_TRUE(device_->getDeviceName().ok());
  EXPECT_EQ(platform_.count("QueryDevName"), 2U);
}

TEST_F(DeviceNameTest, TheListServesADriverWithoutNames) {
  for (const Stated<std::string>& none :
       {Stated<std::string>(KelpReturn::kNotSupported), Stated<std::string>("")}) {
    platform_.answer<QueryDevNameCmd>(none);
    EXPECT_EQ(physical().value(), "OVT A18");
  }
  EXPECT_EQ(log_.count("get device name from kmd failed, use local list for a try"), 2U);
  EXPECT_EQ(log_.count("device id is  528 "), 2U);
}

TEST_F(DeviceNameTest, AFamilysCatchAllRowNamesIdsOfItsOwn) {
  setPci(0x04C7, 0);
  EXPECT_EQ(nameOf(DevType::kPhysical, DevArch::kTor1).value(), "OVT T1");
}

TEST_F(DeviceNameTest, AnUnknownIdOfAFamilyWithoutCatchAllRowGivesState7) {
  setPci(0x02C7, 0);
  EXPECT_EQ(physical().state(), KelpReturn::kNotFound);
}

TEST_F(DeviceNameTest, WithoutNameAndIdTheStateIs1) {
  platform_.answer<QueryPcieInfoCmd>(KelpReturn::kReadFailed);
  EXPECT_EQ(physical().state(), KelpReturn::kFailure);
}

TEST_F(DeviceNameTest, AGuestIsNamedAfterItsModelAndItsVgpuType) {
  setPci(0x0210, 0x1A2);
  EXPECT_EQ(guest().value(), "OV vGPU A18-1a2");
  platform_.answer<QueryDevNameCmd>(std::string("OVT B230E"));
  EXPECT_EQ(guest().value(), "OV vGPU B230E-1a2");
}

TEST_F(DeviceNameTest, ADriversNameThatIsOnlyAPrefixIsNoName) {
  platform_.answer<QueryDevNameCmd>(std::string("OVT "));
  EXPECT_EQ(guest().value(), "OV vGPU A18-0");
}

TEST_F(DeviceNameTest, AGuestWithoutPciRecordKeepsItsState) {
  platform_.answer<QueryPcieInfoCmd>(KelpReturn::kReadFailed);
  platform_.answer<QueryDevNameCmd>(std::string("OVT B230E"));
  EXPECT_EQ(guest().state(), KelpReturn::kReadFailed);
  EXPECT_EQ(platform_.count("QueryDevName"), 0U);
}

TEST_F(DeviceNameTest, AGuestOfAnUnknownIdGivesState7) {
  setPci(0x02C7, 1);
  EXPECT_EQ(guest().state(), KelpReturn::kNotFound);
}

class TargetEnvironmentTest : public testing::Test {
 protected:
  ~TargetEnvironmentTest() override { std::filesystem::remove(path_); }

  bool read(const std::string& text) {
    std::ofstream(path_) << text;
    return readIsTargetEnvironment(path_.c_str());
  }

  const std::string path_ = testing::TempDir() + "ovparams-" + std::to_string(::getpid());
};

TEST_F(TargetEnvironmentTest, AMissingFileHasNoLine) {
  EXPECT_FALSE(readIsTargetEnvironment(path_.c_str()));
}

TEST_F(TargetEnvironmentTest, TheLineMustBeExact) {
  EXPECT_TRUE(read("envType: 0\n"));
  EXPECT_TRUE(read("first: 1\nenvType: 0"));
  EXPECT_TRUE(read("envType: 1\nenvType: 0\nlast: 2\n"));
  for (const char* text : {"", "envType: 1\n", "envType:0\n", " envType: 0\n", "envType: 0 \n",
                           "envType: 01\n", "envType: 0\r\n", "ENVTYPE: 0\n"}) {
    EXPECT_FALSE(read(text)) << text;
  }
}

TEST_F(TargetEnvironmentTest, AFileWithoutEndIsLeftAlone) {
  EXPECT_FALSE(readIsTargetEnvironment("/dev/zero"));
  EXPECT_FALSE(readIsTargetEnvironment("/"));
}

}  // namespace
}  // namespace kelp
