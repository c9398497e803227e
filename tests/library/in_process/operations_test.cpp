#include "device.h"
#include "device_object.h"
#include "gpu.h"
#include "handles.h"
#include "in_process/lumo_fixture.h"
#include "library.h"
#include "memory.h"
#include "physical_device.h"
#include "system.h"
#include "vpu.h"

// What the operations of a device and its parts answer to every reply of the platform.

namespace {

using kelp::DevArch;
using kelp::DevType;
using kelp::KelpReturn;
using rusk::LogLevel;
using tolk_test::LumoFixture;

class OperationsTest : public LumoFixture {
 protected:
  void startWith(DevType type, DevArch arch) {
    addGpu(0, type, arch);
    mustStart();
    handle_ = device(0);
  }
  void startMpc(DevArch arch = DevArch::kFen2) {
    addMpc(arch);
    mustStart();
    parent_ = deviceOf("uuid-2");
    instance_ = deviceOf("uuid-3");
  }
  LumoGpu* gpu(LumoDevice* of) {
    LumoGpu* gpu = nullptr;
    EXPECT_EQ(lumoDeviceInitGpu(of, &gpu), LUMO_RETURN_SUCCESS);
    return gpu;
  }
  LumoMemory* memory(LumoDevice* of) {
    LumoMemory* memory = nullptr;
    EXPECT_EQ(lumoDeviceInitMemory(of, &memory), LUMO_RETURN_SUCCESS);
    return memory;
  }
  LumoSystem* system() {
    LumoSystem* system = nullptr;
    EXPECT_EQ(lumoLibraryInitSystem(library_, &system), LUMO_RETURN_SUCCESS);
    return system;
  }

  LumoDevice* handle_ = nullptr;
  LumoDevice* parent_ = nullptr;
  LumoDevice* instance_ = nullptr;
};

TEST_F(OperationsTest, AHandleWhoseObjectIsGoneAnswers999) {
  LumoDevice deadDevice;
  LumoGpu deadGpu;
  LumoMemory deadMemory;
  LumoSystem deadSystem;
  char text[64];
  unsigned number = 0;
  unsigned other = 0;
  unsigned long long wide = 0;
  int degrees = 0;
  LumoGpu* gpu = nullptr;
  LumoMemory* memory = nullptr;
  LumoVpu* vpu = nullptr;
  LumoDevice* device = nullptr;
  LumoPciInfo pci;
  LumoMpcProfile profile;
  LumoProcessMemUsage usage;
  const LumoReturn codes[] = {
      lumoDeviceInitGpu(&deadDevice, &gpu),
      lumoDeviceInitMemory(&deadDevice, &memory),
      lumoDeviceInitVpu(&deadDevice, &vpu),
      lumoDeviceGetIndex(&deadDevice, &number),
      lumoDeviceGetUUID(&deadDevice, text, sizeof text),
      lumoDeviceGetName(&deadDevice, text, sizeof text),
      lumoDeviceGetProperty(&deadDevice, &wide),
      lumoDeviceGetPciInfo(&deadDevice, &pci),
      lumoDeviceGetPerformanceState(&deadDevice, &number),
      lumoDeviceCountProcessMemoryUsages(&deadDevice, &number),
      lumoDeviceGetProcessMemoryUsages(&deadDevice, &usage, 1),
      lumoDeviceCountMpcInstances(&deadDevice, &number),
      lumoDeviceGetMpcInstances(&deadDevice, &device, 1),
      lumoDeviceGetMpcParentDevice(&deadDevice, &device),
      lumoDeviceGetMpcInstanceIndex(&deadDevice, &number),
      lumoDeviceGetMpcProfileInfo(&deadDevice, &profile),
      lumoGpuGetUtilization(&deadGpu, &number),
      lumoGpuGetTemperature(&deadGpu, &degrees),
      lumoMemoryGetTotal(&deadMemory, &wide),
      lumoMemoryGetUsed(&deadMemory, &wide),
      lumoMemoryGetEccMode(&deadMemory, &number, &other),
      lumoSystemGetDriverVersion(&deadSystem, text, sizeof text),
      lumoSystemGetProcessName(&deadSystem, 1, text, sizeof text),
  };
  for (const LumoReturn code : codes) {
    EXPECT_EQ(code, LUMO_RETURN_UNKNOWN_ERROR);
  }
}

TEST_F(OperationsTest, APartWhoseDeviceIsGoneAnswers999) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  const std::shared_ptr<lumo::Gpu> orphan = gpu(handle_)->object.lock();
  const std::shared_ptr<lumo::Memory> memoryOrphan = memory(handle_)->object.lock();
  stop();
  LumoReturn status = LUMO_RETURN_SUCCESS;
  orphan->getUtilization(&status);
  EXPECT_EQ(status, LUMO_RETURN_UNKNOWN_ERROR);
  status = LUMO_RETURN_SUCCESS;
  memoryOrphan->getEccMode(&status);
  EXPECT_EQ(status, LUMO_RETURN_UNKNOWN_ERROR);
}

