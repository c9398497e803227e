#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <unordered_map>

#include "lumo.h"

namespace lumo {

class Device;

/// Faults as they happen: waits on the event files of the devices that were registered.
///
/// Belongs to one thread at a time; the caller owns it through the library, and it keeps no device alive.
class Event {
 public:
  Event();
  ~Event();
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  /// Listens to a device from now on, or changes the types that are listened to. Code 4 for types that
  /// the device does not report, 7 when the driver shows no event file for it, 999 when that cannot be
  /// opened or waited on.
  LumoReturn registerDevEvent(const Device& device, unsigned long long eventTypes);

  /// Waits for one event of a registered device and type that happened since this object was made. Code 2
  /// when none came in time, 3 for a message of another version than this library knows.
  LumoReturn setEventWait(std::chrono::milliseconds timeout, LumoEventData* data);

 private:
  /// Takes one message of the descriptor. Code 2 for none, or one that is not asked for.
  LumoReturn eventWaitWapper(int fd, LumoEventData* data) const;  // sic
  LumoReturn openEventFile(const std::string& path, std::uint32_t index, unsigned long long eventTypes);

  std::chrono::milliseconds startTime_;  ///< since the epoch
  int poller_;                           ///< -1 when there is none
  std::unordered_map<std::string, std::string> fileOfNode_;
  std::unordered_map<int, std::uint32_t> indexOfFd_;
  std::unordered_map<std::uint32_t, unsigned long long> typesOfIndex_;
};

}  // namespace lumo
