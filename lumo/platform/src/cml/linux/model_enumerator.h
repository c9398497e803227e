#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "environment_base.h"
#include "model_enumerator_base.h"

namespace kelp::linux_ {

/// Finds the devices of the machine in sysfs, /dev and procfs, without a word to the driver.
///
/// Owned by the model manager. Any thread may call: each call reads afresh, and the mutex guards the one
/// thing that is held between calls, the uuids of mediated devices, which nobody trusts unread. A failure is
/// a state, but for a `device` file of sysfs without a number, whose conversion throws; one bad device fails
/// a whole enumeration.
class ModelEnumerator : public ModelEnumeratorBase {
 public:
  explicit ModelEnumerator(std::shared_ptr<EnvironmentBase> environment);

  /// Two walks, the driver mode, and per device a look for `physfn`, a walk and a file; with MPC parents
  /// also one walk of the driver's proc folder and a file for each GPU there. State 2 with nodes but no
  /// driver; without nodes there is no device and no failure.
  Stated<DevCuidSet> enumeratePcie() override;
  Stated<DevCuid> enumeratePcie(const std::string& sbdf) override;
  Stated<DevCuidSet> enumerateMpci(const std::string& sbdf) override;
  Stated<DevCuidSet> enumerateVirt(const std::string& sbdf) override;
  std::string getKnownUuid(const DevCuid& cuid) const override;
  Stated<std::vector<std::string>> listMediated(const std::string& sbdf) override;

 private:
  using Names = std::vector<std::string>;
  /// Misc names as procfs has them, read by the first who needs them.
  using ProcNames = std::optional<std::set<std::string>>;

  static Stated<DevArch> getPcieDevArch(const std::string& sbdf);
  /// What all cuids of one function share: all but the internal id.
  static Stated<DevCuid> genFunctionCuid(DevType type, const std::string& sbdf);
  static Stated<DevCuid> genDevCuid(const Stated<DevCuid>& function, const std::string& miscName);
  static Stated<DevCuid> genVirtCuid(const Stated<DevCuid>& function, const std::string& uuid);

  /// Misc names in a folder by ascending number.
  static Stated<Names> getDevNamesCommon(const std::string& path, int mask);
  /// Misc names of a function, its own first and those of its MPC instances behind. State 6 for an
  /// SR-IOV virtual function.
  static Stated<Names> getPcieDevMiscNames(const std::string& sbdf, ProcNames& procNames);
  static Stated<Names> getPcieDevMiscNames(const std::string& sbdf);
  /// Adds the misc names of all GPUs; those before the first one that cannot be read.
  static void getDeviceNameFromProc(std::set<std::string>& out);

  std::shared_ptr<EnvironmentBase> environment_;
  std::unordered_map<DevCuid, std::string> knownUuids_;
  mutable std::mutex mutex_;
};

}  // namespace kelp::linux_
