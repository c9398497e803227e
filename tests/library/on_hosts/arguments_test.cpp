#include "on_hosts/host_fixture.h"

// Null arguments of the functions of library, system and log, and room for texts. Those that concern a device
// are in the table of all operations.

namespace {

class BareHostArguments : public tolk_test::HostFixture {
 protected:
  char text_[64] = "before";
  unsigned number_ = 99;
  LumoDevice* handle_ = nullptr;
};

#define EXPECT_INVALID(call) EXPECT_EQ(call, LUMO_RETURN_INVALID_ARGUMENT) << #call

TEST_F(BareHostArguments, NoHandle) {
  LumoSystem* system = nullptr;
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
  EXPECT_INVALID(lumoDeviceFreeGpu(nullptr));
  EXPECT_INVALID(lumoDeviceFreeMemory(nullptr));
  EXPECT_INVALID(lumoDeviceFreeVpu(nullptr));
  EXPECT_STREQ(text_, "before");
  EXPECT_EQ(number_, 99U);
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
  EXPECT_EQ(number_, 99U);
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
