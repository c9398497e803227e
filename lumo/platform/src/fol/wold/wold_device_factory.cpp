#include "wold/wold_device_factory.h"

#include "feature_makers.h"
#include "physical_device.h"
#include "virtual_device.h"
#include "wold/wold_gpu_feat_obj.h"

namespace kelp {
namespace {

using namespace feature;

constexpr FeatureMaker kPhysical[] = {disp,     fan,  gpu<WoldGpuFeatObj>, memory, pcie, topology, virt, vpu,
                                      affinity, event};

constexpr DeviceRow kDevices[] = {
    {DevType::kPhysical, makeDevice<PhysicalDevice>, kPhysical},
    {DevType::kMediated, makeDevice<VirtualDevice>, kVirtualDevice},
};

}  // namespace

Stated<std::shared_ptr<DeviceObj>> WoldDeviceFactory::createDevice(
    const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager) {
  return createDeviceOf(DevArch::kWold, kDevices, cuid, std::move(modelManager));
}

}  // namespace kelp
