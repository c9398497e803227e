#include "wold/wold_device_factory.h"

#include "feature_makers.h"
#include "physical_device.h"
#include "wold/wold_gpu_feat_obj.h"

namespace kelp {
namespace {

using namespace feature;

constexpr FeatureMaker kPhysical[] = {gpu<WoldGpuFeatObj>, memory, vpu};

constexpr DeviceRow kDevices[] = {
    {DevType::kPhysical, makeDevice<PhysicalDevice>, kPhysical},
};

}  // namespace

Stated<std::shared_ptr<DeviceObj>> WoldDeviceFactory::createDevice(
    const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager) {
  return createDeviceOf(DevArch::kWold, kDevices, cuid, std::move(modelManager));
}

}  // namespace kelp
