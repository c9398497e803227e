#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "command_access/command_access_base.h"
#include "command_access/lumo_access/lumo_access_device.h"

namespace tolk {

/// The command `topo`: how GPUs and network adapters are connected. Its forms are a matrix with adapters
/// or without, a matrix of peer-to-peer access, the GPUs near to one, and the path between two. A
/// connection that cannot be told ends it, since a matrix with a hole would be taken for the whole.
///
/// Only whole GPUs take part; vGPUs and MPC instances sit where the GPU does that carries them.
class TopoCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;

 private:
  using Json = nlohmann::ordered_json;

  struct Form;
  struct Node;
  struct Gpu {
    std::uint32_t index;  ///< the library's
    std::shared_ptr<LumoAccessDevice> device;
  };

  /// Null, or the step that reports the failure.
  std::shared_ptr<Step> recordGpus();

  // The forms: each returns what the command returns.

  template <bool withNics>
  std::shared_ptr<Step> showMatrix();
  std::shared_ptr<Step> showP2pMatrix();
  std::shared_ptr<Step> showNearestGpus();
  std::shared_ptr<Step> showGpuPath();

  LumoReturn queryTopo(Json& document, bool withNics) const;
  LumoReturn queryP2pStatus(Json& document, std::uint32_t mode) const;

  /// These two print.
  LumoReturn queryNearestGpus(std::uint32_t index, std::uint32_t level) const;
  LumoReturn queryGpuPath(std::uint32_t a, std::uint32_t b) const;

  /// Appends the adapters and adds their names to the document.
  LumoReturn addAdapters(std::vector<Node>& nodes, Json& legend) const;
  LumoReturn queryConnection(const Node& a, const Node& b, std::string& text) const;

  /// Adapters of the one make that is known, by the names of their drivers; others are left out.
  static void queryMellanoxName(const std::vector<std::string>& sbdfs,
                                std::map<std::string, std::string>& names);

  /// The index that the text spells, if it is one of the library's.
  std::optional<std::uint32_t> toIndex(const std::string& text) const;

  static const Form kForms[];

  std::uint32_t count_ = 0;  ///< of all devices
  std::vector<Gpu> gpus_;    ///< those that take part, in ascending order
};

}  // namespace tolk
