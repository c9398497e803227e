#pragma once

#include "environment_base.h"

namespace kelp::linux_ {

/// The machine that the process runs on, asked afresh on each call. One for the process, owned by the
/// model manager and shared with the enumerator. It holds no state and no lock; calls block for files,
/// and for the package manager of a driver that does not tell its version.
class Environment : public EnvironmentBase {
 public:
  /// Version of the driver's package. State 1 when neither the driver nor a package manager tells one.
  Stated<std::string> getDriverVersion() override;
  /// State 8 when the module's parameter cannot be read.
  Stated<DriverMode> getDriverMode() override;
  /// First argument of a process's command line, folder included, which is empty for a kernel thread.
  /// State 7 for a process that is gone, 15 for one that may not be read.
  Stated<std::string> getProcessName(std::uint32_t pid) override;
  Stated<EnvironmentType> getEnvironmentType() override;
  /// Looks at the node of GPU 0 alone; state 2 without it.
  Stated<GpuEnvType> getGpuEnvironmentType() override;

 private:
  static std::string readDriverVersionFromFile();
  static Stated<std::string> queryDriverVersionFromPackage();
};

}  // namespace kelp::linux_
