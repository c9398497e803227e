#pragma once

#include <gtest/gtest.h>

#include <string>

#include "lumo.h"
#include "support/fake_platform.h"
#include "support/log_capture.h"

namespace tolk_test {

/// The library on a platform of the test's own. Devices are added before the library is started; the
/// last byte of a device's bus tells them apart.
class LumoFixture : public testing::Test {
 protected:
  ~LumoFixture() override { stop(); }

  static kelp::DevDesc describe(const std::string& uuid, const std::string& sbdf) {
    kelp::DevDesc desc;
    desc.uuid = uuid;
    desc.sbdf = sbdf;
    desc.kmdFlagA = false;
    desc.kmdFlagB = false;
    return desc;
  }

  static kelp::DevCuid cuidOf(kelp::DevType type, kelp::DevArch arch, unsigned bus, unsigned intId) {
    kelp::DevCuid cuid = makeCuid(type, arch, intId);
    cuid.sbdf = std::uint64_t{bus} << 16;
    return cuid;
  }

  static std::string addressOf(unsigned bus) {
    char text[16];
    std::snprintf(text, sizeof text, "0000:%02x:00.0", bus);
    return text;
  }

  /// A GPU "uuid-<intId>" at bus 0x40 + intId.
  void addGpu(unsigned intId, kelp::DevType type = kelp::DevType::kPhysical,
              kelp::DevArch arch = kelp::DevArch::kTor1) {
    addGpuAt(0x40 + intId, intId, "uuid-" + std::to_string(intId), type, arch);
  }

  void addGpuAt(unsigned bus, unsigned intId, const std::string& uuid,
                kelp::DevType type = kelp::DevType::kPhysical, kelp::DevArch arch = kelp::DevArch::kTor1) {
    kelp::DevCuidSet cuids = platform_.pcieCuids.value();
    cuids.insert(cuidOf(type, arch, bus, intId));
    platform_.pcieCuids = cuids;
    platform_.descOf[intId] = describe(uuid, addressOf(bus));
  }

  /// An MPC parent, "ovgpu.2", with two instances, "ovgpu.3" and "ovgpu.10".
  void addMpc(kelp::DevArch arch = kelp::DevArch::kFen2) {
    addGpu(2, kelp::DevType::kMpcParent, arch);
    platform_.mpciCuids = kelp::DevCuidSet{cuidOf(kelp::DevType::kMpcInstance, arch, 0x42, 10),
                                           cuidOf(kelp::DevType::kMpcInstance, arch, 0x42, 3)};
    for (const unsigned intId : {3U, 10U}) {
      platform_.descOf[intId] = describe("uuid-" + std::to_string(intId), addressOf(0x42));
    }
  }

  LumoReturn start() { return lumoLibraryInit(&library_); }
  void stop() {
    if (library_ != nullptr) {
      EXPECT_EQ(lumoLibraryShutDown(library_), LUMO_RETURN_SUCCESS);
      library_ = nullptr;
    }
  }

  /// Starts the library for a test that is not about starting it.
  void mustStart() {
    const LumoReturn status = start();
    if (status != LUMO_RETURN_SUCCESS) {
      library_ = nullptr;
    }
    ASSERT_EQ(status, LUMO_RETURN_SUCCESS);
  }

  LumoDevice* device(unsigned index) {
    LumoDevice* handle = nullptr;
    EXPECT_EQ(lumoLibraryInitDeviceByIndex(library_, index, &handle), LUMO_RETURN_SUCCESS);
    return handle;
  }
  LumoDevice* deviceOf(const std::string& uuid) {
    LumoDevice* handle = nullptr;
    EXPECT_EQ(lumoLibraryInitDeviceByUuid(library_, uuid.c_str(), &handle), LUMO_RETURN_SUCCESS);
    return handle;
  }
  unsigned count() {
    unsigned number = 0;
    EXPECT_EQ(lumoLibraryCountDevice(library_, &number), LUMO_RETURN_SUCCESS);
    return number;
  }
  static std::string uuidOf(LumoDevice* handle) {
    char text[LUMO_UUID_SIZE] = {};
    EXPECT_EQ(lumoDeviceGetUUID(handle, text, sizeof text), LUMO_RETURN_SUCCESS);
    return text;
  }

  void startWith(kelp::DevType type, kelp::DevArch arch) {
    addGpu(0, type, arch);
    mustStart();
    handle_ = device(0);
  }
  void startMpc(kelp::DevArch arch = kelp::DevArch::kFen2) {
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

  FakePlatform platform_;
  LogCapture log_;
  LumoLibrary* library_ = nullptr;
  LumoDevice* handle_ = nullptr;    ///< of startWith
  LumoDevice* parent_ = nullptr;    ///< of startMpc
  LumoDevice* instance_ = nullptr;  ///< of startMpc
};

}  // namespace tolk_test
