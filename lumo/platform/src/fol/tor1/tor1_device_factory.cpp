#include "tor1/tor1_device_factory.h"

#include "feature_makers.h"
#include "mpc_instance_device.h"
#include "mpc_parent_device.h"
#include "physical_device.h"
#include "tor1/tor1_gpu_feat_obj.h"
#include "tor1/tor1_internal_feat_obj.h"

namespace kelp {
namespace {

using namespace feature;

// The GPU with its memory comes after all else.
constexpr FeatureMaker kPhysical[] = {disp,
                                      fan,
                                      sablink,
                                      pcieWithCounters,
                                      pfm,
                                      topology,
                                      virt,
                                      vpu,
                                      affinity,
                                      event,
                                      ecc,
                                      memory,
                                      gpu<Tor1GpuFeatObj>,
                                      internal<Tor1InternalFeatObj>};
// The parts of a divided GPU of this family show the partition alone.
constexpr FeatureMaker kMpcParent[] = {mpc, affinity};
constexpr FeatureMaker kMpcInstance[] = {mpc};

constexpr DeviceRow kDevices[] = {
    {DevType::kPhysical, makeDevice<PhysicalDevice>, kPhysical},
    {DevType::kMpcParent, makeDevice<MpcParentDevice>, kMpcParent},
    {DevType::kMpcInstance, makeDevice<MpcInstanceDevice>, kMpcInstance},
};

}  // namespace

Stated<std::shared_ptr<DeviceObj>> Tor1DeviceFactory::createDevice(
    const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager) {
  return createDeviceOf(DevArch::kTor1, kDevices, cuid, std::move(modelManager));
}

}  // namespace kelp
