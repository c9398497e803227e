#pragma once

#include "features.h"
#include "fen2/fen2_pcie_feat_obj.h"
#include "objects/affinity_feat_obj.h"
#include "objects/disp_feat_obj.h"
#include "objects/disp_setting_feat_obj.h"
#include "objects/ecc_feat_obj.h"
#include "objects/event_feat_obj.h"
#include "objects/fan_feat_obj.h"
#include "objects/gpu_feat_obj.h"
#include "objects/internal_feat_obj.h"
#include "objects/memory_feat_obj.h"
#include "objects/mpc_feat_obj.h"
#include "objects/pcie_feat_obj.h"
#include "objects/pfm_feat_obj.h"
#include "objects/sablink_feat_obj.h"
#include "objects/topology_feat_obj.h"
#include "objects/virtual_feat_obj.h"
#include "objects/vpu_feat_obj.h"

/// The words in which the tables of the chip families say which device has which feature. A further
/// feature is a member of Features, a maker here and its name in the rows that have it.
namespace kelp::feature {

template <class Feature, auto place>
void make(Features& features, const std::shared_ptr<CoreModel>& model) {
  features.*place = std::make_shared<Feature>(model);
}

inline constexpr FeatureMaker affinity = &make<AffinityFeatObj, &Features::affinity>;
inline constexpr FeatureMaker disp = &make<DispFeatObj, &Features::disp>;
inline constexpr FeatureMaker dispSetting = &make<DispSettingFeatObj, &Features::dispSetting>;
inline constexpr FeatureMaker ecc = &make<EccFeatObj, &Features::ecc>;
inline constexpr FeatureMaker event = &make<EventFeatObj, &Features::event>;
inline constexpr FeatureMaker fan = &make<FanFeatObj, &Features::fan>;
template <class Feature>
constexpr FeatureMaker gpu = &make<Feature, &Features::gpu>;
template <class Feature>
constexpr FeatureMaker internal = &make<Feature, &Features::internal>;
inline constexpr FeatureMaker memory = &make<MemoryFeatObj, &Features::memory>;
inline constexpr FeatureMaker mpc = &make<MpcFeatObj, &Features::mpc>;
inline constexpr FeatureMaker pcie = &make<PcieFeatObj, &Features::pcie>;
inline constexpr FeatureMaker pcieWithCounters = &make<Fen2PcieFeatObj, &Features::pcie>;
inline constexpr FeatureMaker pfm = &make<PfmFeatObj, &Features::pfm>;
inline constexpr FeatureMaker sablink = &make<SablinkFeatObj, &Features::sablink>;
inline constexpr FeatureMaker topology = &make<TopologyFeatObj, &Features::topology>;
inline constexpr FeatureMaker virt = &make<VirtualFeatObj, &Features::virt>;
inline constexpr FeatureMaker vpu = &make<VpuFeatObj, &Features::vpu>;

// What a device of each kind has on a family that says nothing of its own.
inline constexpr FeatureMaker kPhysicalDevice[] = {disp, fan, gpu<GpuFeatObj>, memory, pcie, topology,
                                                   virt, vpu, affinity,        event};
inline constexpr FeatureMaker kMpcParentDevice[] = {disp,     fan,  gpu<GpuFeatObj>, memory, mpc, pcie,
                                                    topology, virt, affinity};
inline constexpr FeatureMaker kMpcInstanceDevice[] = {fan, gpu<GpuFeatObj>, memory, mpc, pcie, vpu, topology};
inline constexpr FeatureMaker kVirtualDevice[] = {virt, topology, vpu};
inline constexpr FeatureMaker kGuestDevice[] = {gpu<GpuFeatObj>, memory, pcie, topology, vpu, dispSetting};

}  // namespace kelp::feature
