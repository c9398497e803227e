#include "on_hosts/host_fixture.h"

// Devices that do not answer, or answer nonsense.

namespace {

class SilentHost : public tolk_test::HostFixture {};

TEST_F(SilentHost, ARefusalIsACodeAndLeavesTheOutput) {
  ASSERT_EQ(count(), 2U);
  unsigned number = 99;
  unsigned other = 99;
  unsigned long long wide = 99;
  int degrees = 99;
  LumoProcessMemUsage usage{};
  usage.pid = 99;
  EXPECT_EQ(lumoGpuGetUtilization(gpu(1), &number), LUMO_RETURN_DRIVER_ACCESS_FAILED);
  EXPECT_EQ(lumoGpuGetTemperature(gpu(1), &degrees), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(lumoMemoryGetTotal(memory(1), &wide), LUMO_RETURN_DEVICE_LOST);
  EXPECT_EQ(lumoMemoryGetUsed(memory(1), &wide), LUMO_RETURN_DEVICE_LOST);
  EXPECT_EQ(lumoMemoryGetEccMode(memory(1), &number, &other), LUMO_RETURN_DRIVER_ACCESS_FAILED);
  EXPECT_EQ(lumoDeviceGetPerformanceState(device(1), &number), LUMO_RETURN_BUSY);
  EXPECT_EQ(lumoDeviceCountProcessMemoryUsages(device(1), &number), LUMO_RETURN_INSUFFICIENT_MEMORY);
  EXPECT_EQ(lumoDeviceGetProcessMemoryUsages(device(1), &usage, 1), LUMO_RETURN_INSUFFICIENT_MEMORY);
  EXPECT_EQ(number, 99U);
  EXPECT_EQ(other, 99U);
  EXPECT_EQ(wide, 99U);
  EXPECT_EQ(degrees, 99);
  EXPECT_EQ(usage.pid, 99U);
}

TEST_F(SilentHost, TheOtherDeviceAnswersAllTheSame) {
  EXPECT_EQ(utilization(0), "12");
  EXPECT_EQ(totalMib(0), "65536");
}

TEST_F(SilentHost, WhatTheDriverDoesNotSayTheSystemKnows) {
  EXPECT_EQ(name(device(1)), "OVT B250A") << "by its device id";
  EXPECT_EQ(linkWidth(1), "8(16)");
}

class BrokenHost : public tolk_test::HostFixture {};

TEST_F(BrokenHost, NonsenseIsNoNumber) {
  ASSERT_EQ(count(), 3U);
  EXPECT_EQ(uuid(device(1)), "00000000-0000-0000-0000-000000000001");
  EXPECT_EQ(utilization(1), "Not Supported");
  EXPECT_EQ(totalMib(1), "Not Supported");
  EXPECT_EQ(linkWidth(1), "Not Supported");
  unsigned number = 0;
  EXPECT_EQ(lumoDeviceCountProcessMemoryUsages(device(1), &number), LUMO_RETURN_SUCCESS);
  EXPECT_LE(number, 80U) << "more than the record holds";
}

TEST_F(BrokenHost, TheOtherDevicesAnswerAllTheSame) {
  for (const unsigned index : {0U, 2U}) {
    EXPECT_EQ(name(device(index)), "OVT B250A");
    EXPECT_EQ(linkWidth(index), "16(16)");
  }
}

class ClosedHost : public tolk_test::HostFixture {};

TEST_F(ClosedHost, ADeviceThatCannotBeOpenedLeavesNoGap) {
  ASSERT_EQ(count(), 2U);
  EXPECT_EQ(uuid(device(0)), "00000000-0000-0000-0000-000000000000");
  EXPECT_EQ(uuid(device(1)), "00000000-0000-0000-0000-000000000002");
  for (const unsigned index : {0U, 1U}) {
    unsigned own = 99;
    EXPECT_EQ(lumoDeviceGetIndex(device(index), &own), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(own, index);
    EXPECT_EQ(name(device(index)), "OVT B250A");
  }
}

class FutureHost : public tolk_test::HostFixture {};

TEST_F(FutureHost, ADriverThatIsTooNewHasNoDevices) {
  EXPECT_EQ(count(), 0U);
  char text[16];
  EXPECT_EQ(lumoSystemGetDriverVersion(system(), text, sizeof text), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(text, "9.0.0");
}

}  // namespace
