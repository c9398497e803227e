#include "linux/model_enumerator.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "host_tree.h"
#include "linux/environment.h"

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;

constexpr const char* kFirst = "0000:01:00.0";
constexpr std::uint64_t kFirstPacked = 0x010000;
constexpr const char* kSecond = "0000:41:00.0";
constexpr std::uint64_t kSecondPacked = 0x410000;

class ModelEnumeratorTest : public tolk_test::HostTree {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(HostTree::SetUp());
    file("/sys/module/ovgpu/parameters/ovgpu_driver_mode", "-1\n");
    folder("/sys/bus/pci/drivers/ovgpu");
  }

  /// An MPC parent in the driver's folders. The parent's node is named in procfs.
  void mpcParent(const std::string& sbdf, const std::vector<unsigned long>& numbers,
                 unsigned long own) const {
    boundFunction(sbdf, "0x0330", numbers);
    file("/proc/driver/vela/gpu0/devname", "ovgpu." + std::to_string(own) + "\n");
  }

  void mediated(const std::string& sbdf, const std::string& uuid, const std::string& vgpuId) const {
    const std::string place = "/sys/devices/pci0000:00/" + sbdf + "/" + uuid;
    file(place + "/ovgpu_vgpu/vgpu_id", vgpuId);
    link("/sys/bus/mdev/devices/" + uuid, place);
  }

  static DevCuid cuid(DevType type, DevArch arch, std::uint64_t sbdf, std::uint64_t intId) {
    return {.type = type, .arch = arch, .sbdf = sbdf, .intId = intId};
  }

  ModelEnumerator enumerator_{std::make_shared<Environment>()};
};

TEST_F(ModelEnumeratorTest, FindsPlainDevicesOfAllFamilies) {
  boundFunction("0000:01:00.0", "0x010f", {0});
  boundFunction("0000:02:00.0", "0x0230", {1});
  boundFunction("0000:03:00.0", "0x0330", {2});
  boundFunction("0001:04:1f.7", "0x0410", {3});
  for (const unsigned long number : {0, 1, 2, 3}) {
    node(number);
  }
  const auto cuids = enumerator_.enumeratePcie();
  ASSERT_TRUE(cuids.ok());
  EXPECT_EQ(cuids.value(), (DevCuidSet{
                               cuid(DevType::kPhysical, DevArch::kWold, 0x010000, 0),
                               cuid(DevType::kPhysical, DevArch::kFen1, 0x020000, 1),
                               cuid(DevType::kPhysical, DevArch::kFen2, 0x030000, 2),
                               cuid(DevType::kPhysical, DevArch::kTor1, 0x100041F07, 3),
                           }));
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> Number of detected pcie devices :  4 "));
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> driver mode is  1 "));
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> Pcie device :  0001:04:1f.7 "));
}

TEST_F(ModelEnumeratorTest, NodesWithoutADriverMeanThatItIsNotLoaded) {
  node(0);
  remove("/sys/bus/pci/drivers/ovgpu");
  const auto cuids = enumerator_.enumeratePcie();
  EXPECT_EQ(cuids.state(), KelpReturn::kDriverNotLoaded);
  EXPECT_TRUE(cuids.value().empty());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> OV GPU driver not loaded "));
}

TEST_F(ModelEnumeratorTest, WithoutANodeThereIsNoDeviceAndNoLookAtTheDriver) {
  remove("/sys/bus/pci/drivers/ovgpu");
  file("/dev/ovgpu");
  file("/dev/ovgpu.x");
  folder("/dev/ovgpu.0");
  const auto cuids = enumerator_.enumeratePcie();
  EXPECT_TRUE(cuids.ok());
  EXPECT_TRUE(cuids.value().empty());
  ASSERT_EQ(log_.lines.size(), 1U);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Failed to get misc names from path: /dev "));
}

