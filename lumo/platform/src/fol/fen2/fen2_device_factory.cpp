#include "fen2/fen2_device_factory.h"

#include "feature_makers.h"
#include "fen2/fen2_gpu_feat_obj.h"
#include "guest_device.h"
#include "mpc_instance_device.h"
#include "mpc_parent_device.h"
#include "physical_device.h"
#include "virtual_device.h"

namespace kelp {
namespace {

using namespace feature;

constexpr FeatureMaker kPhysical[] = {
    disp,     fan,  gpu<Fen2GpuFeatObj>, memory, mpc, sablink, pcieWithCounters, pfm, topology, virt, vpu,
    affinity, event};
constexpr FeatureMaker kMpcParent[] = {
    disp, fan, gpu<Fen2GpuFeatObj>, memory, mpc, sablink, pcieWithCounters, pfm, topology, virt, affinity};
constexpr FeatureMaker kMpcInstance[] = {fan, gpu<Fen2GpuFeatObj>, memory, mpc, pcie, vpu, topology};

constexpr DeviceRow kDevices[] = {
    {DevType::kPhysical, makeDevice<PhysicalDevice>, kPhysical},
    {DevType::kMpcParent, makeDevice<MpcParentDevice>, kMpcParent},
    {DevType::kMpcInstance, makeDevice<MpcInstanceDevice>, kMpcInstance},
    {DevType::kMediated, makeDevice<VirtualDevice>, kVirtualDevice},
    {DevType::kGuest, makeDevice<GuestDevice>, kGuestDevice},
};

}  // namespace

Stated<std::shared_ptr<DeviceObj>> Fen2DeviceFactory::createDevice(
    const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager) {
  return createDeviceOf(DevArch::kFen2, kDevices, cuid, std::move(modelManager));
}

}  // namespace kelp
