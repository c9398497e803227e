#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "command_access/lumo_access/device_type.h"
#include "lumo.h"

namespace tolk {

/// The library's handles for one device and its parts. They belong to the library.
struct LumoModuleSet {
  LumoDevice* device = nullptr;
  LumoGpu* gpu = nullptr;
  LumoMemory* memory = nullptr;
  LumoVpu* vpu = nullptr;
};

/// One instance of an MPC parent.
struct MpcInstance {
  std::uint32_t deviceIndex = 0;    ///< position in the library's order
  std::uint32_t instanceIndex = 0;  ///< number among its parent's instances
  LumoMpcProfile profile{};
};

/// The one class through which commands reach a device. It lives no longer than the factory it came
/// from; past that, the library's handles are dead and every method fails.
///
/// Each method makes timed calls and returns the status of the one that failed, which has been logged
/// then; its output is left as it was. Nothing throws.
class LumoAccessDevice {
 public:
  explicit LumoAccessDevice(const LumoModuleSet& modules) : modules_(modules) {}
  virtual ~LumoAccessDevice() = default;
  LumoAccessDevice(const LumoAccessDevice&) = delete;
  LumoAccessDevice& operator=(const LumoAccessDevice&) = delete;

  virtual LumoReturn devGetIndex(std::uint32_t& index) const;
  virtual LumoReturn devGetUUID(std::string& uuid) const;

  /// Model name, followed by the profile's name for an MPC instance.
  virtual LumoReturn devGetName(std::string& name) const;

  /// As the library's record, with eight digits of domain in the address text.
  virtual LumoReturn devGetPciInfo(LumoPciInfo& info) const;

  virtual LumoReturn devGetMpcCapability(bool& capable) const;
  virtual LumoReturn devGetDeviceType(DeviceType& type) const;

  /// 0 (fastest) to 15.
  virtual LumoReturn deviceGetPerfState(std::uint32_t& state) const;

  /// Percent.
  virtual LumoReturn gpuGetUtilization(std::uint32_t& utilization) const;

  /// Degrees Celsius.
  virtual LumoReturn gpuGetTemperature(std::int32_t& temperature) const;

  /// Bytes.
  virtual LumoReturn memoryGetTotal(unsigned long long& totalBytes) const;
  virtual LumoReturn memoryGetUsed(unsigned long long& usedBytes) const;

  /// Inline ECC now and after the next reset, 0 off and 1 on.
  virtual LumoReturn memoryGetEccMode(std::uint32_t& current, std::uint32_t& pending) const;

  /// What a status of a method means, for people; a code without a text of its own reads as 999.
  static const char* getReturnText(LumoReturn code);

  void setLumoModuleSet(const LumoModuleSet& modules) { modules_ = modules; }
  const LumoModuleSet& getLumoModuleSet() const { return modules_; }

  /// Processes that hold memory of the device, in ascending order of pid.
  LumoReturn getProcessMemoryInfo(std::vector<LumoProcessMemUsage>& processes) const;

  /// Instances of an MPC parent, in the library's order.
  LumoReturn getMpcInstances(std::vector<MpcInstance>& instances) const;

  /// Index of an MPC instance's parent.
  LumoReturn getParentDeviceIndex(std::uint32_t& index) const;

 private:
  LumoModuleSet modules_;
};

}  // namespace tolk