TEST_F(ModelEnumeratorTest, DriverFolderThatCannotBeWalkedIsAFailure) {
  node(0);
  remove("/sys/bus/pci/drivers/ovgpu");
  file("/sys/bus/pci/drivers/ovgpu");
  EXPECT_EQ(enumerator_.enumeratePcie().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Failed to get pcie device sbdfs, error =  20 "));
}

TEST_F(ModelEnumeratorTest, DeviceFolderThatCannotBeWalkedIsAFailure) {
  remove("/dev");
  EXPECT_EQ(enumerator_.enumeratePcie().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Fail to list misc names under the path: /dev , ret =  -1 "));
}

TEST_F(ModelEnumeratorTest, LoadedDriverWithoutDevicesHasNone) {
  node(0);
  file("/sys/bus/pci/drivers/ovgpu/bind");
  file("/sys/bus/pci/drivers/ovgpu/0000:01:00.0");  // neither link nor folder
  const auto cuids = enumerator_.enumeratePcie();
  EXPECT_TRUE(cuids.ok());
  EXPECT_TRUE(cuids.value().empty());
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> Number of detected pcie devices :  0 "));
}

TEST_F(ModelEnumeratorTest, MpcParentIsTheOneThatProcfsNames) {
  mpcParent(kFirst, {2, 10, 11}, 10);
  node(10);
  const auto cuids = enumerator_.enumeratePcie();
  ASSERT_TRUE(cuids.ok());
  EXPECT_EQ(cuids.value(), (DevCuidSet{cuid(DevType::kMpcParent, DevArch::kFen2, kFirstPacked, 10)}));
  EXPECT_TRUE(
      log_.has(LogLevel::kInfo, ">> read from  /proc/driver/vela/gpu0/devname  content  ovgpu.10\n "));
}

TEST_F(ModelEnumeratorTest, InstancesAreTheOtherNamesInAscendingOrder) {
  mpcParent(kFirst, {11, 2, 10, 100}, 10);
  const auto cuids = enumerator_.enumerateMpci(kFirst);
  ASSERT_TRUE(cuids.ok());
  EXPECT_EQ(cuids.value(), (DevCuidSet{
                               cuid(DevType::kMpcInstance, DevArch::kFen2, kFirstPacked, 2),
                               cuid(DevType::kMpcInstance, DevArch::kFen2, kFirstPacked, 11),
                               cuid(DevType::kMpcInstance, DevArch::kFen2, kFirstPacked, 100),
                           }));
  EXPECT_TRUE(
      log_.has(LogLevel::kInfo, ">> Number of detected mpc instance devices under  0000:01:00.0  :  3 "));
  // By number: 2, 11, 100, the first of which was swapped with the parent's.
  std::vector<std::string> order;
  for (const auto& [level, line] : log_.lines) {
    if (const auto at = line.find("Mpci device under  0000:01:00.0  :  "); at != std::string::npos) {
      order.push_back(line.substr(line.rfind("ovgpu.")));
    }
  }
  EXPECT_EQ(order, (std::vector<std::string>{"ovgpu.2 ", "ovgpu.11 ", "ovgpu.100 "}));
}

TEST_F(ModelEnumeratorTest, ProcNamesAreReadOncePerEnumeration) {
  mpcParent(kFirst, {0, 2}, 0);
  mpcParent(kSecond, {1, 3}, 0);
  file("/proc/driver/vela/gpu1/devname", "ovgpu.1\n");
  node(0);
  node(1);
  const auto cuids = enumerator_.enumeratePcie();
  ASSERT_TRUE(cuids.ok());
  EXPECT_EQ(cuids.value().size(), 2U);
  EXPECT_EQ(log_.count("read from  /proc/driver/vela/gpu1/devname  content"), 1U);
}

TEST_F(ModelEnumeratorTest, ParentThatProcfsDoesNotNameEndsTheEnumeration) {
  mpcParent(kFirst, {1, 2}, 7);
  node(1);
  const auto cuids = enumerator_.enumeratePcie();
  EXPECT_EQ(cuids.state(), KelpReturn::kFailure);
  EXPECT_TRUE(cuids.value().empty());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> miscNames can not match device name from proc "));
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Error when getting misc names for pcie device 0000:01:00.0 "));
}

TEST_F(ModelEnumeratorTest, MissingProcFolderEndsTheEnumerationOfAParent) {
  mpcParent(kFirst, {1, 2}, 1);
  remove("/proc/driver/vela");
  node(1);
  EXPECT_EQ(enumerator_.enumeratePcie().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Failed to get device name from proc, error =  -1 "));
}

TEST_F(ModelEnumeratorTest, UnreadableProcNameKeepsThoseBeforeIt) {
  mpcParent(kFirst, {1, 2}, 1);
  folder("/proc/driver/vela/gpu1");
  file("/proc/driver/vela/gpu2/devname", "ovgpu.2\n");
  node(1);
  EXPECT_TRUE(enumerator_.enumeratePcie().ok());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> read from  /proc/driver/vela/gpu1/devname  failed "));
  EXPECT_FALSE(log_.has("gpu2"));
}

TEST_F(ModelEnumeratorTest, ProcFolderWhoseNumberDoesNotConvertIsPassedOver) {
  mpcParent(kFirst, {1, 2}, 1);
  folder("/proc/driver/vela/gpu99999999999999999999999");
  folder("/proc/driver/vela/gpus");
  node(1);
  EXPECT_TRUE(enumerator_.enumeratePcie().ok());
  EXPECT_FALSE(log_.has("gpu9999"));
}

TEST_F(ModelEnumeratorTest, MiscNumberThatDoesNotConvertIsPassedOver) {
  boundFunction(kFirst, "0x0410", {0});
  folder("/sys/devices/pci0000:00/0000:01:00.0/misc/ovgpu.99999999999999999999999");
  node(0);
  file("/dev/ovgpu.99999999999999999999999");
  const auto cuids = enumerator_.enumeratePcie();
  ASSERT_TRUE(cuids.ok());
  EXPECT_EQ(cuids.value(), (DevCuidSet{cuid(DevType::kPhysical, DevArch::kTor1, kFirstPacked, 0)}));
}

TEST_F(ModelEnumeratorTest, DeviceWithoutItsNodeIsLeftOutSilently) {
  boundFunction(kFirst, "0x0410", {0});
  boundFunction(kSecond, "0x0410", {1});
  node(1);
  const auto cuids = enumerator_.enumeratePcie();
  ASSERT_TRUE(cuids.ok());
  EXPECT_EQ(cuids.value(), (DevCuidSet{cuid(DevType::kPhysical, DevArch::kTor1, kSecondPacked, 1)}));
  EXPECT_FALSE(log_.has(kFirst));
}

TEST_F(ModelEnumeratorTest, GuestModeMakesEveryDeviceAGuest) {
  file("/sys/module/ovgpu/parameters/ovgpu_driver_mode", "1\n");
  boundFunction(kFirst, "0x0230", {0});
  mpcParent(kSecond, {1, 2}, 1);
  boundFunction("0000:42:00.0", "0x0230", {3});
  node(0);
  node(1);
  const auto cuids = enumerator_.enumeratePcie();
  ASSERT_TRUE(cuids.ok());
  EXPECT_EQ(cuids.value(), (DevCuidSet{cuid(DevType::kGuest, DevArch::kFen1, kFirstPacked, 0),
                                       cuid(DevType::kGuest, DevArch::kFen2, kSecondPacked, 1)}));
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> driver mode is  3 "));
}

TEST_F(ModelEnumeratorTest, UnknownDriverModeDoesNotStopTheEnumeration) {
  remove("/sys/module/ovgpu");
  boundFunction(kFirst, "0x0230", {0});
  node(0);
  const auto cuids = enumerator_.enumeratePcie();
  ASSERT_TRUE(cuids.ok());
  EXPECT_EQ(cuids.value(), (DevCuidSet{cuid(DevType::kPhysical, DevArch::kFen1, kFirstPacked, 0)}));
  EXPECT_FALSE(log_.has("driver mode is"));
}

TEST_F(ModelEnumeratorTest, VirtualFunctionIsSkippedWithAWarning) {
  boundFunction(kFirst, "0x0230", {0});
  boundFunction("0000:01:00.1", "0x0230", {1});
  link("/sys/devices/pci0000:00/0000:01:00.1/physfn", "/sys/devices/pci0000:00/0000:01:00.0");
  node(0);
  node(1);
  const auto cuids = enumerator_.enumeratePcie();
  ASSERT_TRUE(cuids.ok());
  EXPECT_EQ(cuids.value(), (DevCuidSet{cuid(DevType::kPhysical, DevArch::kFen1, kFirstPacked, 0)}));
  EXPECT_TRUE(
      log_.has(LogLevel::kWarn, ">> device sbdf  0000:01:00.1  is virtual device created by sr-iov "));
}

TEST_F(ModelEnumeratorTest, DeviceWithoutMiscNamesEndsTheEnumeration) {
  boundFunction(kFirst, "0x0410", {0});
  boundFunction(kSecond, "0x0410", {});
  node(0);
  const auto cuids = enumerator_.enumeratePcie();
  EXPECT_EQ(cuids.state(), KelpReturn::kFailure);
  EXPECT_TRUE(cuids.value().empty());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Error when getting misc names for pcie device 0000:41:00.0 "));
}

TEST_F(ModelEnumeratorTest, UnknownArchEndsTheEnumeration) {
  boundFunction(kFirst, "0x0410", {0});
  boundFunction(kSecond, "0x0510", {1});
  node(0);
  node(1);
  const auto cuids = enumerator_.enumeratePcie();
  EXPECT_EQ(cuids.state(), KelpReturn::kFailure);
  EXPECT_TRUE(cuids.value().empty());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Unknown arch 5  for sbdf: 0000:41:00.0 "));
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Failed to get arch for device -  0000:41:00.0 "));
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Failed to generate cuid for pcie device -  0000:41:00.0 "));
}

TEST_F(ModelEnumeratorTest, ArchZeroIsUnknown) {
  boundFunction(kFirst, "0x0010", {0});
  node(0);
  EXPECT_EQ(enumerator_.enumeratePcie().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Unknown arch 0  for sbdf: 0000:01:00.0 "));
}

TEST_F(ModelEnumeratorTest, OnlyTheLowSixteenBitsHoldTheArch) {
  boundFunction(kFirst, "0x12040410", {0});
  node(0);
  const auto cuids = enumerator_.enumeratePcie();
  ASSERT_TRUE(cuids.ok());
  EXPECT_EQ(cuids.value().begin()->arch, DevArch::kTor1);
}

TEST_F(ModelEnumeratorTest, MissingOrEmptyDeviceIdEndsTheEnumeration) {
  boundFunction(kFirst, "0x0410", {0});
  node(0);
  file("/sys/devices/pci0000:00/0000:01:00.0/device", "");
  EXPECT_EQ(enumerator_.enumeratePcie().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Fail to read device id for sbdf: 0000:01:00.0 , ret =  0 "));
  remove("/sys/devices/pci0000:00/0000:01:00.0/device");
  EXPECT_EQ(enumerator_.enumeratePcie().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Fail to read device id for sbdf: 0000:01:00.0 , ret =  -1 "));
}

TEST_F(ModelEnumeratorTest, DeviceIdWithoutANumberThrows) {
  boundFunction(kFirst, "unknown", {0});
  node(0);
  try {
    static_cast<void>(enumerator_.enumeratePcie());
    FAIL() << "the conversion did not throw";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "stoi");
  }
}

TEST_F(ModelEnumeratorTest, AddressThatIsNoNumberEndsTheEnumeration) {
  boundFunction("zzzz:01:00.0", "0x0410", {0});
  node(0);
  EXPECT_EQ(enumerator_.enumeratePcie().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Incorrect sbdf -  zzzz:01:00.0 "));
}

TEST_F(ModelEnumeratorTest, OneAddressIsFoundWithoutNodesAndMode) {
  mpcParent(kFirst, {3, 4}, 4);
  boundFunction(kSecond, "0x0230", {1});
  const auto parent = enumerator_.enumeratePcie(kFirst);
  ASSERT_TRUE(parent.ok());
  EXPECT_EQ(parent.value(), cuid(DevType::kMpcParent, DevArch::kFen2, kFirstPacked, 4));
  const auto plain = enumerator_.enumeratePcie(kSecond);
  ASSERT_TRUE(plain.ok());
  EXPECT_EQ(plain.value(), cuid(DevType::kPhysical, DevArch::kFen1, kSecondPacked, 1));
}

TEST_F(ModelEnumeratorTest, OneAddressWithoutADeviceIsAFailure) {
  EXPECT_EQ(enumerator_.enumeratePcie(kFirst).state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Error when getting misc names for  0000:01:00.0 "));
  boundFunction(kSecond, "0x0930", {1});
  EXPECT_EQ(enumerator_.enumeratePcie(kSecond).state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Failed to generate cuid for pcie device -  0000:41:00.0 "));
}

TEST_F(ModelEnumeratorTest, PlainDeviceHasNoInstances) {
  boundFunction(kFirst, "0x0330", {0});
  const auto cuids = enumerator_.enumerateMpci(kFirst);
  EXPECT_TRUE(cuids.ok());
  EXPECT_TRUE(cuids.value().empty());
  EXPECT_TRUE(
      log_.has(LogLevel::kError,
               ">> Pcie device  0000:01:00.0  has no instance device. It's not an MPC parent device. "));
}

TEST_F(ModelEnumeratorTest, InstancesOfAMissingParentAreAFailure) {
  EXPECT_EQ(enumerator_.enumerateMpci(kFirst).state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Failed to get misc names for pcie device 0000:01:00.0 "));
}

TEST_F(ModelEnumeratorTest, InstancesOfAnUnknownArchAreAFailure) {
  mpcParent(kFirst, {0, 1}, 0);
  file("/sys/devices/pci0000:00/0000:01:00.0/device", "0x0910\n");
  EXPECT_EQ(enumerator_.enumerateMpci(kFirst).state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Failed to generate cuid for MPC instance device -  ovgpu.1 "));
}

TEST_F(ModelEnumeratorTest, VirtualDevicesAreThoseBelowTheirParent) {
  boundFunction(kFirst, "0x0230", {0});
  boundFunction(kSecond, "0x0230", {1});
  link("/sys/class/mdev_bus/0000:01:00.0", "/sys/devices/pci0000:00/0000:01:00.0");
  mediated(kFirst, "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71", "7\n");
  mediated(kFirst, "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c72", "9999\n");
  mediated(kSecond, "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c73", "8\n");
  link("/sys/bus/mdev/devices/dangling", "/sys/devices/nowhere");
  const auto cuids = enumerator_.enumerateVirt(kFirst);
  ASSERT_TRUE(cuids.ok());
  EXPECT_EQ(cuids.value(), (DevCuidSet{cuid(DevType::kMediated, DevArch::kFen1, kFirstPacked, 7),
                                       cuid(DevType::kMediated, DevArch::kFen1, kFirstPacked, 9999)}));
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> Number of detected virtual devices under  0000:01:00.0  :  2 "));
  EXPECT_TRUE(log_.has(LogLevel::kInfo,
                       ">> Virtual device under  0000:01:00.0  :  c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71 "));
  // The second GPU is no parent as far as the framework knows.
  const auto other = enumerator_.enumerateVirt(kSecond);
  EXPECT_TRUE(other.ok());
  EXPECT_TRUE(other.value().empty());
}

TEST_F(ModelEnumeratorTest, VgpuIsKnownByTheUuidThatItsNumberWasLastSeenWith) {
  boundFunction(kFirst, "0x0230", {0});
  link("/sys/class/mdev_bus/0000:01:00.0", "/sys/devices/pci0000:00/0000:01:00.0");
  const DevCuid vgpu = cuid(DevType::kMediated, DevArch::kFen1, kFirstPacked, 7);
  EXPECT_EQ(enumerator_.getKnownUuid(vgpu), "");
  for (const char* const uuid :
       {"c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c72", "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71"}) {
    mediated(kFirst, uuid, "7\n");
    ASSERT_TRUE(enumerator_.enumerateVirt(kFirst).ok());
    EXPECT_EQ(enumerator_.getKnownUuid(vgpu), uuid);
    remove(std::string("/sys/bus/mdev/devices/") + uuid);
  }
}

TEST_F(ModelEnumeratorTest, ListMediatedGivesTheUuids) {
  boundFunction(kFirst, "0x0230", {0});
  link("/sys/class/mdev_bus/0000:01:00.0", "/sys/devices/pci0000:00/0000:01:00.0");
  mediated(kFirst, "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71", "7\n");
  const auto uuids = enumerator_.listMediated(kFirst);
  ASSERT_TRUE(uuids.ok());
  EXPECT_EQ(uuids.value(), (std::vector<std::string>{"c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71"}));
}

TEST_F(ModelEnumeratorTest, HostWithoutMediatedParentsHasNoVirtualDevices) {
  const auto cuids = enumerator_.enumerateVirt(kFirst);
  EXPECT_TRUE(cuids.ok());
  EXPECT_TRUE(cuids.value().empty());
  EXPECT_FALSE(log_.has("iterFiles"));
}

TEST_F(ModelEnumeratorTest, ParentWithoutAFolderOfMediatedDevicesIsAFailure) {
  boundFunction(kFirst, "0x0230", {0});
  link("/sys/class/mdev_bus/0000:01:00.0", "/sys/devices/pci0000:00/0000:01:00.0");
  EXPECT_EQ(enumerator_.enumerateVirt(kFirst).state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError,
                       ">> Failed to list active mdev devices for pcie sbdf  0000:01:00.0 , state =  1 "));
}

TEST_F(ModelEnumeratorTest, VgpuIdThatDoesNotConvertFailsTheCall) {
  const std::string uuid = "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71";
  const std::string idFile = "/sys/bus/mdev/devices/" + uuid + "/ovgpu_vgpu/vgpu_id";
  boundFunction(kFirst, "0x0230", {0});
  link("/sys/class/mdev_bus/0000:01:00.0", "/sys/devices/pci0000:00/0000:01:00.0");
  for (const char* const content : {"none\n", "", "-1\n", "99999999999999999999999\n"}) {
    remove("/sys/bus/mdev/devices");
    mediated(kFirst, uuid, content);
    EXPECT_EQ(enumerator_.enumerateVirt(kFirst).state(), KelpReturn::kReadFailed) << content;
    EXPECT_TRUE(log_.has(LogLevel::kError, ">> Failed to read vgpu id from  " + idFile + " "));
    EXPECT_TRUE(log_.has(LogLevel::kError, ">> Failed to get vgpuid for uuid -  " + uuid + " "));
    EXPECT_TRUE(log_.has(LogLevel::kError, ">> Failed to generate cuid for virtual device  " + uuid +
                                               "  under  0000:01:00.0 "));
    log_.lines.clear();
  }
}

}  // namespace
}  // namespace kelp::linux_
