#pragma once

#include <cstdint>

#include "lumo.h"

namespace tolk {

/// The library as a whole. Owns the handle that its start gave and gives it back at its end, which ends
/// every device adaptor too. Without a handle, calls fail with the library's own status for it.
class LumoAccessLibrary {
 public:
  LumoAccessLibrary();
  ~LumoAccessLibrary();
  LumoAccessLibrary(const LumoAccessLibrary&) = delete;
  LumoAccessLibrary& operator=(const LumoAccessLibrary&) = delete;

  void setLumoLibrary(LumoLibrary* library);
  LumoLibrary* getLumoLibrary() const { return library_; }

  /// Number of devices, MPC instances included.
  LumoReturn getAccessDeviceNum(std::uint32_t& count) const;

 private:
  LumoLibrary* library_ = nullptr;
};

}  // namespace tolk
