#pragma once

#include <memory>
#include <string>

#include "access_point_base.h"
#include "commands.h"

namespace kelp {

/// What is known of one device's nodes: a shell around the access point that can be emptied and
/// refilled, because every other device's nodes must be closed while one device is reset.
///
/// Owned by the model manager and shared with device objects. It holds no lock; a device's queries
/// run under the device model's locks. Between `close` and `reopen` no command may be run.
class CoreModel {
 public:
  /// @param knownUuid of a mediated device, where to look for it first; may be empty
  explicit CoreModel(const DevCuid& cuid, std::string knownUuid = {});
  virtual ~CoreModel();

  CoreModel(const CoreModel&) = delete;
  CoreModel& operator=(const CoreModel&) = delete;

  const DevCuid& getCuid() const { return cuid_; }
  const Stated<DevDesc>& getDesc() const { return accessPoint_->getDevDesc(); }

  Done init() { return accessPoint_->init(); }
  void close() { accessPoint_.reset(); }
  void reopen(const DevCuid& cuid);

  /// Runs a command on the access point and returns its result unchanged; state 5 while the access
  /// point has no description. Instantiated for every command in core_model.cpp.
  template <class Cmd>
  Stated<typename Cmd::Result> exec(const Cmd& cmd) const;

 private:
  const DevCuid cuid_;
  const std::string knownUuid_;
  std::unique_ptr<AccessPointBase> accessPoint_;
};

}  // namespace kelp
