#pragma once

#include <memory>
#include <span>

namespace kelp {

class AffinityFeatObj;
class CoreModel;
class DispFeatObj;
class DispSettingFeatObj;
class EccFeatObj;
class EventFeatObj;
class FanFeatObj;
class GpuFeatObj;
class InternalFeatObj;
class MemoryFeatObj;
class MpcFeatObj;
class PcieFeatObj;
class PfmFeatObj;
class SablinkFeatObj;
class TopologyFeatObj;
class VirtualFeatObj;
class VpuFeatObj;

/// The feature objects of one device. A null one is a feature that the device lacks.
struct Features {
  std::shared_ptr<InternalFeatObj> internal;
  std::shared_ptr<DispSettingFeatObj> dispSetting;
  std::shared_ptr<EventFeatObj> event;
  std::shared_ptr<EccFeatObj> ecc;
  std::shared_ptr<AffinityFeatObj> affinity;
  std::shared_ptr<VpuFeatObj> vpu;
  std::shared_ptr<VirtualFeatObj> virt;
  std::shared_ptr<TopologyFeatObj> topology;
  std::shared_ptr<PfmFeatObj> pfm;
  std::shared_ptr<PcieFeatObj> pcie;
  std::shared_ptr<SablinkFeatObj> sablink;
  std::shared_ptr<MpcFeatObj> mpc;
  std::shared_ptr<MemoryFeatObj> memory;
  std::shared_ptr<GpuFeatObj> gpu;
  std::shared_ptr<FanFeatObj> fan;
  std::shared_ptr<DispFeatObj> disp;
};

/// Makes one feature object and puts it into its place.
using FeatureMaker = void (*)(Features& features, const std::shared_ptr<CoreModel>& model);

/// The features of a kind of device, in the order in which they are made: some ask the driver then.
using FeatureRow = std::span<const FeatureMaker>;

}  // namespace kelp
