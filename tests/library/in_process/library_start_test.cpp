#include <cstdlib>

#include "in_process/lumo_fixture.h"

// Starting and ending the library, and which devices it then has.

namespace {

using kelp::DevArch;
using kelp::DevType;
using kelp::KelpReturn;
using rusk::LogLevel;
using tolk_test::LumoFixture;

class LibraryStartTest : public LumoFixture {};

TEST_F(LibraryStartTest, AMachineWithoutDevicesIsASuccess) {
  mustStart();
  EXPECT_EQ(count(), 0U);
  LumoDevice* handle = nullptr;
  EXPECT_EQ(lumoLibraryInitDeviceByIndex(library_, 0, &handle), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(handle, nullptr);
}

TEST_F(LibraryStartTest, AFailedEnumerationIsTheCodeOfItsState) {
  const std::pair<KelpReturn, LumoReturn> rows[] = {
      {KelpReturn::kDriverNotLoaded, LUMO_RETURN_DRIVER_NOT_LOADED},
      {KelpReturn::kFailure, LUMO_RETURN_UNKNOWN_ERROR},
      {KelpReturn::kNoPermission, LUMO_RETURN_INSUFFICIENT_PERMISSIONS}};
  for (const auto& [state, code] : rows) {
    platform_.pcieCuids = state;
    EXPECT_EQ(start(), code);
    library_ = nullptr;
    EXPECT_TRUE(
        log_.has(LogLevel::kError, "Mv error, state =  " + std::to_string(static_cast<int>(state)) + " "));
  }
}

TEST_F(LibraryStartTest, AStartAfterAFailedOneBeginsAfresh) {
  platform_.pcieCuids = KelpReturn::kDriverNotLoaded;
  EXPECT_EQ(start(), LUMO_RETURN_DRIVER_NOT_LOADED);
  platform_.pcieCuids = kelp::DevCuidSet{};
  addGpu(0);
  mustStart();
  EXPECT_EQ(count(), 1U);
}

/// Gives the library back while the process ends, as programs do that leave it to atexit().
LumoLibrary* givenBackAtExit = nullptr;
LumoDevice* askedAtExit = nullptr;

TEST_F(LibraryStartTest, MayBeGivenBackWhileTheProcessEnds) {
  // In a process of its own, in which nothing was asked of the library before.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  addGpu(0);
  const auto leave = [this] {
    std::atexit([] {
      unsigned index = 99;
      const bool isAlive = lumoDeviceGetIndex(askedAtExit, &index) == LUMO_RETURN_SUCCESS && index == 0 &&
                           lumoLibraryShutDown(givenBackAtExit) == LUMO_RETURN_SUCCESS &&
                           lumoLibraryInit(&givenBackAtExit) == LUMO_RETURN_SUCCESS;
      std::_Exit(isAlive ? 0 : 1);
    });
    mustStart();
    askedAtExit = device(0);
    givenBackAtExit = library_;
    std::exit(2);
  };
  EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST_F(LibraryStartTest, ADeviceThatCannotBeMadeLeavesNoGap) {
  addGpu(0);
  addGpu(1);
  addGpu(2);
  platform_.descOf[1] = KelpReturn::kAccessFailed;
  mustStart();
  ASSERT_EQ(count(), 2U);
  EXPECT_EQ(uuidOf(device(0)), "uuid-0");
  EXPECT_EQ(uuidOf(device(1)), "uuid-2");
  for (const unsigned index : {0U, 1U}) {
    unsigned own = 99;
    EXPECT_EQ(lumoDeviceGetIndex(device(index), &own), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(own, index);
  }
  EXPECT_TRUE(log_.has(LogLevel::kError, "Mv error, state =  10 "));
  EXPECT_TRUE(log_.has(LogLevel::kWarn, "warn: createDevice[sbdf:  0000:41:00.0 , intId:  1 ] error:  2 "));
}

TEST_F(LibraryStartTest, AGuestOfAFamilyWithoutGuestsIsLeftOut) {
  addGpu(0, DevType::kGuest, DevArch::kTor1);
  addGpu(1, DevType::kGuest, DevArch::kFen1);
  mustStart();
  EXPECT_EQ(count(), 1U);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Unknown device type :  5 "));
}

TEST_F(LibraryStartTest, DevicesAreInTheOrderOfTheirAddresses) {
  addGpuAt(0x90, 0, "high");
  addGpuAt(0x10, 1, "low");
  addGpuAt(0x50, 2, "middle");
  mustStart();
  EXPECT_EQ(uuidOf(device(0)), "low");
  EXPECT_EQ(uuidOf(device(1)), "middle");
  EXPECT_EQ(uuidOf(device(2)), "high");
}

TEST_F(LibraryStartTest, DevicesOfOneAddressAreInTheOrderOfTheirInternalIds) {
  addMpc();
  mustStart();
  ASSERT_EQ(count(), 3U);
  EXPECT_EQ(uuidOf(device(0)), "uuid-2");
  EXPECT_EQ(uuidOf(device(1)), "uuid-3");
  EXPECT_EQ(uuidOf(device(2)), "uuid-10");
}

TEST_F(LibraryStartTest, TwoHandlesSeeTheSameDevices) {
  addGpu(0);
  mustStart();
  LumoLibrary* second = nullptr;
  ASSERT_EQ(lumoLibraryInit(&second), LUMO_RETURN_SUCCESS);
  EXPECT_NE(second, library_);
  EXPECT_EQ(platform_.modelInits, 1) << "devices are found once";
  LumoDevice* handle = nullptr;
  EXPECT_EQ(lumoLibraryInitDeviceByIndex(second, 0, &handle), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(handle, device(0));

  EXPECT_EQ(lumoLibraryShutDown(second), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(uuidOf(handle), "uuid-0") << "the other handle keeps the library";
}

TEST_F(LibraryStartTest, TheLastShutDownEndsTheLibrary) {
  addGpu(0);
  mustStart();
  stop();
  addGpu(1);
  mustStart();
  EXPECT_EQ(count(), 2U);
  EXPECT_EQ(platform_.modelInits, 3);
}

TEST_F(LibraryStartTest, AskingTwiceGivesTheSameHandle) {
  addGpu(0);
  addGpu(1);
  mustStart();
  EXPECT_EQ(device(1), device(1));
  EXPECT_NE(device(0), device(1));
  EXPECT_EQ(deviceOf("uuid-1"), device(1));
  LumoDevice* handle = nullptr;
  EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, "0000:41:00.0", &handle), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(handle, device(1));

  LumoGpu* gpus[2] = {};
  LumoMemory* memories[2] = {};
  LumoVpu* vpus[2] = {};
  LumoSystem* systems[2] = {};
  for (const int i : {0, 1}) {
    EXPECT_EQ(lumoDeviceInitGpu(handle, &gpus[i]), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(lumoDeviceInitMemory(handle, &memories[i]), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(lumoDeviceInitVpu(handle, &vpus[i]), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(lumoLibraryInitSystem(library_, &systems[i]), LUMO_RETURN_SUCCESS);
  }
  EXPECT_EQ(gpus[0], gpus[1]);
  EXPECT_EQ(memories[0], memories[1]);
  EXPECT_EQ(vpus[0], vpus[1]);
  EXPECT_EQ(systems[0], systems[1]);
}

TEST_F(LibraryStartTest, EachPartOfADeviceReadsTheNameOnce) {
  addGpu(0);
  mustStart();
  EXPECT_EQ(platform_.count("QueryDevName"), 3U);
}

TEST_F(LibraryStartTest, TheEndOfADeviceListIsNotFound) {
  addGpu(0);
  mustStart();
  LumoDevice* handle = nullptr;
  for (const unsigned index : {1U, 2U, 0x80000000U, 0xFFFFFFFFU}) {
    EXPECT_EQ(lumoLibraryInitDeviceByIndex(library_, index, &handle), LUMO_RETURN_NOT_FOUND);
  }
  EXPECT_EQ(lumoLibraryInitDeviceByUuid(library_, "", &handle), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(lumoLibraryInitDeviceByUuid(library_, "UUID-0", &handle), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, "0000:99:00.0", &handle), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(handle, nullptr);
}

TEST_F(LibraryStartTest, AnAddressMustLookLikeOne) {
  addGpu(0);
  mustStart();
  LumoDevice* handle = nullptr;
  EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, "40:00.0", &handle), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, "", &handle), LUMO_RETURN_INVALID_ARGUMENT);
  // Looks like one, and names no device.
  EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, "0000:01:00x0", &handle), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, "00000000:40:00.0", &handle), LUMO_RETURN_SUCCESS);
}

TEST_F(LibraryStartTest, TwoDevicesWithoutUuidAreTwoDevices) {
  addGpuAt(0x40, 0, "", DevType::kGuest, DevArch::kFen1);
  addGpuAt(0x41, 1, "", DevType::kGuest, DevArch::kFen1);
  mustStart();
  ASSERT_EQ(count(), 2U);
  EXPECT_EQ(deviceOf("0000:40:00.0"), device(0));
  EXPECT_EQ(deviceOf("0000:41:00.0"), device(1));
  char uuid[LUMO_UUID_SIZE] = "before";
  EXPECT_EQ(lumoDeviceGetUUID(device(0), uuid, sizeof uuid), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_STREQ(uuid, "before");
}

TEST_F(LibraryStartTest, ADeviceWithATakenUuidIsKnownByItsAddress) {
  addGpuAt(0x40, 0, "same");
  addGpuAt(0x41, 1, "same");
  addGpuAt(0x41, 2, "same");
  mustStart();
  ASSERT_EQ(count(), 3U);
  EXPECT_EQ(deviceOf("same"), device(0));
  EXPECT_EQ(deviceOf("0000:41:00.0"), device(1));
  EXPECT_EQ(deviceOf("0000:41:00.0/2"), device(2));
  EXPECT_EQ(uuidOf(device(2)), "same");
  LumoDevice* handle = nullptr;
  EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, "0000:41:00.0", &handle), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(handle, device(1)) << "the first of an address is found by it";
}

TEST_F(LibraryStartTest, InstancesThatCannotBeListedEndTheStart) {
  addMpc();
  platform_.mpciCuids = KelpReturn::kReadFailed;
  EXPECT_EQ(start(), LUMO_RETURN_DRIVER_ACCESS_FAILED);
  library_ = nullptr;
  EXPECT_TRUE(log_.has(LogLevel::kError, "Mv error, state =  8 "));
}

TEST_F(LibraryStartTest, AnInstanceThatCannotBeMadeIsLeftOut) {
  addMpc();
  platform_.descOf[3] = KelpReturn::kDeviceLost;
  mustStart();
  ASSERT_EQ(count(), 2U);
  EXPECT_EQ(uuidOf(device(1)), "uuid-10");
  unsigned instances = 0;
  EXPECT_EQ(lumoDeviceCountMpcInstances(device(0), &instances), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(instances, 1U);
  EXPECT_TRUE(
      log_.has(LogLevel::kWarn, "warn: mpc, createDevice[sbdf:  0000:42:00.0 , intId:  3 ] error:  12 "));
}

TEST_F(LibraryStartTest, AParentThatCannotBeMadeTakesItsInstancesAlong) {
  addMpc();
  addGpu(0);
  platform_.descOf[2] = KelpReturn::kDeviceLost;
  mustStart();
  EXPECT_EQ(count(), 1U);
}

TEST_F(LibraryStartTest, ReleaseCallsFreeNothingAndWarn) {
  addGpu(0);
  mustStart();
  LumoDevice* handle = device(0);
  LumoGpu* gpu = nullptr;
  LumoMemory* memory = nullptr;
  LumoVpu* vpu = nullptr;
  LumoSystem* system = nullptr;
  ASSERT_EQ(lumoDeviceInitGpu(handle, &gpu), LUMO_RETURN_SUCCESS);
  ASSERT_EQ(lumoDeviceInitMemory(handle, &memory), LUMO_RETURN_SUCCESS);
  ASSERT_EQ(lumoDeviceInitVpu(handle, &vpu), LUMO_RETURN_SUCCESS);
  ASSERT_EQ(lumoLibraryInitSystem(library_, &system), LUMO_RETURN_SUCCESS);

  EXPECT_EQ(lumoLibraryFreeSystem(system), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoLibraryFreeDevice(handle), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoDeviceFreeGpu(gpu), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoDeviceFreeMemory(memory), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoDeviceFreeVpu(vpu), LUMO_RETURN_SUCCESS);
  for (const char* name : {"lumoLibraryFreeSystem", "lumoLibraryFreeDevice", "lumoDeviceFreeGpu",
                           "lumoDeviceFreeMemory", "lumoDeviceFreeVpu"}) {
    EXPECT_TRUE(log_.has(LogLevel::kWarn,
                         std::string(">> ") + name + "() API is deprecated and will be removed in future. "));
  }

  EXPECT_EQ(uuidOf(handle), "uuid-0");
  EXPECT_EQ(device(0), handle);
  char version[80];
  EXPECT_EQ(lumoSystemGetDriverVersion(system, version, sizeof version), LUMO_RETURN_SUCCESS);
}

}  // namespace
