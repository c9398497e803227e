#include "objects/disp_feat_obj.h"

#include <cstdint>

#include "core_model.h"
#include "kelp_log.h"

namespace kelp {
namespace {

/// Rates that displays are driven with, in hertz, the best one first.
constexpr float kCandidateRates[] = {60.0F, 30.0F};
/// The first family drives its largest mode, 7680 x 4320, at a rate that is no candidate.
constexpr unsigned int kWoldLargestVertical = 4320;
constexpr float kWoldLargestModeRate = 25.0F;
/// The number that the family after the last known one will have.
constexpr auto kNextFamily = static_cast<DevArch>(5);
constexpr std::uint32_t kHertzPerClockUnit = 100000;

}  // namespace

DispFeatObj::DispFeatObj(const std::shared_ptr<CoreModel>& coreModel) : FeatObj(coreModel) {
  interfaces_ = model().exec(QueryDisplayInterfaceSpecCmd());
}

Stated<unsigned int> DispFeatObj::getInterfaceCount() const {
  if (!interfaces_.ok()) {
    return interfaces_.state();
  }
  return static_cast<unsigned int>(interfaces_.value().size());
}

Stated<DispIntfSpec> DispFeatObj::getInterfaceSpec(std::size_t index) const {
  if (!interfaces_.ok()) {
    return interfaces_.state();
  }
  if (index >= interfaces_.value().size()) {
    return KelpReturn::kNotSupported;
  }
  return dispRaw2Spec(interfaces_.value()[index]);
}

Stated<DispIntfSpec> DispFeatObj::dispRaw2Spec(const DispInterfaceInfo& row) const {
  // A number that the driver does not have counts as 0 from here on.
  DispIntfSpec spec;
  spec.type = row.type;
  spec.maxHRes = row.hRes.value();
  spec.maxVRes = row.vRes.value();
  spec.maxPixelClock = row.pixelClock.value();
  const Stated<float> rate =
      estimateMaxRefreshRate(row.pixelClock.value(), row.hRes.value(), row.vRes.value());
  if (rate.ok()) {
    spec.maxRefreshRate = rate;
  } else {
    KELP_LOG(kError) << "dispRaw2Spec() Failed to estimate max refresh rate.";
  }
  return spec;
}

Stated<float> DispFeatObj::estimateMaxRefreshRate(unsigned int pixelClock, unsigned int horizontal,
                                                  unsigned int vertical) const {
  const DevArch arch = model().getCuid().arch;
  if (arch == DevArch::kUnknown || arch == kNextFamily) {
    KELP_LOG(kError) << "Unsupported arch!";
  }
  if (arch == DevArch::kWold && vertical == kWoldLargestVertical) {
    return kWoldLargestModeRate;
  }
  const std::uint64_t pxNum = std::uint64_t{vertical} * horizontal;
  if (pxNum == 0) {
    KELP_LOG(kError) << "estimateMaxRefreshRate() pxNum is 0 !";
    return KelpReturn::kFailure;
  }
  const std::uint32_t hertz = pixelClock * kHertzPerClockUnit;  // sic: wraps at 32 bits
  const auto naive = static_cast<float>(static_cast<double>(hertz) / static_cast<double>(pxNum));
  for (const float rate : kCandidateRates) {
    if (naive >= rate) {
      return rate;
    }
  }
  KELP_LOG(kError) << "estimateMaxRefreshRate() failed to estimate max refresh rate, naiveRefreshRate = !"
                   << naive;
  return KelpReturn::kFailure;
}

}  // namespace kelp
