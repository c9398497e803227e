#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "board_values.h"
#include "dev_cuid.h"
#include "dev_desc.h"
#include "features.h"
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

  /// Instances of an MPC parent, in ascending order of internal id.
  virtual Stated<std::vector<DevCuid>> getMpcInstCuids() const;
  virtual Stated<DevCuid> getMpcParentCuid() const;
  virtual Stated<DevBrand> getBrand() const;
  /// A version a.b.c is a * 10000 + b * 100 + c; state 1 when the board does not name the component.
  virtual Stated<unsigned int> getOvBiosVersion() const { return getFirmwareVersion("ov-bios"); }
  virtual Stated<unsigned int> getRtosVersion() const { return getFirmwareVersion("rtos"); }
  virtual Stated<unsigned int> queryPciDeviceId() const;
  /// Model name: the driver's, else the one that goes with the PCI device id; state 7 for an unknown id.
  virtual Stated<std::string> getDeviceName() const;
  virtual Stated<std::string> getSerialNumber() const;
  virtual Stated<bool> getMpcCapable() const;
  virtual Stated<bool> getSablinkCapable() const;
  /// 0 (fastest) to 15; physical devices alone.
  virtual Stated<unsigned int> queryPerfState() const;

  Stated<PcieInfo> queryPcieInfo() const;
  /// Processes that hold memory of the device, by pid.
  Stated<std::map<std::uint32_t, ProcessMemoryUsage>> queryProcessMemory() const;

 protected:
  DeviceObj(const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager, FeatureRow features);

  bool isInitialized() const { return initialized_; }
  ModelManager& modelManager() const { return *modelManager_; }
  const CoreModel& model() const { return *model_; }
  /// Model name that goes with a PCI device id.
  static Stated<std::string> getListedName(unsigned int deviceId);

 private:
  /// Runs a command of the core model.
  template <class Cmd>
  Stated<typename Cmd::Result> query(const Cmd& cmd) const;
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
