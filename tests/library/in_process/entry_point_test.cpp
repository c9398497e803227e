#include "device.h"
#include "device_object.h"
#include "gpu.h"
#include "handles.h"
#include "in_process/lumo_fixture.h"
#include "memory.h"
#include "physical_device.h"
#include "system.h"
#include "vpu.h"

// What all entry points have in common.

namespace {

using kelp::DevArch;
using kelp::DevType;
using tolk_test::LumoFixture;

class EntryPointTest : public LumoFixture {};

TEST_F(EntryPointTest, APartWhoseDeviceIsGoneAnswers999) {
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

TEST_F(EntryPointTest, ADeviceWithoutPartsAnswers999) {
  struct Bare : lumo::Device {
    explicit Bare(std::shared_ptr<kelp::DeviceObj> object)
        : Device("bare", std::move(object), nullptr, nullptr) {}
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

TEST_F(EntryPointTest, AMediatedDeviceHasNoNumbersOfItsOwn) {
  struct Mediated : lumo::Device {
    explicit Mediated(std::shared_ptr<kelp::DeviceObj> object)
        : Device("vgpu", std::move(object), nullptr, nullptr) {}
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

TEST_F(EntryPointTest, TextsNeedRoomForTheirTerminator) {
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

TEST_F(EntryPointTest, TheVersionNeedsAPositiveLength) {
  mustStart();
  char version[16] = "before";
  for (const int length : {-1, 0, 5, static_cast<int>(0x80000000)}) {
    EXPECT_EQ(lumoLibraryGetVersion(library_, version, length), LUMO_RETURN_INSUFFICIENT_SIZE);
  }
  EXPECT_STREQ(version, "before");
  EXPECT_EQ(lumoLibraryGetVersion(library_, version, 6), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(version, "2.4.0");
}

TEST_F(EntryPointTest, EachOperationAsksTheDriverForWhatItNeedsAndNoMore) {
  platform_.answer<kelp::QueryDevNameCmd>(std::string("OVT B250A"));
  platform_.answer<kelp::QueryPcieInfoCmd>(kelp::PcieInfo{});
  platform_.answer<kelp::QueryGpuStatusCmd>(kelp::GpuStatus{});
  startMpc();
  addGpu(0);
  stop();
  mustStart();
  LumoDevice* physical = deviceOf("uuid-0");
  LumoDevice* parent = deviceOf("uuid-2");
  LumoDevice* instance = deviceOf("uuid-3");
  LumoGpu* ownGpu = gpu(physical);
  LumoMemory* ownMemory = memory(physical);
  char text[64];
  unsigned number = 0;
  unsigned other = 0;
  unsigned long long wide = 0;
  int degrees = 0;
  LumoPciInfo pci;
  LumoProcessMemUsage usages[4];
  LumoDevice* devices[4];
  LumoMpcProfile profile;
  using Commands = std::vector<std::string>;
  const std::pair<std::function<void()>, Commands> rows[] = {
      {[&] { lumoDeviceGetIndex(physical, &number); }, {}},
      {[&] { lumoDeviceGetUUID(physical, text, sizeof text); }, {}},
      {[&] { lumoDeviceGetProperty(physical, &wide); }, {}},
      {[&] { lumoDeviceGetName(physical, text, sizeof text); }, {"QueryDevName"}},
      {[&] { lumoDeviceGetPciInfo(physical, &pci); }, {"QueryPcieInfo"}},
      {[&] { lumoDeviceGetPerformanceState(physical, &number); }, {"QueryPstate"}},
      {[&] { lumoDeviceCountProcessMemoryUsages(physical, &number); }, {"QueryProcMemState"}},
      {[&] { lumoDeviceGetProcessMemoryUsages(physical, usages, 4); }, {"QueryProcMemState"}},
      {[&] { lumoDeviceCountMpcInstances(parent, &number); }, {}},
      {[&] { lumoDeviceGetMpcInstances(parent, devices, 4); }, {}},
      {[&] { lumoDeviceGetMpcParentDevice(instance, devices); }, {}},
      {[&] { lumoDeviceGetMpcInstanceIndex(instance, &number); }, {"QueryMpcInstList"}},
      {[&] { lumoDeviceGetMpcProfileInfo(instance, &profile); }, {"QueryMpcProf"}},
      {[&] { lumoGpuGetUtilization(ownGpu, &number); }, {"QueryGpuStatus"}},
      {[&] { lumoGpuGetTemperature(ownGpu, &degrees); }, {"QueryTemper"}},
      {[&] { lumoMemoryGetTotal(ownMemory, &wide); }, {"QueryMemUsage"}},
      {[&] { lumoMemoryGetUsed(ownMemory, &wide); }, {"QueryMemUsage"}},
      {[&] { lumoMemoryGetEccMode(ownMemory, &number, &other); }, {"QueryEccMode"}},
  };
  for (const auto& [operation, commands] : rows) {
    platform_.asked.clear();
    operation();
    EXPECT_EQ(platform_.asked, commands);
  }
}

}  // namespace
