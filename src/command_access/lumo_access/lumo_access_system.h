#pragma once

#include <cstdint>
#include <string>

#include "lumo.h"

namespace tolk {

/// What concerns the machine and no single device. Holds the library's system handle and hands it back
/// at its end. A method that fails leaves its output as it was.
class LumoAccessSystem {
 public:
  LumoAccessSystem();
  ~LumoAccessSystem();
  LumoAccessSystem(const LumoAccessSystem&) = delete;
  LumoAccessSystem& operator=(const LumoAccessSystem&) = delete;

  void setLumoSystem(LumoSystem* system);

  LumoReturn getDriverVersion(std::string& version) const;

  /// First word of a process's command line; empty for a process without one, such as a zombie.
  LumoReturn getProcessName(std::uint32_t pid, std::string& name) const;

 private:
  LumoSystem* system_ = nullptr;
};

}  // namespace tolk
