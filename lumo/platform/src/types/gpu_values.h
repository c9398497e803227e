#pragma once

#include "kelp_return.h"

namespace kelp {

/// How busy the parts of a GPU are, in percent.
struct GpuStatus {
  Stated<float> utilization;
  Stated<float> engine0;      ///< graphics
  Stated<float> engine1;      ///< compute
  Stated<float> engine2;      ///< copy
  Stated<float> engine3;      ///< blit
  Stated<float> memoryBusy;   ///< memory controller
  Stated<float> coreMax;      ///< busiest core
  Stated<float> coreAverage;  ///< mean over the cores
};

struct QueryTemperParam {
  unsigned int sensorId = 0;
};

}  // namespace kelp
