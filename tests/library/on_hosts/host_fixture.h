#pragma once

#include <gtest/gtest.h>
#include <lumo.h>

#include <string>

namespace tolk_test {

/// The library on the simulated host that this program runs on. Nothing but the C header is used, as
/// by another program.
class HostFixture : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(lumoLibraryInit(&library_), LUMO_RETURN_SUCCESS);
    started_ = true;
  }
  void TearDown() override {
    if (started_) {
      EXPECT_EQ(lumoLibraryShutDown(library_), LUMO_RETURN_SUCCESS);
    }
  }

  LumoDevice* device(unsigned index) {
    LumoDevice* handle = nullptr;
    EXPECT_EQ(lumoLibraryInitDeviceByIndex(library_, index, &handle), LUMO_RETURN_SUCCESS);
    return handle;
  }
  LumoGpu* gpu(unsigned index) {
    LumoGpu* handle = nullptr;
    EXPECT_EQ(lumoDeviceInitGpu(device(index), &handle), LUMO_RETURN_SUCCESS);
    return handle;
  }
  LumoMemory* memory(unsigned index) {
    LumoMemory* handle = nullptr;
    EXPECT_EQ(lumoDeviceInitMemory(device(index), &handle), LUMO_RETURN_SUCCESS);
    return handle;
  }
  LumoSystem* system() {
    LumoSystem* handle = nullptr;
    EXPECT_EQ(lumoLibraryInitSystem(library_, &handle), LUMO_RETURN_SUCCESS);
    return handle;
  }
  unsigned count() {
    unsigned number = 0;
    EXPECT_EQ(lumoLibraryCountDevice(library_, &number), LUMO_RETURN_SUCCESS);
    return number;
  }

  // The value, or the code of the failure as a text: one line per expectation either way.
  static std::string name(LumoDevice* of) {
    char text[256];
    const LumoReturn code = lumoDeviceGetName(of, text, sizeof text);
    return orCode(code, text);
  }
  static std::string uuid(LumoDevice* of) {
    char text[LUMO_UUID_SIZE];
    const LumoReturn code = lumoDeviceGetUUID(of, text, sizeof text);
    return orCode(code, text);
  }
  std::string utilization(unsigned index) {
    unsigned value = 0;
    const LumoReturn code = lumoGpuGetUtilization(gpu(index), &value);
    return orCode(code, value);
  }
  std::string temperature(unsigned index) {
    int value = 0;
    const LumoReturn code = lumoGpuGetTemperature(gpu(index), &value);
    return orCode(code, value);
  }
  std::string totalMib(unsigned index) {
    unsigned long long value = 0;
    const LumoReturn code = lumoMemoryGetTotal(memory(index), &value);
    return orCode(code, value >> 20);
  }
  std::string usedMib(unsigned index) {
    unsigned long long value = 0;
    const LumoReturn code = lumoMemoryGetUsed(memory(index), &value);
    return orCode(code, value >> 20);
  }
  /// "current pending".
  std::string eccMode(unsigned index) {
    unsigned current = 9;
    unsigned pending = 9;
    const LumoReturn code = lumoMemoryGetEccMode(memory(index), &current, &pending);
    return orCode(code, std::to_string(current) + " " + std::to_string(pending));
  }
  std::string performanceState(unsigned index) {
    unsigned value = 0;
    const LumoReturn code = lumoDeviceGetPerformanceState(device(index), &value);
    return orCode(code, value);
  }
  std::string property(unsigned index) {
    unsigned long long value = 0;
    const LumoReturn code = lumoDeviceGetProperty(device(index), &value);
    return orCode(code, value);
  }
  std::string processCount(unsigned index) {
    unsigned value = 0;
    const LumoReturn code = lumoDeviceCountProcessMemoryUsages(device(index), &value);
    return orCode(code, value);
  }
  /// "current(highest) width".
  std::string linkWidth(unsigned index) {
    LumoPciInfo info{};
    const LumoReturn code = lumoDeviceGetPciInfo(device(index), &info);
    return orCode(code, std::to_string(info.curWidth) + "(" + std::to_string(info.maxWidth) + ")");
  }

  LumoLibrary* library_ = nullptr;

 private:
  static std::string orCode(LumoReturn code, const std::string& value) {
    return code == LUMO_RETURN_SUCCESS ? value : lumoReturnText(code);
  }
  template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
  static std::string orCode(LumoReturn code, Number value) {
    return orCode(code, std::to_string(value));
  }

  bool started_ = false;
};

}  // namespace tolk_test
