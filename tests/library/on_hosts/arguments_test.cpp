#include "on_hosts/host_fixture.h"

// Null and out-of-range arguments of every function, with handles that are alive.

namespace {

class BareHostArguments : public tolk_test::HostFixture {
 protected:
  char text_[64] = "before";
  unsigned number_ = 99;
  unsigned other_ = 99;
  unsigned long long wide_ = 99;
  int degrees_ = 99;
  LumoDevice* handle_ = nullptr;
  LumoPciInfo pci_{};
  LumoMpcProfile profile_{};
  LumoProcessMemUsage usage_{};
};

#define EXPECT_INVALID(call) EXPECT_EQ(call, LUMO_RETURN_INVALID_ARGUMENT) << #call

TEST_F(BareHostArguments, NoHandle) {
  LumoSystem* system = nullptr;
  LumoGpu* gpu = nullptr;
  LumoMemory* memory = nullptr;
  LumoVpu* vpu = nullptr;
  EXPECT_INVALID(lumoLibraryShutDown(nullptr));
  EXPECT_INVALID(lumoLibraryGetVersion(nullptr, text_, sizeof text_));
  EXPECT_INVALID(lumoLibraryCountDevice(nullptr, &number_));
  EXPECT_INVALID(lumoLibraryInitSystem(nullptr, &system));
  EXPECT_INVALID(lumoLibraryInitDeviceByIndex(nullptr, 0, &handle_));
  EXPECT_INVALID(lumoLibraryInitDeviceByUuid(nullptr, "", &handle_));
  EXPECT_INVALID(lumoLibraryInitDeviceByPciSbdf(nullptr, "0000:01:00.0", &handle_));
  EXPECT_INVALID(lumoLibraryFreeSystem(nullptr));
  EXPECT_INVALID(lumoLibraryFreeDevice(nullptr));
  EXPECT_INVALID(lumoSystemGetDriverVersion(nullptr, text_, sizeof text_));
  EXPECT_INVALID(lumoSystemGetProcessName(nullptr, 1, text_, sizeof text_));
  EXPECT_INVALID(lumoDeviceInitGpu(nullptr, &gpu));
  EXPECT_INVALID(lumoDeviceInitMemory(nullptr, &memory));
  EXPECT_INVALID(lumoDeviceInitVpu(nullptr, &vpu));
  EXPECT_INVALID(lumoDeviceFreeGpu(nullptr));
  EXPECT_INVALID(lumoDeviceFreeMemory(nullptr));
  EXPECT_INVALID(lumoDeviceFreeVpu(nullptr));
  EXPECT_INVALID(lumoDeviceGetIndex(nullptr, &number_));
  EXPECT_INVALID(lumoDeviceGetUUID(nullptr, text_, sizeof text_));
  EXPECT_INVALID(lumoDeviceGetName(nullptr, text_, sizeof text_));
  EXPECT_INVALID(lumoDeviceGetProperty(nullptr, &wide_));
  EXPECT_INVALID(lumoDeviceGetPciInfo(nullptr, &pci_));
  EXPECT_INVALID(lumoDeviceGetPerformanceState(nullptr, &number_));
  EXPECT_INVALID(lumoDeviceCountProcessMemoryUsages(nullptr, &number_));
  EXPECT_INVALID(lumoDeviceGetProcessMemoryUsages(nullptr, &usage_, 1));
  EXPECT_INVALID(lumoDeviceCountMpcInstances(nullptr, &number_));
  EXPECT_INVALID(lumoDeviceGetMpcInstances(nullptr, &handle_, 1));
  EXPECT_INVALID(lumoDeviceGetMpcParentDevice(nullptr, &handle_));
  EXPECT_INVALID(lumoDeviceGetMpcInstanceIndex(nullptr, &number_));
  EXPECT_INVALID(lumoDeviceGetMpcProfileInfo(nullptr, &profile_));
  EXPECT_INVALID(lumoGpuGetUtilization(nullptr, &number_));
  EXPECT_INVALID(lumoGpuGetTemperature(nullptr, &degrees_));
  EXPECT_INVALID(lumoMemoryGetTotal(nullptr, &wide_));
  EXPECT_INVALID(lumoMemoryGetUsed(nullptr, &wide_));
  EXPECT_INVALID(lumoMemoryGetEccMode(nullptr, &number_, &other_));
  EXPECT_STREQ(text_, "before");
  EXPECT_EQ(number_, 99U);
  EXPECT_EQ(wide_, 99U);
  EXPECT_EQ(degrees_, 99);
  EXPECT_EQ(handle_, nullptr);
}

TEST_F(BareHostArguments, NoOutput) {
  EXPECT_INVALID(lumoLibraryInit(nullptr));
  EXPECT_INVALID(lumoLibraryGetVersion(library_, nullptr, 64));
  EXPECT_INVALID(lumoLibraryCountDevice(library_, nullptr));
  EXPECT_INVALID(lumoLibraryInitSystem(library_, nullptr));
  EXPECT_INVALID(lumoLibraryInitDeviceByIndex(library_, 0, nullptr));
  EXPECT_INVALID(lumoLibraryInitDeviceByUuid(library_, "", nullptr));
  EXPECT_INVALID(lumoLibraryInitDeviceByPciSbdf(library_, "0000:01:00.0", nullptr));
  EXPECT_INVALID(lumoSystemGetDriverVersion(system(), nullptr, 64));
  EXPECT_INVALID(lumoSystemGetProcessName(system(), 1, nullptr, 64));
  EXPECT_INVALID(lumoDeviceInitGpu(device(0), nullptr));
  EXPECT_INVALID(lumoDeviceInitMemory(device(0), nullptr));
  EXPECT_INVALID(lumoDeviceInitVpu(device(0), nullptr));
  EXPECT_INVALID(lumoDeviceGetIndex(device(0), nullptr));
  EXPECT_INVALID(lumoDeviceGetUUID(device(0), nullptr, 64));
  EXPECT_INVALID(lumoDeviceGetName(device(0), nullptr, 64));
  EXPECT_INVALID(lumoDeviceGetProperty(device(0), nullptr));
  EXPECT_INVALID(lumoDeviceGetPciInfo(device(0), nullptr));
  EXPECT_INVALID(lumoDeviceGetPerformanceState(device(0), nullptr));
  EXPECT_INVALID(lumoDeviceCountProcessMemoryUsages(device(0), nullptr));
  EXPECT_INVALID(lumoDeviceGetProcessMemoryUsages(device(0), nullptr, 1));
  EXPECT_INVALID(lumoDeviceCountMpcInstances(device(0), nullptr));
  EXPECT_INVALID(lumoDeviceGetMpcInstances(device(0), nullptr, 1));
  EXPECT_INVALID(lumoDeviceGetMpcParentDevice(device(0), nullptr));
  EXPECT_INVALID(lumoDeviceGetMpcInstanceIndex(device(0), nullptr));
  EXPECT_INVALID(lumoDeviceGetMpcProfileInfo(device(0), nullptr));
  EXPECT_INVALID(lumoGpuGetUtilization(gpu(0), nullptr));
  EXPECT_INVALID(lumoGpuGetTemperature(gpu(0), nullptr));
  EXPECT_INVALID(lumoMemoryGetTotal(memory(0), nullptr));
  EXPECT_INVALID(lumoMemoryGetUsed(memory(0), nullptr));
  EXPECT_INVALID(lumoMemoryGetEccMode(memory(0), nullptr, &other_));
  EXPECT_INVALID(lumoMemoryGetEccMode(memory(0), &number_, nullptr));
  EXPECT_EQ(number_, 99U);
  EXPECT_EQ(other_, 99U);
}

TEST_F(BareHostArguments, NoText) {
  EXPECT_INVALID(lumoLibraryInitDeviceByUuid(library_, nullptr, &handle_));
  EXPECT_INVALID(lumoLibraryInitDeviceByPciSbdf(library_, nullptr, &handle_));
  EXPECT_INVALID(lumoLibrarySetLogConfiguration(nullptr));
  EXPECT_INVALID(lumoLibraryGetLogConfiguration(nullptr));
  EXPECT_INVALID(lumoLogSetConfiguration(nullptr));
  EXPECT_INVALID(lumoLogGetConfiguration(nullptr));
}

TEST_F(BareHostArguments, NoRoom) {
  EXPECT_EQ(lumoLibraryGetVersion(library_, text_, 5), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(lumoLibraryGetVersion(library_, text_, -64), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(lumoSystemGetDriverVersion(system(), text_, 5), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(lumoSystemGetProcessName(system(), 4242, text_, 5), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(lumoDeviceGetUUID(device(0), text_, 36), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(lumoDeviceGetName(device(0), text_, 9), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(lumoDeviceGetName(device(0), text_, 0), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_STREQ(text_, "before");
  EXPECT_EQ(lumoDeviceGetUUID(device(0), text_, 37), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoDeviceGetName(device(0), text_, 10), LUMO_RETURN_SUCCESS);
}

}  // namespace
