#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command_access/command_access_base.h"

namespace tolk {

class LumoAccessDevice;

/// `event -s`: the faults that the log daemon has stored, newest first. Each GPU is searched by a task of
/// its own; a GPU that was taken out is found by its uuid.
class EventSearchCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;

  /// A GPU to search, and what was found.
  struct Target {
    std::uint32_t index = 0;
    std::string uuid;
    std::shared_ptr<LumoAccessDevice> device;  ///< null for a GPU that is not there any more
    std::vector<std::string> messages;

    std::string key() const;
  };

 private:
  /// The devices that were asked for in ascending order, then the uuids that no device has. False when a
  /// device cannot be read.
  bool selectDevices(std::uint32_t count, std::vector<Target>& targets) const;
  bool listAttached(std::uint32_t count, std::vector<Target>& attached) const;

  /// Fills in the messages. False when the GPU cannot tell what it reports.
  bool search(Target& target) const;
  bool searchTargetDeviceEvents(Target& target) const;
  void searchTargetUuidEvents(Target& target) const;

  /// The type of "-s", if it is one of these.
  std::optional<unsigned long long> askedType(const std::vector<unsigned long long>& supported) const;
  std::uint32_t wantedCount() const;
};

}  // namespace tolk
