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
#include "topology_values.h"

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

  /// How far apart two PCI functions are, by their addresses; and the host's network adapters. Questions
  /// to sysfs, for devices that have no topology feature of their own.
  static Stated<TopologyLevel> queryTopologyLevel(const std::string& sbdfA, const std::string& sbdfB);
  static Stated<std::vector<std::string>> queryNicDevices();

  /// Closes the nodes of every device but one, and opens them again: the driver refuses a reset or a
  /// change of the MPC mode while another device is open. No other device may be asked in between.
  void closeOtherDevices(const DevCuid& target);
  void reopenOtherDevices(const DevCuid& target);

 private:
  std::unordered_map<DevCuid, std::shared_ptr<DeviceObj>> devices_;
  std::shared_ptr<ModelManager> modelManager_;
  std::mutex mutex_;
  std::atomic<bool> initialized_ = false;
};

}  // namespace kelp
