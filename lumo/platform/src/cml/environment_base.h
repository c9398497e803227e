#pragma once

#include <cstdint>
#include <string>

#include "environment_values.h"
#include "kelp_return.h"

namespace kelp {

/// What the platform asks of the machine as a whole.
class EnvironmentBase {
 public:
  virtual ~EnvironmentBase() = default;

  virtual Stated<std::string> getDriverVersion() = 0;
  virtual Stated<DriverMode> getDriverMode() = 0;
  virtual Stated<std::string> getProcessName(std::uint32_t pid) = 0;
  virtual Stated<EnvironmentType> getEnvironmentType() = 0;
  virtual Stated<GpuEnvType> getGpuEnvironmentType() = 0;
};

}  // namespace kelp
