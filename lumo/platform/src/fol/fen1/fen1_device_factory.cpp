#include "fen1/fen1_device_factory.h"

#include "feature_makers.h"
#include "fen1/fen1_gpu_feat_obj.h"
#include "guest_device.h"
#include "mpc_instance_device.h"
#include "mpc_parent_device.h"
#include "physical_device.h"

namespace kelp {
namespace {

using namespace feature;

constexpr FeatureMaker kPhysical[] = {gpu<Fen1GpuFeatObj>, memory, mpc, vpu};
constexpr FeatureMaker kMpcParent[] = {gpu<Fen1GpuFeatObj>, memory, mpc};
constexpr FeatureMaker kMpcInstance[] = {gpu<Fen1GpuFeatObj>, memory, mpc, vpu};

constexpr DeviceRow kDevices[] = {
    {DevType::kPhysical, makeDevice<PhysicalDevice>, kPhysical},
    {DevType::kMpcParent, makeDevice<MpcParentDevice>, kMpcParent},
    {DevType::kMpcInstance, makeDevice<MpcInstanceDevice>, kMpcInstance},
    {DevType::kGuest, makeDevice<GuestDevice>, kGuestDevice},
};

}  // namespace

Stated<std::shared_ptr<DeviceObj>> Fen1DeviceFactory::createDevice(
    const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager) {
  return createDeviceOf(DevArch::kFen1, kDevices, cuid, std::move(modelManager));
}

}  // namespace kelp
