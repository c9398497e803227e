#pragma once

#include <cstdint>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "command_access/command_access_base.h"
#include "command_access/lumo_access/lumo_access_device.h"

namespace tolk {

/// What the commands for the links between GPUs have in common: which devices and links they ask, and how a
/// device begins in their documents.
class SablinkCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

 protected:
  static constexpr const char* kNoDeviceAsked = "Error: please specify one GPU device by option -i or --id.";

  /// A device with its position in the library's order.
  struct Target {
    std::uint32_t index = 0;
    std::shared_ptr<LumoAccessDevice> device;  ///< null when it cannot be had
  };
  using Targets = std::vector<Target>;

  /// What a device says of one link: a text, or an object of texts by name.
  using LinkQuery = nlohmann::ordered_json (*)(const LumoAccessDevice& device, std::uint32_t link);

  /// Starts the library. All of these commands want to see a device before they look at their options.
  std::shared_ptr<Step> startWithDevices(std::uint32_t& count);

  /// The device that "-i" names first; a missing one is the failure.
  std::shared_ptr<Step> findTarget(Target& target) const;

  /// All devices in display order.
  std::shared_ptr<Step> listTargets(std::uint32_t count, Targets& targets) const;

  /// Asks for each link of the devices of "-i", or of all. A device without links of this kind ends it.
  std::shared_ptr<Step> reportLinks(LinkQuery query);

  std::uint32_t linkAsked() const { return numberOf("-l"); }

  /// The link of "-l" alone, whether the device has it or not, or all links.
  std::vector<std::uint32_t> linksToAsk(const LumoSablinkSpec& spec) const;

  static std::string deviceKey(std::uint32_t index) { return "GPU " + std::to_string(index); }

  /// The device's object in a document, with name and uuid.
  static nlohmann::ordered_json describe(const LumoAccessDevice& device);
};

}  // namespace tolk
