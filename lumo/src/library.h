#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "dev_cuid.h"
#include "lumo_def.h"
#include "owned_objects.h"

namespace kelp {
class DeviceManager;
}

namespace lumo {

class Device;
class System;

/// The machine's devices, found once when the library is started.
///
/// One per process, shared by all library handles; the last one to go ends it. The state mutex guards
/// everything here and is never held while a device works; initialisation holds it throughout.
class Library {
 public:
  Library() = default;
  virtual ~Library();

  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  /// Finds the devices. Does nothing after a success. A device that cannot be made is left out, with a
  /// warning; false when the devices cannot be listed at all.
  bool initialize(LumoReturn* status);

  static std::string getVersion();
  std::size_t countDevice() const;
  std::shared_ptr<System> getSystem() const;
  // Null when there is no such device.
  std::shared_ptr<Device> getDeviceByIndex(unsigned int index) const;
  std::shared_ptr<Device> getDeviceByUuid(const std::string& uuid) const;
  /// `sbdf` is packed.
  std::shared_ptr<Device> getDeviceBySbdf(std::uint64_t sbdf) const;
  /// By the driver's own number, which is also how it names one device to another.
  std::shared_ptr<Device> getDeviceByIntId(std::uint64_t intId) const;
  /// All devices, in their order.
  std::vector<std::shared_ptr<Device>> getDevices() const;

  bool isInitialized() const { return initialized_; }
  /// Forgets all devices; what the caller still holds of them is dead then. `initialize` finds them anew.
  void shutDown();

  /// What callers make and the library owns; all of it goes when the library shuts down.
  OwnedObjects<LumoPfmSample>& getSamples() { return samples_; }
  OwnedObjects<LumoEvent>& getEvents() { return events_; }

 private:
  std::shared_ptr<Device> createDevice(const kelp::DevCuid& cuid, LumoReturn* status,
                                       const std::shared_ptr<Device>& mpcParent);
  bool createMpcInstances(const std::shared_ptr<Device>& parent, LumoReturn* status);
  std::string makeKey(const std::string& uuid, const std::string& sbdf, std::uint64_t intId) const;
  void sortDevices();

  mutable std::mutex mutex_;
  std::atomic<bool> initialized_ = false;
  std::shared_ptr<kelp::DeviceManager> deviceManager_;
  std::unordered_map<std::string, std::shared_ptr<Device>> devices_;  ///< by key, mostly the uuid
  std::unordered_map<std::uint64_t, std::string> keyOfSbdf_;
  std::unordered_map<std::uint64_t, std::string> keyOfIntId_;
  std::vector<std::string> order_;  ///< keys; the position is the device index
  std::shared_ptr<System> system_;
  OwnedObjects<LumoPfmSample> samples_;
  OwnedObjects<LumoEvent> events_;
};

}  // namespace lumo
