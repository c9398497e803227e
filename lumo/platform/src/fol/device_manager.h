#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "dev_cuid.h"
#include "environment_values.h"
#include "kelp_return.h"

namespace kelp {

class DeviceObj;
class ModelManager;

/// Knows which devices the machine has and hands out one device object per identity.
///
/// Owned by the library. The mutex is held while a device is made and initialised, so that it is made
/// once. A device that cannot be made is not kept: the next call tries again.
class DeviceManager {
 public:
  DeviceManager();
  virtual ~DeviceManager();

  DeviceManager(const DeviceManager&) = delete;
  DeviceManager& operator=(const DeviceManager&) = delete;

  Done init();

  /// GPUs in ascending order of internal id; MPC instances are asked for from their parent. State 2
  /// when the driver is not loaded, 5 before `init`.
  Stated<std::vector<DevCuid>> listDevice();
  Stated<std::shared_ptr<DeviceObj>> getDevice(const DevCuid& cuid);

  Stated<std::string> getDriverVersion();
  Stated<DriverMode> getDriverMode();
  Stated<std::string> getProcessName(std::uint32_t pid);

 private:
  std::unordered_map<DevCuid, std::shared_ptr<DeviceObj>> devices_;
  std::shared_ptr<ModelManager> modelManager_;
  std::mutex mutex_;
  std::atomic<bool> initialized_ = false;
};

}  // namespace kelp
