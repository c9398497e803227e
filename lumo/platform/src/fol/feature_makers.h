#pragma once

#include "features.h"
#include "objects/ecc_feat_obj.h"
#include "objects/gpu_feat_obj.h"
#include "objects/memory_feat_obj.h"
#include "objects/mpc_feat_obj.h"
#include "objects/vpu_feat_obj.h"

/// The words in which the tables of the chip families say which device has which feature. A further
/// feature is a member of Features, a maker here and its name in the rows that have it.
namespace kelp::feature {

template <class Feature, auto place>
void make(Features& features, const std::shared_ptr<CoreModel>& model) {
  features.*place = std::make_shared<Feature>(model);
}

inline constexpr FeatureMaker ecc = &make<EccFeatObj, &Features::ecc>;
template <class Feature>
constexpr FeatureMaker gpu = &make<Feature, &Features::gpu>;
inline constexpr FeatureMaker memory = &make<MemoryFeatObj, &Features::memory>;
inline constexpr FeatureMaker mpc = &make<MpcFeatObj, &Features::mpc>;
inline constexpr FeatureMaker vpu = &make<VpuFeatObj, &Features::vpu>;

/// What a guest sees is the same on every family that has guests.
inline constexpr FeatureMaker kGuestDevice[] = {gpu<GpuFeatObj>, memory, vpu};

}  // namespace kelp::feature
