#include "on_hosts/host_fixture.h"

// A bare host with two GPUs of the newest family.

namespace {

class BareHost : public tolk_test::HostFixture {};

TEST_F(BareHost, HasTwoGpusInTheOrderOfTheirAddresses) {
  ASSERT_EQ(count(), 2U);
  for (const unsigned index : {0U, 1U}) {
    unsigned own = 9;
    EXPECT_EQ(lumoDeviceGetIndex(device(index), &own), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(own, index);
  }
  LumoDevice* none = nullptr;
  EXPECT_EQ(lumoLibraryInitDeviceByIndex(library_, 2, &none), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(none, nullptr);
}

TEST_F(BareHost, NamesItsGpus) {
  EXPECT_EQ(name(device(0)), "OVT B250A");
  EXPECT_EQ(name(device(1)), "OVT B250A");
  EXPECT_EQ(uuid(device(0)), "00000000-0000-0000-0000-000000000000");
  EXPECT_EQ(uuid(device(1)), "00000000-0000-0000-0000-000000000001");
}

TEST_F(BareHost, FindsAGpuByUuidAndByAddress) {
  LumoDevice* byUuid = nullptr;
  LumoDevice* byAddress = nullptr;
  EXPECT_EQ(lumoLibraryInitDeviceByUuid(library_, "00000000-0000-0000-0000-000000000001", &byUuid),
            LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, "0000:41:00.0", &byAddress), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(byUuid, device(1));
  EXPECT_EQ(byAddress, device(1));
  EXPECT_EQ(lumoLibraryInitDeviceByUuid(library_, "no such uuid", &byUuid), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, "0000:42:00.0", &byAddress), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, "0000:01:00x0", &byAddress), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, "01:00.0", &byAddress), LUMO_RETURN_INVALID_ARGUMENT);
}

TEST_F(BareHost, ShowsTheNumbersOfItsGpus) {
  EXPECT_EQ(utilization(0), "12");
  EXPECT_EQ(utilization(1), "0");
  EXPECT_EQ(temperature(0), "45");
  EXPECT_EQ(temperature(1), "38");
  EXPECT_EQ(totalMib(0), "65536");
  EXPECT_EQ(totalMib(1), "65536");
  EXPECT_EQ(usedMib(0), "1024");
  EXPECT_EQ(usedMib(1), "2");
  EXPECT_EQ(eccMode(0), "1 1");
  EXPECT_EQ(eccMode(1), "0 0");
  EXPECT_EQ(performanceState(0), "0");
  EXPECT_EQ(performanceState(1), "8");
}

TEST_F(BareHost, ShowsThePciRecord) {
  LumoPciInfo info;
  ASSERT_EQ(lumoDeviceGetPciInfo(device(1), &info), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(info.sbdf, "0000:41:00.0");
  EXPECT_EQ(info.domain, 0U);
  EXPECT_EQ(info.bus, 0x41U);
  EXPECT_EQ(info.device, 0U);
  EXPECT_EQ(info.vendorId, 0x4F56U);
  EXPECT_EQ(info.deviceId, 0x0410U);
  EXPECT_EQ(info.subsystemId & 0xFFFF, 0x4F56U);
  EXPECT_EQ(info.maxWidth, 16U);
  EXPECT_EQ(info.curWidth, 8U);
  EXPECT_GT(info.maxGen, 0U);
  EXPECT_GT(info.maxSpeed, 0.0F);
  EXPECT_EQ(linkWidth(0), "16(16)");
}

TEST_F(BareHost, HasPlainDevicesWithSablink) {
  EXPECT_EQ(property(0), std::to_string(LUMO_PROPERTY_SABLINK_CAPABLE));
}

TEST_F(BareHost, ListsProcesses) {
  EXPECT_EQ(processCount(0), "2");
  EXPECT_EQ(processCount(1), "0");
  LumoProcessMemUsage usages[3];
  EXPECT_EQ(lumoDeviceGetProcessMemoryUsages(device(0), usages, 1), LUMO_RETURN_INSUFFICIENT_SIZE);
  ASSERT_EQ(lumoDeviceGetProcessMemoryUsages(device(0), usages, 3), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(usages[0].pid, 4242U);
  EXPECT_EQ(usages[0].gpuMemory, 512ULL << 20);
  EXPECT_EQ(usages[1].pid, 4300U);
  EXPECT_EQ(usages[1].gpuMemory, 900000U);
  EXPECT_EQ(usages[2].pid, 0U);
}

TEST_F(BareHost, HasNothingOfMpc) {
  unsigned number = 9;
  LumoDevice* other = nullptr;
  LumoMpcProfile profile;
  EXPECT_EQ(lumoDeviceCountMpcInstances(device(0), &number), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoDeviceGetMpcInstances(device(0), &other, 1), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoDeviceGetMpcParentDevice(device(0), &other), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoDeviceGetMpcInstanceIndex(device(0), &number), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoDeviceGetMpcProfileInfo(device(0), &profile), LUMO_RETURN_NOT_SUPPORTED);
}

TEST_F(BareHost, KnowsItsDriverAndItsProcesses) {
  char text[256];
  ASSERT_EQ(lumoSystemGetDriverVersion(system(), text, sizeof text), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(text, "3.1.0");
  EXPECT_EQ(lumoSystemGetDriverVersion(system(), text, 5), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(lumoSystemGetDriverVersion(system(), text, 6), LUMO_RETURN_SUCCESS);
  ASSERT_EQ(lumoSystemGetProcessName(system(), 4242, text, sizeof text), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(text, "/usr/bin/render_job");
  // Above the largest number that a process can have.
  EXPECT_EQ(lumoSystemGetProcessName(system(), 4194305, text, sizeof text), LUMO_RETURN_NOT_FOUND);
  EXPECT_STREQ(text, "/usr/bin/render_job");
}

TEST_F(BareHost, GivesTheLibrarysVersion) {
  char text[16];
  ASSERT_EQ(lumoLibraryGetVersion(library_, text, sizeof text), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(text, "2.4.0");
}

TEST_F(BareHost, ReleaseCallsLeaveHandlesUsable) {
  LumoDevice* first = device(0);
  LumoVpu* vpu = nullptr;
  ASSERT_EQ(lumoDeviceInitVpu(first, &vpu), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoDeviceFreeVpu(vpu), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoDeviceFreeMemory(memory(0)), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoDeviceFreeGpu(gpu(0)), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoLibraryFreeDevice(first), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoLibraryFreeSystem(system()), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(device(0), first);
  EXPECT_EQ(name(first), "OVT B250A");
  EXPECT_EQ(utilization(0), "12");
}

TEST_F(BareHost, TwoLibraryHandlesShareTheDevices) {
  LumoLibrary* second = nullptr;
  ASSERT_EQ(lumoLibraryInit(&second), LUMO_RETURN_SUCCESS);
  LumoDevice* handle = nullptr;
  ASSERT_EQ(lumoLibraryInitDeviceByIndex(second, 0, &handle), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(handle, device(0));
  EXPECT_EQ(lumoLibraryShutDown(second), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(name(handle), "OVT B250A");
}

}  // namespace
