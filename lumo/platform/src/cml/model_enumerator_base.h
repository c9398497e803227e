#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "dev_cuid.h"
#include "kelp_return.h"

namespace kelp {

using DevCuidSet = std::unordered_set<DevCuid>;

/// Finds devices. The base finds none and says that it cannot.
class ModelEnumeratorBase {
 public:
  virtual ~ModelEnumeratorBase() = default;

  /// Every GPU of the machine; MPC instances and mediated devices are asked for by their parent.
  virtual Stated<DevCuidSet> enumeratePcie() { return {}; }
  /// The GPU at one PCI address, as sysfs spells it.
  virtual Stated<DevCuid> enumeratePcie(const std::string& /*sbdf*/) { return {}; }
  virtual Stated<DevCuidSet> enumerateMpci(const std::string& /*sbdf*/) { return {}; }
  virtual Stated<DevCuidSet> enumerateVirt(const std::string& /*sbdf*/) { return {}; }
  /// Uuid that a mediated device had when it was last enumerated: where to look for it first. Empty for one
  /// that was not.
  virtual std::string getKnownUuid(const DevCuid& /*cuid*/) const { return {}; }
  /// Uuids of the active mediated devices of a GPU.
  virtual Stated<std::vector<std::string>> listMediated(const std::string& /*sbdf*/) { return {}; }
};

}  // namespace kelp
