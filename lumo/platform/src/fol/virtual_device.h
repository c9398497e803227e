#pragma once

#include "device_object.h"
#include "feature_makers.h"

namespace kelp {

/// A vGPU, seen from the host that carries it. What only the whole GPU knows is refused.
class VirtualDevice : public DeviceObj {
 public:
  VirtualDevice(const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager,
                FeatureRow features = feature::kVirtualDevice)
      : DeviceObj(cuid, std::move(modelManager), features) {}

  Stated<std::vector<DevCuid>> getVirtDevCuids() const override { return refusal(); }
  Stated<DevBrand> getBrand() const override { return refusal(); }
  Stated<unsigned int> getOvBiosVersion() const override { return refusal(); }
  Stated<unsigned int> getRtosVersion() const override { return refusal(); }
  Stated<unsigned long> getUsableCores() const override { return refusal(); }
  Stated<unsigned int> queryPciDeviceId() const override { return refusal(); }
  Stated<std::string> getDeviceName() const override { return refusal(); }
  Stated<std::string> getSerialNumber() const override { return refusal(); }
  Stated<std::string> getMiscPath() const override { return refusal(); }
  Stated<std::string> getCardPath() const override { return refusal(); }
  Stated<std::string> getRenderPath() const override { return refusal(); }
  Stated<std::string> getIonPath() const override { return refusal(); }
  Stated<unsigned int> queryPowerUsage() const override { return refusal(); }
  Stated<PcieInfo> queryPcieInfo() const override { return refusal(); }
  Stated<ProcessMemoryMap> queryProcessMemory() const override { return refusal(); }
  Stated<ProcessGpuUtilMap> queryProcessGpuUtil(unsigned long /*lastSeen*/) const override {
    return refusal();
  }
};

}  // namespace kelp
