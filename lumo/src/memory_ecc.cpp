#include "memory.h"
#include "objects/ecc_feat_obj.h"

// Error correction, which the memory asks of a feature of its own.

namespace lumo {

using kelp::EccFeatObj;
using kelp::Features;

void Memory::setEccMode(kelp::EccMode mode, LumoReturn* status) const {
  const auto feature = enter(&Features::ecc, status);
  const std::shared_ptr<Device> owner = feature == nullptr ? nullptr : lockOwner(status);
  if (owner == nullptr) {
    return;
  }
  const auto setAlone = [&] {
    const OtherDevicesClosed closed = owner->closeOtherDevices();
    return feature->setEccMode(mode);
  };
  consumeMv(setAlone(), status);
}

kelp::EccModeInfo Memory::getEccMode(LumoReturn* status) const {
  return ask(&Features::ecc, status, &EccFeatObj::queryEccMode);
}

kelp::EccPageRetirementCount Memory::getEccRetiredPagesCount(LumoReturn* status) const {
  return ask(&Features::ecc, status, &EccFeatObj::queryRetiredPagesCount);
}

std::vector<LumoRetiredPage> Memory::getEccRetiredPagesInfo(unsigned int cause, unsigned int capacity,
                                                            LumoReturn* status) const {
  const auto feature = enter(&Features::ecc, status);
  if (feature == nullptr) {
    return {};
  }
  const kelp::EccPageRetirementCount counts = consumeMv(feature->queryRetiredPagesCount(), status);
  const unsigned int count = cause == LUMO_RETIREMENT_SINGLE_BIT ? counts.singleBit : counts.doubleBit;
  if (*status == LUMO_RETURN_SUCCESS && count > capacity) {
    *status = LUMO_RETURN_INSUFFICIENT_SIZE;
  }
  std::vector<LumoRetiredPage> pages;
  for (unsigned int i = 0; i < count && *status == LUMO_RETURN_SUCCESS; ++i) {
    const kelp::EccPageRetirementInfo page =
        consumeMv(feature->queryRetiredPage({.cause = cause, .index = i}), status);
    pages.push_back({.address = page.address,
                     .timestamp = page.timestamp,
                     .cause = page.cause,
                     .reserved = 0,
                     .location = page.location,
                     .errorCount = page.errorCount,
                     .reserved2 = {}});
  }
  return pages;
}

bool Memory::getEccRetiredPagesPendingStatus(LumoReturn* status) const {
  return ask(&Features::ecc, status, [](const EccFeatObj& feature) {
           return feature.queryPendingPage({.index = 0});
         }).count > 0;
}

unsigned long long Memory::getEccErrors(const kelp::QueryEccErrorsParam& which, LumoReturn* status) const {
  return ask(&Features::ecc, status,
             [&which](const EccFeatObj& feature) { return feature.queryErrors(which); });
}

void Memory::clearEccErrors(kelp::EccCounterType type, LumoReturn* status) const {
  ask(&Features::ecc, status, [type](const EccFeatObj& feature) { return feature.clearErrors(type); });
}

}  // namespace lumo