TEST_F(OperationsTest, ADeviceWithoutPartsAnswers999) {
  struct Bare : lumo::Device {
    explicit Bare(std::shared_ptr<kelp::DeviceObj> object) : Device("bare", std::move(object), nullptr) {}
  };
  const auto object =
      std::make_shared<kelp::PhysicalDevice>(tolk_test::makeCuid(DevType::kPhysical, DevArch::kTor1),
                                             std::make_shared<kelp::ModelManager>(), kelp::FeatureRow{});
  const auto bare = std::make_shared<Bare>(object);
  LumoDevice cell{bare};
  LumoVpu* vpu = nullptr;
  EXPECT_EQ(lumoDeviceInitVpu(&cell, &vpu), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(vpu, nullptr);
}

TEST_F(OperationsTest, AMediatedDeviceHasNoNumbersOfItsOwn) {
  struct Mediated : lumo::Device {
    explicit Mediated(std::shared_ptr<kelp::DeviceObj> object) : Device("vgpu", std::move(object), nullptr) {}
  };
  const auto object =
      std::make_shared<kelp::PhysicalDevice>(tolk_test::makeCuid(DevType::kMediated, DevArch::kFen2),
                                             std::make_shared<kelp::ModelManager>(), kelp::FeatureRow{});
  const auto mediated = std::make_shared<Mediated>(object);
  LumoReturn status = LUMO_RETURN_SUCCESS;
  mediated->getIndex(&status);
  EXPECT_EQ(status, LUMO_RETURN_NOT_SUPPORTED);
  status = LUMO_RETURN_SUCCESS;
  mediated->getProcessLevelMemoryInfo(&status);
  EXPECT_EQ(status, LUMO_RETURN_NOT_SUPPORTED);

  const lumo::Gpu gpu(0, mediated);
  const lumo::Memory memory(0, mediated);
  const std::size_t lines = log_.lines.size();
  status = LUMO_RETURN_SUCCESS;
  gpu.getUtilization(&status);
  EXPECT_EQ(status, LUMO_RETURN_NOT_SUPPORTED);
  status = LUMO_RETURN_SUCCESS;
  memory.getTotal(&status);
  EXPECT_EQ(status, LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(log_.lines.size(), lines) << "this is no failure";
}

TEST_F(OperationsTest, TextsNeedRoomForTheirTerminator) {
  platform_.answer<kelp::QueryDevNameCmd>(std::string("OVT T1"));
  startWith(DevType::kPhysical, DevArch::kTor1);
  char name[8] = {'#', '#', '#', '#', '#', '#', '#', '#'};
  EXPECT_EQ(lumoDeviceGetName(handle_, name, 6), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(lumoDeviceGetName(handle_, name, 0), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(std::string(name, 8), "########");
  EXPECT_EQ(lumoDeviceGetName(handle_, name, 7), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(std::string(name, 8), std::string("OVT T1\0#", 8));
  std::fill(name, name + 8, '#');
  EXPECT_EQ(lumoDeviceGetName(handle_, name, 8), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(std::string(name, 8), std::string("OVT T1\0\0", 8)) << "the rest is cleared";
}

TEST_F(OperationsTest, TheVersionNeedsAPositiveLength) {
  mustStart();
  char version[16] = "before";
  for (const int length : {-1, 0, 5, static_cast<int>(0x80000000)}) {
    EXPECT_EQ(lumoLibraryGetVersion(library_, version, length), LUMO_RETURN_INSUFFICIENT_SIZE);
  }
  EXPECT_STREQ(version, "before");
  EXPECT_EQ(lumoLibraryGetVersion(library_, version, 6), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(version, "2.4.0");
}

TEST_F(OperationsTest, ANameThatIsNotThereKeepsItsState) {
  platform_.answer<kelp::QueryDevNameCmd>(KelpReturn::kNotSupported);
  kelp::PcieInfo pcie;
  pcie.deviceId = 0x0299U;
  platform_.answer<kelp::QueryPcieInfoCmd>(pcie);
  startWith(DevType::kPhysical, DevArch::kFen1);
  char name[64] = "before";
  EXPECT_EQ(lumoDeviceGetName(handle_, name, sizeof name), LUMO_RETURN_NOT_FOUND);
  EXPECT_STREQ(name, "before");
}

TEST_F(OperationsTest, ThePropertyWordSaysWhatADeviceIs) {
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
      const auto device = lumo::Device::create("uuid", object, nullptr);
      LumoDevice cell{device};
      unsigned long long property = 0;
      EXPECT_EQ(lumoDeviceGetProperty(&cell, &property), LUMO_RETURN_SUCCESS);
      EXPECT_EQ(property, word | ((capable & 1) << 4) | ((capable & 2) << 7));
    }
  }
}

TEST_F(OperationsTest, AnUnreadableCapabilityFailsThePropertyWord) {
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

TEST_F(OperationsTest, ThePciRecordIsWhole) {
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

TEST_F(OperationsTest, ThePciRecordIsThereWholeOrNotAtAll) {
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

TEST_F(OperationsTest, AnAddressThatIsNoneIsEmpty) {
  addGpu(0);
  platform_.descOf[0] = describe("uuid-0", "nowhere");
  platform_.answer<kelp::QueryPcieInfoCmd>(pcieInfo());
  mustStart();
  LumoPciInfo info;
  ASSERT_EQ(lumoDeviceGetPciInfo(deviceOf("uuid-0"), &info), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(info.sbdf, "");
}

TEST_F(OperationsTest, OnlyPhysicalDevicesHaveAPerformanceState) {
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

TEST_F(OperationsTest, ProcessesAreInTheOrderOfTheirIds) {
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

TEST_F(OperationsTest, AListThatHasGrownIsRefused) {
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

TEST_F(OperationsTest, AParentAndItsInstancesKnowEachOther) {
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

TEST_F(OperationsTest, AnInstanceHasAnIndexAmongAllDevices) {
  startMpc();
  unsigned index = 99;
  EXPECT_EQ(lumoDeviceGetIndex(instance_, &index), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(index, 1U);
  EXPECT_EQ(device(index), instance_);
}

TEST_F(OperationsTest, MpcQuestionsAreForThoseTheyConcern) {
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

TEST_F(OperationsTest, TheInstanceIndexIsThatOfItsNode) {
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

TEST_F(OperationsTest, AProfileIdIsShownWithoutTheIndexOfItsInstance) {
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

TEST_F(OperationsTest, UtilizationAndTemperatureLoseTheirFraction) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  kelp::GpuStatus status;
  status.utilization = 42.9F;
  platform_.answer<kelp::QueryGpuStatusCmd>(status);
  unsigned utilization = 99;
  EXPECT_EQ(lumoGpuGetUtilization(gpu(handle_), &utilization), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(utilization, 42U);
  int temperature = 99;
  platform_.answer<kelp::QueryTemperCmd>(57.999F);
  EXPECT_EQ(lumoGpuGetTemperature(gpu(handle_), &temperature), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(temperature, 57);
  platform_.answer<kelp::QueryTemperCmd>(-3.7F);
  EXPECT_EQ(lumoGpuGetTemperature(gpu(handle_), &temperature), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(temperature, -3);
}

TEST_F(OperationsTest, AGpuThatDoesNotAnswerLeavesTheOutput) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  unsigned utilization = 99;
  platform_.answer<kelp::QueryGpuStatusCmd>(KelpReturn::kAccessFailed);
  EXPECT_EQ(lumoGpuGetUtilization(gpu(handle_), &utilization), LUMO_RETURN_DRIVER_ACCESS_FAILED);
  platform_.answer<kelp::QueryGpuStatusCmd>(kelp::GpuStatus{});
  EXPECT_EQ(lumoGpuGetUtilization(gpu(handle_), &utilization), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(utilization, 99U);
  int temperature = 99;
  platform_.answer<kelp::QueryTemperCmd>(KelpReturn::kNotFound);
  EXPECT_EQ(lumoGpuGetTemperature(gpu(handle_), &temperature), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(temperature, 99);
}

TEST_F(OperationsTest, AFeatureThatIsMissingIsLoggedInTheNameOfTheOperation) {
  startMpc(DevArch::kTor1);
  unsigned number = 99;
  int degrees = 99;
  unsigned long long bytes = 99;
  for (LumoDevice* part : {parent_, instance_}) {
    EXPECT_EQ(lumoGpuGetUtilization(gpu(part), &number), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoGpuGetTemperature(gpu(part), &degrees), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoMemoryGetTotal(memory(part), &bytes), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoMemoryGetUsed(memory(part), &bytes), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoMemoryGetEccMode(memory(part), &number, &number), LUMO_RETURN_NOT_SUPPORTED);
  }
  EXPECT_TRUE(log_.has(LogLevel::kError, " gpu.cpp:"));
  for (const char* operation : {"getUtilization", "getTemperature", "getTotal", "getUsed", "getEccMode"}) {
    EXPECT_EQ(log_.count(std::string(":") + operation + " >> Feat not supported ! "), 2U) << operation;
  }
}

TEST_F(OperationsTest, MemoryIsInBytes) {
  startWith(DevType::kPhysical, DevArch::kFen2);
  kelp::MemoryUsage usage;
  usage.total = 0x1'0000'0000UL;
  usage.used = 5UL;
  usage.region[2] = 7UL;
  platform_.answer<kelp::QueryMemUsageCmd>(usage);
  unsigned long long bytes = 0;
  EXPECT_EQ(lumoMemoryGetTotal(memory(handle_), &bytes), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(bytes, 0x1'0000'0000ULL);
  EXPECT_EQ(lumoMemoryGetUsed(memory(handle_), &bytes), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(bytes, 7U);
  platform_.answer<kelp::QueryMemUsageCmd>(KelpReturn::kFirmwareFailed);
  EXPECT_EQ(lumoMemoryGetTotal(memory(handle_), &bytes), LUMO_RETURN_DRIVER_ACCESS_FAILED);
  EXPECT_EQ(bytes, 7U);
}

TEST_F(OperationsTest, OnlyAPhysicalTor1HasEcc) {
  platform_.answer<kelp::QueryEccModeCmd>(
      kelp::EccModeInfo{.current = kelp::EccMode::kOff, .pending = kelp::EccMode::kOn});
  addGpu(0, DevType::kPhysical, DevArch::kTor1);
  addGpu(1, DevType::kPhysical, DevArch::kFen2);
  mustStart();
  unsigned current = 99;
  unsigned pending = 99;
  EXPECT_EQ(lumoMemoryGetEccMode(memory(device(0)), &current, &pending), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(current, 0U);
  EXPECT_EQ(pending, 1U);
  EXPECT_EQ(lumoMemoryGetEccMode(memory(device(1)), &current, &pending), LUMO_RETURN_NOT_SUPPORTED);
}

TEST_F(OperationsTest, VideoCoresAreSortedByKind) {
  using kelp::VpuCoreKind;
  std::vector<kelp::VpuCoreSpecData> cores(6);
  cores[1].kind = VpuCoreKind::kDecoder;
  cores[2].kind = VpuCoreKind::kBoth;
  cores[3].kind = static_cast<VpuCoreKind>(9);
  cores[4].kind = VpuCoreKind::kDecoder;
  platform_.answer<kelp::QueryVpuSpecCmd>(cores);
  startWith(DevType::kPhysical, DevArch::kTor1);
  LumoVpu* vpu = nullptr;
  ASSERT_EQ(lumoDeviceInitVpu(handle_, &vpu), LUMO_RETURN_SUCCESS);
  const auto object = vpu->object.lock();
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(object->getCoreIds(VpuCoreKind::kEncoder), (std::vector<unsigned>{0, 5}));
  EXPECT_EQ(object->getCoreIds(VpuCoreKind::kDecoder), (std::vector<unsigned>{1, 4}));
  EXPECT_EQ(object->getCoreIds(VpuCoreKind::kBoth), (std::vector<unsigned>{2}));
  EXPECT_TRUE(log_.has(LogLevel::kError, "Failed to get Vpu core type[ 3 ], st =  1 "));
}

TEST_F(OperationsTest, AVideoEngineThatDoesNotAnswerHasNoCores) {
  platform_.answer<kelp::QueryVpuSpecCmd>(KelpReturn::kNotSupported);
  startWith(DevType::kPhysical, DevArch::kTor1);
  LumoVpu* vpu = nullptr;
  ASSERT_EQ(lumoDeviceInitVpu(handle_, &vpu), LUMO_RETURN_SUCCESS);
  const auto object = vpu->object.lock();
  ASSERT_NE(object, nullptr);
  EXPECT_TRUE(object->getCoreIds(kelp::VpuCoreKind::kEncoder).empty());
  EXPECT_TRUE(log_.has(LogLevel::kError, "Failed to get Vpu core count, st =  6 "));
}

TEST_F(OperationsTest, TheDriverVersionIsThereWithoutDevices) {
  mustStart();
  char version[8] = "before";
  EXPECT_EQ(lumoSystemGetDriverVersion(system(), version, 5), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_STREQ(version, "before");
  EXPECT_EQ(lumoSystemGetDriverVersion(system(), version, 6), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(version, "1.2.3");
}

TEST_F(OperationsTest, AProcessNameFailsAsTheSystemSays) {
  mustStart();
  const std::pair<KelpReturn, LumoReturn> rows[] = {
      {KelpReturn::kNotFound, LUMO_RETURN_NOT_FOUND},
      {KelpReturn::kNoPermission, LUMO_RETURN_INSUFFICIENT_PERMISSIONS},
      {KelpReturn::kFailure, LUMO_RETURN_UNKNOWN_ERROR}};
  char name[32] = "before";
  for (const auto& [state, code] : rows) {
    platform_.processName = state;
    EXPECT_EQ(lumoSystemGetProcessName(system(), 4242, name, sizeof name), code);
    EXPECT_STREQ(name, "before");
  }
  EXPECT_EQ(platform_.pid, 4242U);
  EXPECT_EQ(log_.count("( system.cc : "), 3U);

  platform_.processName = std::string("/usr/bin/app");
  EXPECT_EQ(lumoSystemGetProcessName(system(), 4242, name, sizeof name), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(name, "/usr/bin/app");
  platform_.processName = std::string();
  EXPECT_EQ(lumoSystemGetProcessName(system(), 4242, name, sizeof name), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(name, "") << "a kernel thread";
}

}  // namespace
