#include "entry_point.h"
#include "gpu.h"

using lumo::Gpu;

LumoReturn lumoGpuGetUtilization(LumoGpu* gpu, unsigned* utilization) {
  return lumo::getValue(gpu, utilization, &Gpu::getUtilization);
}

LumoReturn lumoGpuGetTemperature(LumoGpu* gpu, int* temperature) {
  return lumo::getValue(gpu, temperature, &Gpu::getTemperature);
}

LumoReturn lumoDeviceFreeGpu(LumoGpu* gpu) {
  return lumo::ignoreRelease(gpu, "lumoDeviceFreeGpu");
}
