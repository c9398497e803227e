#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "command_access/lumo_access/lumo_access_device.h"
#include "command_access/lumo_access/lumo_access_library.h"
#include "command_access/lumo_access/lumo_access_system.h"

namespace tolk {

/// The front end's road to the library: starts it, and hands out adaptors whose calls are all timed.
/// A command makes its own factory for each run; the library ends with the factory.
class LumoAccessFactory {
 public:
  LumoAccessFactory();

  /// Starts the library. 0, or 1 when the driver is not loaded, or 999 for any other failure.
  LumoReturn initializeLumo();

  const std::shared_ptr<LumoAccessLibrary>& getAccessLibrary() const { return library_; }
  const std::shared_ptr<LumoAccessSystem>& getAccessSystem() const { return system_; }

  /// The adaptor of the device at a position of the library's order; null when there is none.
  std::shared_ptr<LumoAccessDevice> getAccessDeviceById(std::uint32_t id) const;

  /// The same by the text of the library's uuid.
  std::shared_ptr<LumoAccessDevice> getAccessDeviceByUuid(const std::string& uuid) const;

  /// Lets the library's log lines through to the front end's log. The library need not run for it.
  static LumoReturn configureLog();

 private:
  std::shared_ptr<LumoAccessLibrary> library_;
  std::shared_ptr<LumoAccessSystem> system_;  ///< goes before the library
};

/// Writes a line of the library to the front end's log.
void logCallBack(const char* message, unsigned length);

}  // namespace tolk
