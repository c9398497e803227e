#pragma once

#include <memory>
#include <span>

namespace kelp {

class CoreModel;
class EccFeatObj;
class GpuFeatObj;
class MemoryFeatObj;
class MpcFeatObj;
class VpuFeatObj;

/// The feature objects of one device. A null one is a feature that the device lacks.
struct Features {
  std::shared_ptr<EccFeatObj> ecc;
  std::shared_ptr<VpuFeatObj> vpu;
  std::shared_ptr<MpcFeatObj> mpc;
  std::shared_ptr<MemoryFeatObj> memory;
  std::shared_ptr<GpuFeatObj> gpu;
};

/// Makes one feature object and puts it into its place.
using FeatureMaker = void (*)(Features& features, const std::shared_ptr<CoreModel>& model);

/// The features of a kind of device, in the order in which they are made: some ask the driver then.
using FeatureRow = std::span<const FeatureMaker>;

}  // namespace kelp
