#pragma once

#include <memory>
#include <utility>

#include "common/mkis/mkis_intf.h"

namespace kelp {

/// Binds an interface's name to the accessor's slot that lists its versions; specialised per
/// interface beside each accessor base.
template <auto Name>
struct MkisIntfSlot;

/// Negotiation with the driver over one node: opened and probed by `init`, then asked per interface
/// for the operation of the best version that both sides have. Nothing is ever sent that was not
/// agreed on.
///
/// `Self` is the provider of a kind of node and has `getAccessor()`, null until `init` succeeded. A
/// provider serves one device context; after `init` its list is read-only.
template <class Self, class IntfName>
class MkisProvider {
 public:
  /// Opens the node, agrees on a protocol and fetches the driver's list.
  virtual MkisStated<int> init() = 0;
  /// What the accessor must know before it can serve, read once.
  virtual Done postInit() = 0;
  /// Closes the node and forgets the list.
  virtual void deinit() { remoteList_.clear(); }
  /// Negotiates everything anew, as it must be after the device was reset.
  virtual MkisStated<int> reset() {
    deinit();
    return init();
  }
  /// The list that is taken for a driver too old to be asked.
  virtual RemoteList mkisListDefault() const = 0;

  virtual MkisStated<VersionRange> getRemoteVersion(int name) const {
    const auto found = remoteList_.find(name);
    if (found == remoteList_.end()) {
      return MkisError::kNotListed;
    }
    return found->second;
  }
  virtual void setRemoteVersion(int name, const VersionRange& range) { remoteList_[name] = range; }

  virtual ~MkisProvider() = default;

  /// The interface `Name` with the operation of the agreed version.
  /// Fails with kFailure without an accessor or when it speaks no version of the interface,
  /// kNotListed when the driver lacks it, and as versionStrategy does.
  template <IntfName Name>
  auto getIntf() {
    using Versions = decltype(MkisIntfSlot<Name>::versions(*static_cast<Self*>(this)->getAccessor()));
    using Intf = MkisIntf<IntfName, Name, typename Versions::mapped_type>;
    using Result = MkisStated<Intf>;

    auto* accessor = static_cast<Self*>(this)->getAccessor();
    if (accessor == nullptr) {
      return Result(MkisError::kFailure);
    }
    Versions versions = MkisIntfSlot<Name>::versions(*accessor);
    if (versions.empty()) {
      return Result(MkisError::kFailure);
    }
    const auto remote = getRemoteVersion(static_cast<int>(Name));
    if (!remote.ok()) {
      return Result(remote.state());
    }
    const VersionRange local{versions.begin()->first, versions.rbegin()->first};
    const auto version = versionStrategy(local, remote.value());
    if (!version.ok()) {
      return Result(version.state());
    }
    const auto found = versions.find(version.value());
    return Result(Intf(static_cast<int>(version.value()), found == versions.end()
                                                              ? typename Versions::mapped_type{}
                                                              : std::move(found->second)));
  }

 protected:
  RemoteList remoteList_;
};

}  // namespace kelp
