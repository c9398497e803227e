#include "gpu.h"

#include <bit>

#include "kelp_log.h"
#include "objects/gpu_feat_obj.h"
#include "objects/virtual_feat_obj.h"
#include "whole_number.h"

namespace lumo {

using kelp::Features;
using kelp::GpuFeatObj;

unsigned int Gpu::getUtilization(LumoReturn* status) const {
  kelp::GpuStatus gpu = ask(&Features::gpu, status, &GpuFeatObj::queryUtilization);
  if (*status != LUMO_RETURN_SUCCESS) {
    return 0;
  }
  return truncated<unsigned int>(consumeMv(std::move(gpu.utilization), status));
}

unsigned int Gpu::getGuestUtilization(LumoReturn* status) const {
  if (getType() != kelp::DevType::kMediated) {
    return ask(&Features::gpu, status, &GpuFeatObj::queryGuestUtilization);
  }
  const auto feature = enterAny(&Features::virt, status);
  return feature == nullptr ? 0 : consumeMv(feature->queryGuestUtilization(), status);
}

unsigned int Gpu::getEngineUtilization(unsigned int engine, LumoReturn* status) const {
  return truncated<unsigned int>(ask(&Features::gpu, status, [engine](const GpuFeatObj& feature) {
    return feature.queryEngineUtilization(engine);
  }));
}

int Gpu::getTemperature(LumoReturn* status) const {
  return truncated<int>(ask(&Features::gpu, status, &GpuFeatObj::queryTemperature));
}

int Gpu::getSensorTemperature(unsigned int sensor, LumoReturn* status) const {
  return truncated<int>(ask(&Features::gpu, status, [sensor](const GpuFeatObj& feature) {
    return feature.querySensorTemperature(sensor);
  }));
}

unsigned int Gpu::getClock(LumoReturn* status) const {
  return megahertz(ask(&Features::gpu, status, &GpuFeatObj::queryClock));
}

unsigned int Gpu::getMaxClock(LumoReturn* status) const {
  if (!hasMaxClocks()) {
    *status = LUMO_RETURN_NOT_SUPPORTED;
    return 0;
  }
  return megahertz(ask(&Features::gpu, status, &GpuFeatObj::queryMaxClock));
}

int Gpu::getMaxTemperature(LumoReturn* status) const {
  if (getType() != kelp::DevType::kPhysical && getType() != kelp::DevType::kMpcParent) {
    *status = LUMO_RETURN_NOT_SUPPORTED;
    return 0;
  }
  return truncated<int>(ask(&Features::gpu, status, &GpuFeatObj::queryMaxTemperature));
}

unsigned int Gpu::getMemoryControllerUtilization(LumoReturn* status) const {
  return truncated<unsigned int>(ask(&Features::gpu, status, &GpuFeatObj::queryMemoryBusy));
}

void Gpu::reset(LumoReturn* status) const {
  ask(&Features::gpu, status, &GpuFeatObj::reset);
}

unsigned int Gpu::getCoreUtilization(unsigned int kind, LumoReturn* status) const {
  const auto question = kind == 0 ? &GpuFeatObj::queryCoreAverage : &GpuFeatObj::queryCoreMax;
  return truncated<unsigned int>(ask(&Features::gpu, status, question));
}

bool Gpu::isCoreMask(std::uint64_t mask, LumoReturn* status) const {
  const std::shared_ptr<Device> owner = lockOwner(status);
  if (owner == nullptr) {
    return false;
  }
  const kelp::Stated<unsigned int>& count = owner->getDesc().kmdValue32;
  if (!count.ok()) {
    KELP_LOG(kError) << "Mv error, state = " << count.state();
    *status = statusOf(count.state());
    return false;
  }
  const int highest = static_cast<int>(std::bit_width(mask)) - 1;
  if (highest < 0 || static_cast<unsigned int>(highest) >= count.value()) {
    *status = LUMO_RETURN_INVALID_ARGUMENT;
    return false;
  }
  return true;
}

unsigned int Gpu::countCoreMpx(std::uint64_t mask, LumoReturn* status) const {
  const auto feature = enter(&Features::gpu, status);
  if (feature == nullptr || !isCoreMask(mask, status)) {
    return 0;
  }
  return consumeMv(feature->queryUnitsOfCores(mask), status);
}

std::uint64_t Gpu::getThermalSlowdownStatistics(LumoReturn* status) const {
  const kelp::ThermalSlowdownStatistics statistics =
      ask(&Features::gpu, status, &GpuFeatObj::queryThermalSlowdown);
  return std::uint64_t{statistics.totalTime} << 32 | statistics.count;
}

void Gpu::resetHwErrorCounts(LumoReturn* status) const {
  if (getType() == kelp::DevType::kPhysical) {
    ask(&Features::gpu, status, &GpuFeatObj::resetHwErrorCounts);
    return;
  }
  *status = LUMO_RETURN_NOT_SUPPORTED;
  if (getType() != kelp::DevType::kMediated) {
    KELP_LOG(kError) << "current device type " << getType() << " not support reset hw error counts";
  }
}

}  // namespace lumo
