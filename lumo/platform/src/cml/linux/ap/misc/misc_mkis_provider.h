#pragma once

#include <memory>
#include <string>

#include "common/mkis/mkis_provider.h"
#include "linux/ap/misc/misc_kernel_accessor_base.h"

namespace kelp::linux_ {

/// Negotiation over the misc node "/dev/ovgpu.N". Local protocols are 0 and 1; a driver that answers
/// no probe is spoken to in protocol 0 with the few interfaces that every driver has.
class MiscMkisProvider : public MkisProvider<MiscMkisProvider, MiscMkisIntfName> {
 public:
  /// `miscName` is "ovgpu.N".
  explicit MiscMkisProvider(std::string miscName) : miscName_(std::move(miscName)) {}

  MkisStated<int> init() override;
  Done postInit() override;
  void deinit() override;
  RemoteList mkisListDefault() const override;

  void setArch(DevArch arch);
  MiscKernelAccessorBase* getAccessor() { return accessor_.get(); }

 private:
  MkisStated<MkisProbe> getMkisProbe(int fd) const;
  MkisStated<int> initByProbe(NodeFile node, const MkisProbe& probe);

  std::string miscName_;
  std::unique_ptr<MiscKernelAccessorBase> accessor_;
};

}  // namespace kelp::linux_
