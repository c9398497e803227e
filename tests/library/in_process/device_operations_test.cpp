#include "device.h"
#include "device_object.h"
#include "handles.h"
#include "in_process/lumo_fixture.h"
#include "physical_device.h"

// What a device answers to every reply of the platform.

namespace {

using kelp::DevArch;
using kelp::DevType;
using kelp::KelpReturn;
using tolk_test::LumoFixture;

class DeviceOperationsTest : public LumoFixture {};

TEST_F(DeviceOperationsTest, ANameThatIsNotThereKeepsItsState) {
  platform_.answer<kelp::QueryDevNameCmd>(KelpReturn::kNotSupported);
  kelp::PcieInfo pcie;
  pcie.deviceId = 0x0299U;
  platform_.answer<kelp::QueryPcieInfoCmd>(pcie);
  startWith(DevType::kPhysical, DevArch::kFen1);
  char name[64] = "before";
  EXPECT_EQ(lumoDeviceGetName(handle_, name, sizeof name), LUMO_RETURN_NOT_FOUND);
  EXPECT_STREQ(name, "before");
}

TEST_F(DeviceOperationsTest, ThePropertyWordSaysWhatADeviceIs) {
  const std::pair<DevType, unsigned long long> rows[] = {{DevType::kPhysical, 0x000},
                                                         {DevType::kMpcParent, 0x020},
                                                         {DevType::kMpcInstance, 0x040},
                                                         {DevType::kGuest, 0x004}};
  for (const auto& [type, word] : rows) {
    for (const unsigned capable : {0U, 1U, 2U, 3U}) {
      auto desc = describe("uuid", "0000:41:00.0");
      desc.kmdFlagA = (capable & 1) != 0;
      desc.kmdFlagB = (capable & 2) != 0;
      platform_.desc = desc;
      const auto object =
          std::make_shared<kelp::PhysicalDevice>(tolk_test::makeCuid(type, DevArch::kFen2),
                                                 std::make_shared<kelp::ModelManager>(), kelp::FeatureRow{});
      ASSERT_TRUE(object->init().ok());
      const auto device = lumo::Device::create("uuid", object, nullptr, nullptr);
      LumoDevice cell{device};
      unsigned long long property = 0;
      EXPECT_EQ(lumoDeviceGetProperty(&cell, &property), LUMO_RETURN_SUCCESS);
      EXPECT_EQ(property, word | ((capable & 1) << 4) | ((capable & 2) << 7));
    }
  }
}

TEST_F(DeviceOperationsTest, AnUnreadableCapabilityFailsThePropertyWord) {
  addGpu(0);
  auto desc = describe("uuid-0", "0000:40:00.0");
  desc.kmdFlagB = KelpReturn::kNotSupported;
  platform_.descOf[0] = desc;
  mustStart();
  unsigned long long property = 77;
  EXPECT_EQ(lumoDeviceGetProperty(device(0), &property), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(property, 77U);
}

kelp::PcieInfo pcieInfo() {
  kelp::PcieInfo info;
  info.vendorId = 0x4F56U;
  info.deviceId = 0x0410U;
  info.subsystemVendorId = 0x1849U;
  info.subsystemDeviceId = 0x0301U;
  info.maxLinkSpeed = 32.0F;
  info.curLinkSpeed = 16.0F;
  info.maxLinkWidth = 16U;
  info.curLinkWidth = 8U;
  info.maxLinkGen = 5U;
  info.curLinkGen = 4U;
  return info;
}

TEST_F(DeviceOperationsTest, ThePciRecordIsWhole) {
  addGpu(0);
  platform_.answer<kelp::QueryPcieInfoCmd>(pcieInfo());
  mustStart();
  LumoPciInfo info;
  ASSERT_EQ(lumoDeviceGetPciInfo(device(0), &info), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(info.sbdf, "0000:40:00.0");
  EXPECT_EQ(info.domain, 0U);
  EXPECT_EQ(info.bus, 0x40U);
  EXPECT_EQ(info.device, 0U);
  EXPECT_EQ(info.vendorId, 0x4F56U);
  EXPECT_EQ(info.deviceId, 0x0410U);
  EXPECT_EQ(info.subsystemId, 0x03011849U);
  EXPECT_EQ(info.maxSpeed, 32.0F);
  EXPECT_EQ(info.curSpeed, 16.0F);
  EXPECT_EQ(info.maxWidth, 16U);
  EXPECT_EQ(info.curWidth, 8U);
  EXPECT_EQ(info.maxGen, 5U);
  EXPECT_EQ(info.curGen, 4U);
}

TEST_F(DeviceOperationsTest, ThePciRecordIsThereWholeOrNotAtAll) {
  addGpu(0);
  mustStart();
  LumoPciInfo info{};
  info.bus = 99;
  const auto codeOf = [&](const kelp::Stated<kelp::PcieInfo>& reply) {
    platform_.answer<kelp::QueryPcieInfoCmd>(reply);
    return lumoDeviceGetPciInfo(device(0), &info);
  };
  EXPECT_EQ(codeOf(KelpReturn::kReadFailed), LUMO_RETURN_DRIVER_ACCESS_FAILED);

  kelp::PcieInfo reply = pcieInfo();
  reply.curLinkWidth = KelpReturn::kNotSupported;
  EXPECT_EQ(codeOf(reply), LUMO_RETURN_NOT_SUPPORTED) << "no PCI Express capability";
  reply = pcieInfo();
  reply.maxLinkWidth = 0U;
  EXPECT_EQ(codeOf(reply), LUMO_RETURN_NOT_SUPPORTED) << "a width of 0";
  reply = pcieInfo();
  reply.curLinkWidth = 0U;
  EXPECT_EQ(codeOf(reply), LUMO_RETURN_NOT_SUPPORTED) << "a width of 0";
  reply = pcieInfo();
  reply.deviceId = KelpReturn::kDeviceLost;
  reply.maxLinkGen = KelpReturn::kBusy;
  EXPECT_EQ(codeOf(reply), LUMO_RETURN_DEVICE_LOST) << "the first failure tells";
  EXPECT_EQ(info.bus, 99U);

  reply = pcieInfo();
  reply.maxLinkSpeed = 0.0F;
  reply.curLinkSpeed = 0.0F;
  EXPECT_EQ(codeOf(reply), LUMO_RETURN_SUCCESS) << "speeds alone never fail";
}

TEST_F(DeviceOperationsTest, AnAddressThatIsNoneIsEmpty) {
  addGpu(0);
  platform_.descOf[0] = describe("uuid-0", "nowhere");
  platform_.answer<kelp::QueryPcieInfoCmd>(pcieInfo());
  mustStart();
  LumoPciInfo info;
  ASSERT_EQ(lumoDeviceGetPciInfo(deviceOf("uuid-0"), &info), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(info.sbdf, "");
}

TEST_F(DeviceOperationsTest, OnlyPhysicalDevicesHaveAPerformanceState) {
  platform_.answer<kelp::QueryPstateCmd>(5U);
  startMpc();
  addGpu(7);
  unsigned state = 99;
  EXPECT_EQ(lumoDeviceGetPerformanceState(parent_, &state), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoDeviceGetPerformanceState(instance_, &state), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(state, 99U);
  stop();
  mustStart();
  EXPECT_EQ(lumoDeviceGetPerformanceState(deviceOf("uuid-7"), &state), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(state, 5U);
}

TEST_F(DeviceOperationsTest, ProcessesAreInTheOrderOfTheirIds) {
  platform_.answer<kelp::QueryProcMemStateCmd>(
      kelp::ProcessMemoryMap{{900, {.gpuMemory = 3, .systemMemory = 4, .kind = 1, .pid = 900}},
                             {20, {.gpuMemory = 1, .systemMemory = 2, .kind = 0, .pid = 20}}});
  startWith(DevType::kPhysical, DevArch::kTor1);
  unsigned number = 0;
  EXPECT_EQ(lumoDeviceCountProcessMemoryUsages(handle_, &number), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number, 2U);
  LumoProcessMemUsage usages[3];
  std::memset(usages, 0xFF, sizeof usages);
  ASSERT_EQ(lumoDeviceGetProcessMemoryUsages(handle_, usages, 3), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(usages[0].pid, 20U);
  EXPECT_EQ(usages[0].kind, 0U);
  EXPECT_EQ(usages[0].gpuMemory, 1U);
  EXPECT_EQ(usages[0].systemMemory, 2U);
  EXPECT_EQ(usages[0].reserved, 0U);
  EXPECT_EQ(usages[1].pid, 900U);
  EXPECT_EQ(usages[2].pid, 0U) << "what is left over is cleared";
}

TEST_F(DeviceOperationsTest, AListThatHasGrownIsRefused) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  platform_.answer<kelp::QueryProcMemStateCmd>(kelp::ProcessMemoryMap{{1, {}}, {2, {}}});
  LumoProcessMemUsage usages[2] = {};
  usages[0].pid = 77;
  EXPECT_EQ(lumoDeviceGetProcessMemoryUsages(handle_, usages, 1), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(lumoDeviceGetProcessMemoryUsages(handle_, usages, 0), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(usages[0].pid, 77U);
  platform_.answer<kelp::QueryProcMemStateCmd>(kelp::ProcessMemoryMap{});
  EXPECT_EQ(lumoDeviceGetProcessMemoryUsages(handle_, usages, 0), LUMO_RETURN_SUCCESS);
  platform_.answer<kelp::QueryProcMemStateCmd>(KelpReturn::kBusy);
  EXPECT_EQ(lumoDeviceGetProcessMemoryUsages(handle_, usages, 2), LUMO_RETURN_BUSY);
  unsigned number = 5;
  EXPECT_EQ(lumoDeviceCountProcessMemoryUsages(handle_, &number), LUMO_RETURN_BUSY);
  EXPECT_EQ(number, 5U);
}

TEST_F(DeviceOperationsTest, AParentAndItsInstancesKnowEachOther) {
  startMpc();
  unsigned number = 0;
  ASSERT_EQ(lumoDeviceCountMpcInstances(parent_, &number), LUMO_RETURN_SUCCESS);
  ASSERT_EQ(number, 2U);
  LumoDevice* instances[3] = {parent_, parent_, parent_};
  EXPECT_EQ(lumoDeviceGetMpcInstances(parent_, instances, 1), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(instances[0], parent_);
  ASSERT_EQ(lumoDeviceGetMpcInstances(parent_, instances, 3), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(instances[0], deviceOf("uuid-3"));
  EXPECT_EQ(instances[1], deviceOf("uuid-10"));
  EXPECT_EQ(instances[2], nullptr);
  for (LumoDevice* instance : {instances[0], instances[1]}) {
    LumoDevice* parent = nullptr;
    EXPECT_EQ(lumoDeviceGetMpcParentDevice(instance, &parent), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(parent, parent_);
  }
}

TEST_F(DeviceOperationsTest, AnInstanceHasAnIndexAmongAllDevices) {
  startMpc();
  unsigned index = 99;
  EXPECT_EQ(lumoDeviceGetIndex(instance_, &index), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(index, 1U);
  EXPECT_EQ(device(index), instance_);
}

TEST_F(DeviceOperationsTest, MpcQuestionsAreForThoseTheyConcern) {
  startMpc();
  addGpu(7, DevType::kPhysical, DevArch::kFen2);
  auto capable = describe("uuid-7", "0000:47:00.0");
  capable.kmdFlagA = true;
  platform_.descOf[7] = capable;
  stop();
  mustStart();
  LumoDevice* physical = deviceOf("uuid-7");
  parent_ = deviceOf("uuid-2");
  instance_ = deviceOf("uuid-3");
  unsigned number = 99;
  LumoDevice* other = nullptr;
  LumoMpcProfile profile;
  for (LumoDevice* noParent : {physical, instance_}) {
    EXPECT_EQ(lumoDeviceCountMpcInstances(noParent, &number), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoDeviceGetMpcInstances(noParent, &other, 1), LUMO_RETURN_NOT_SUPPORTED);
  }
  for (LumoDevice* noInstance : {physical, parent_}) {
    EXPECT_EQ(lumoDeviceGetMpcParentDevice(noInstance, &other), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoDeviceGetMpcInstanceIndex(noInstance, &number), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoDeviceGetMpcProfileInfo(noInstance, &profile), LUMO_RETURN_NOT_SUPPORTED);
  }
  EXPECT_EQ(number, 99U);
  EXPECT_EQ(other, nullptr);
}

TEST_F(DeviceOperationsTest, TheInstanceIndexIsThatOfItsNode) {
  startMpc();
  unsigned index = 99;
  platform_.answer<kelp::QueryMpcInstListCmd>(
      kelp::MpcInstList{{.miscId = 10, .instanceId = 0}, {.miscId = 3, .instanceId = 4}});
  EXPECT_EQ(lumoDeviceGetMpcInstanceIndex(instance_, &index), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(index, 4U);
  platform_.answer<kelp::QueryMpcInstListCmd>(kelp::MpcInstList{{.miscId = 10, .instanceId = 0}});
  EXPECT_EQ(lumoDeviceGetMpcInstanceIndex(instance_, &index), LUMO_RETURN_NOT_FOUND);
  platform_.answer<kelp::QueryMpcInstListCmd>(KelpReturn::kDeviceLost);
  EXPECT_EQ(lumoDeviceGetMpcInstanceIndex(instance_, &index), LUMO_RETURN_DEVICE_LOST);
  EXPECT_EQ(index, 4U);
}

TEST_F(DeviceOperationsTest, AProfileIdIsShownWithoutTheIndexOfItsInstance) {
  startMpc();
  platform_.answer<kelp::QueryMpcProfCmd>(
      kelp::MpcProfile{.id = 0x0103, .name = "1c.16g", .coreCount = 1, .memory = 16384});
  LumoMpcProfile profile;
  ASSERT_EQ(lumoDeviceGetMpcProfileInfo(instance_, &profile), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(profile.id, 3U);
  EXPECT_EQ(profile.coreCount, 1U);
  EXPECT_EQ(profile.memory, 16384U);
  EXPECT_EQ(profile.instances, 0U);
  EXPECT_STREQ(profile.name, "1c.16g");

  platform_.answer<kelp::QueryMpcProfCmd>(kelp::MpcProfile{.name = std::string(100, 'x')});
  ASSERT_EQ(lumoDeviceGetMpcProfileInfo(instance_, &profile), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(std::string(profile.name), std::string(LUMO_MPC_PROFILE_NAME_SIZE - 1, 'x'));
}

}  // namespace
