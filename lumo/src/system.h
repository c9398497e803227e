#pragma once

#include <memory>
#include <string>

#include "lumo_def.h"

namespace kelp {
class DeviceManager;
}

namespace lumo {

/// What concerns the machine and not one device. Holds no lock and keeps nothing.
class System {
 public:
  explicit System(std::shared_ptr<kelp::DeviceManager> deviceManager)
      : deviceManager_(std::move(deviceManager)) {}
  virtual ~System() = default;

  virtual std::string getDriverVersion(LumoReturn* status) const;
  virtual std::string getProcessName(unsigned int pid, LumoReturn* status) const;

 private:
  std::shared_ptr<kelp::DeviceManager> deviceManager_;
};

}  // namespace lumo
