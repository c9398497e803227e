#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "board_values.h"
#include "dev_cuid.h"
#include "dev_desc.h"
#include "features.h"
#include "gpu_values.h"
#include "kelp_return.h"
#include "memory_values.h"
#include "pcie_values.h"

namespace kelp {

class ModelManager;

/// One device: what never changes about it, kept since `init`, its features, and the questions that
/// belong to no feature.
///
/// Made by the device factories, owned by the device manager and shared with the library. After `init`
/// nothing is written any more, so every operation may run on several threads. Every operation answers
/// state 5 before `init` has succeeded, and state 6 where the kind of device has no such thing.
class DeviceObj {
 public:
  virtual ~DeviceObj() = default;

  DeviceObj(const DeviceObj&) = delete;
  DeviceObj& operator=(const DeviceObj&) = delete;

  /// Gets the core model, reads what is kept and makes the features. Does nothing after a success.
  Done init();

  const DevCuid& getCuid() const { return cuid_; }
  /// Empty before `init`.
  const DevDesc& getDesc() const { return desc_; }
  const Features& getFeatures() const { return features_; }

  /// The vGPUs that the host has made of this device, in no order.
  virtual Stated<std::vector<DevCuid>> getVirtDevCuids() const;
  /// The GPU that carries a vGPU.
  virtual Stated<DevCuid> getVirtParentCuid() const;
  /// Instances of an MPC parent, in ascending order of internal id.
  virtual Stated<std::vector<DevCuid>> getMpcInstCuids() const;
  virtual Stated<DevCuid> getMpcParentCuid() const;
  virtual Stated<DevBrand> getBrand() const;
  /// A version a.b.c is a * 10000 + b * 100 + c; state 1 when the board does not name the component.
  virtual Stated<unsigned int> getOvBiosVersion() const { return getFirmwareVersion("ov-bios"); }
  virtual Stated<unsigned int> getRtosVersion() const { return getFirmwareVersion("rtos"); }
  /// Mask of the GPU cores that are usable.
  virtual Stated<unsigned long> getUsableCores() const;
  virtual Stated<unsigned int> queryPciDeviceId() const;
  /// Model name: the driver's, else the one that goes with the PCI device id; state 7 for an unknown id.
  virtual Stated<std::string> getDeviceName() const;
  virtual Stated<std::string> getSerialNumber() const;
  // Nodes of the device, by their paths.
  virtual Stated<std::string> getMiscPath() const;
  virtual Stated<std::string> getCardPath() const;
  virtual Stated<std::string> getRenderPath() const;
  virtual Stated<std::string> getIonPath() const;
  virtual Stated<std::wstring> getWideName() const;
  virtual Stated<bool> getMpcCapable() const;
  virtual Stated<bool> getSablinkCapable() const;
  /// Milliwatts that the board draws.
  virtual Stated<unsigned int> queryPowerUsage() const;
  /// 0 (fastest) to 15; physical devices alone.
  virtual Stated<unsigned int> queryPerfState() const;
  virtual Stated<int> setPerfState(unsigned int state) const;
  /// Milliwatts; from the Tor1 family on.
  virtual Stated<unsigned int> queryPowerLimit(PowerLimitType type) const;
  virtual Stated<int> setPowerLimit(const SetPowerLimitParam& param) const;
  /// Resets the device. Every other device's nodes must be closed.
  virtual Stated<int> resetDevice() const;
  virtual Stated<int> resetDeviceEventMsgs() const;

  virtual Stated<PcieInfo> queryPcieInfo() const;
  /// Processes that hold memory of the device, by pid.
  virtual Stated<ProcessMemoryMap> queryProcessMemory() const;
  /// Shares of the processes that were active after a time of the monotonic clock, in nanoseconds, by pid.
  virtual Stated<ProcessGpuUtilMap> queryProcessGpuUtil(unsigned long lastSeen) const;

 protected:
  DeviceObj(const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager, FeatureRow features);

  bool isInitialized() const { return initialized_; }
  /// What a question that this kind of device has no answer to is answered with.
  KelpReturn refusal() const {
    return initialized_ ? KelpReturn::kNotSupported : KelpReturn::kNotInitialized;
  }
  ModelManager& modelManager() const { return *modelManager_; }
  const CoreModel& model() const { return *model_; }
  /// Model name that goes with a PCI device id.
  static Stated<std::string> getListedName(unsigned int deviceId);

 private:
  /// Runs a command of the core model.
  template <class Cmd>
  Stated<typename Cmd::Result> query(const Cmd& cmd) const;
  /// The same on a physical device; state 6 on any other.
  template <class Cmd>
  Stated<typename Cmd::Result> queryPhysical(const Cmd& cmd) const;
  /// A field of the description.
  template <class T>
  Stated<T> getKept(Stated<T> DevDesc::*field) const;
  Stated<unsigned int> getFirmwareVersion(const char* component) const;

  std::shared_ptr<ModelManager> modelManager_;
  std::shared_ptr<CoreModel> model_;
  Features features_;
  DevDesc desc_;
  Stated<FirmwareVersions> firmware_;
  Stated<DeviceInfoRom> infoRom_;
  std::mutex initMutex_;
  std::atomic<bool> initialized_ = false;
  const DevCuid cuid_;
  const FeatureRow featureRow_;
};

}  // namespace kelp
