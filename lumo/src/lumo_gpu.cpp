#include "entry_point.h"
#include "gpu.h"

using lumo::Gpu;
using lumo::with;

namespace {

constexpr unsigned kEngineCount = 4;
constexpr unsigned kCoreUtilizationKinds = 2;

}  // namespace

LumoReturn lumoGpuGetUtilization(LumoGpu* gpu, unsigned* utilization) {
  return lumo::getValue(gpu, utilization, &Gpu::getUtilization);
}

LumoReturn lumoGpuGetGuestUtilization(LumoGpu* gpu, unsigned* utilization) {
  return lumo::getValue(gpu, utilization, &Gpu::getGuestUtilization);
}

LumoReturn lumoGpuGetEngineUtilization(LumoGpu* gpu, unsigned engine, unsigned* utilization) {
  if (engine >= kEngineCount) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getValue(gpu, utilization, with(&Gpu::getEngineUtilization, engine));
}

LumoReturn lumoGpuGetCoreUtilization(LumoGpu* gpu, unsigned kind, unsigned* utilization) {
  if (kind >= kCoreUtilizationKinds) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getValue(gpu, utilization, with(&Gpu::getCoreUtilization, kind));
}

LumoReturn lumoGpuGetMemoryControllerUtilization(LumoGpu* gpu, unsigned* utilization) {
  return lumo::getValue(gpu, utilization, &Gpu::getMemoryControllerUtilization);
}

LumoReturn lumoGpuGetTemperature(LumoGpu* gpu, int* temperature) {
  return lumo::getValue(gpu, temperature, &Gpu::getTemperature);
}

LumoReturn lumoGpuGetSensorTemperature(LumoGpu* gpu, unsigned sensor, int* temperature) {
  return lumo::getValue(gpu, temperature, with(&Gpu::getSensorTemperature, sensor));
}

LumoReturn lumoGpuGetMaxTemperature(LumoGpu* gpu, int* temperature) {
  return lumo::getValue(gpu, temperature, &Gpu::getMaxTemperature);
}

LumoReturn lumoGpuGetClock(LumoGpu* gpu, unsigned* megahertz) {
  return lumo::getValue(gpu, megahertz, &Gpu::getClock);
}

LumoReturn lumoGpuGetMaxClock(LumoGpu* gpu, unsigned* megahertz) {
  return lumo::getValue(gpu, megahertz, &Gpu::getMaxClock);
}

LumoReturn lumoGpuCountCoreMpx(LumoGpu* gpu, unsigned long long mask, unsigned* count) {
  return lumo::getValue(gpu, count, with(&Gpu::countCoreMpx, mask));
}

LumoReturn lumoGpuGetThermalSlowdownStatistics(LumoGpu* gpu, unsigned* count, unsigned* totalTimeMs) {
  return lumo::getPair(gpu, count, totalTimeMs, [](const Gpu& object, LumoReturn* status) {
    const std::uint64_t both = object.getThermalSlowdownStatistics(status);
    return std::pair(static_cast<unsigned>(both), static_cast<unsigned>(both >> 32));
  });
}

LumoReturn lumoGpuReset(LumoGpu* gpu) {
  return lumo::runOperation(gpu, &Gpu::reset);
}

LumoReturn lumoGpuResetHwErrorCounts(LumoGpu* gpu) {
  return lumo::runOperation(gpu, &Gpu::resetHwErrorCounts);
}

LumoReturn lumoDeviceFreeGpu(LumoGpu* gpu) {
  return lumo::ignoreRelease(gpu, "lumoDeviceFreeGpu");
}
