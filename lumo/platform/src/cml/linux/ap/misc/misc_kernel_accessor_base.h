#pragma once

#include <mutex>
#include <utility>

#include "common/mkis/intf_names.h"
#include "common/mkis/mkis_intf.h"
#include "common/mkis/mkis_provider.h"
#include "dev_cuid.h"
#include "linux/ap/node_file.h"

namespace kelp::linux_ {

/// Speaks one protocol on an open misc node, which it owns and closes.
///
/// Its slots list, per interface, the versions that it can speak with the operation of each; an empty
/// list says that the protocol has no such interface. Keeps nothing of the driver's between calls: every
/// operation fills a record of its own.
class MiscKernelAccessorBase {
 public:
  explicit MiscKernelAccessorBase(NodeFile node) : node_(std::move(node)) {}
  virtual ~MiscKernelAccessorBase() = default;

  virtual Done postInit() { return 0; }
  virtual void setArch(DevArch arch) { arch_ = arch; }
  virtual DevArch getArch() const { return arch_; }
  /// The driver's interfaces, asked in the manner of this protocol.
  virtual MkisStated<RemoteList> mkisList(const MkisProbe& probe) = 0;

#define MISC_INTERFACE(number, name, ...)                 \
  virtual VersionMap<Operation<__VA_ARGS__>> do##name() { \
    return {};                                            \
  }
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE

  /// The one line of a call that failed.
  void logFailure(const char* action, KelpReturn state) const;
  /// Held from asking for a sample of processes until it is fetched: a device has one at a time, and who
  /// fetches after another thread finds it empty.
  std::mutex& sampleMutex() const {
    return sampleMutex_;
  }

 protected:
  int fd() const {
    return node_.fd();
  }

 private:
  NodeFile node_;
  DevArch arch_ = DevArch::kUnknown;
  mutable std::mutex sampleMutex_;
};

}  // namespace kelp::linux_

namespace kelp {

#define MISC_INTERFACE(number, name, ...)                                                          \
  template <>                                                                                      \
  struct MkisIntfSlot<linux_::MiscMkisIntfName::k##name> {                                         \
    static auto versions(linux_::MiscKernelAccessorBase& accessor) { return accessor.do##name(); } \
  };
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE

}  // namespace kelp

namespace kelp::linux_ {

/// What the slot of an interface lists.
template <MiscMkisIntfName Name>
using VersionsOf = decltype(MkisIntfSlot<Name>::versions(std::declval<MiscKernelAccessorBase&>()));

}  // namespace kelp::linux_
