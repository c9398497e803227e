#include "memory.h"

#include "objects/ecc_feat_obj.h"
#include "objects/memory_feat_obj.h"

namespace lumo {

unsigned long Memory::getTotal(LumoReturn* status) const {
  const auto feature = enter(&kelp::Features::memory, status);
  return feature == nullptr ? 0 : consumeMv(feature->queryTotal(), status);
}

unsigned long Memory::getUsed(LumoReturn* status) const {
  const auto feature = enter(&kelp::Features::memory, status);
  return feature == nullptr ? 0 : consumeMv(feature->queryUsed(), status);
}

kelp::EccModeInfo Memory::getEccMode(LumoReturn* status) const {
  const auto feature = enter(&kelp::Features::ecc, status);
  return feature == nullptr ? kelp::EccModeInfo{} : consumeMv(feature->queryEccMode(), status);
}

}  // namespace lumo
