#pragma once

#include <vector>

#include "dev_cuid.h"
#include "linux/ap/mki_access.h"
#include "linux/ap/render/render_kernel_accessor_base.h"

namespace kelp::linux_ {

/// Protocol 0 of the render node. The cores of the video engine never change, so they are read once,
/// by `postInit`, and every version of their interface answers from memory.
class RenderKernelAccessor : public RenderKernelAccessorBase {
 public:
  RenderKernelAccessor(NodeFile node, DevArch arch) : node_(std::move(node)), arch_(arch) {}

  Done init() override { return 0; }
  Done postInit() override;
  void deinit() override { node_ = NodeFile(); }
  MkisStated<RemoteList> mkisList(const MkisProbe& probe) override;

  VersionMap<Operation<std::vector<VpuCoreSpecData>>> getVpuSpec() override;

  /// The version of the specification interface that was agreed on; it must be set before `postInit`.
  void setVpuSpecVersion(int version) { specVersion_ = version; }

 private:
  using Cores = std::vector<VpuCoreSpecData>;

  Stated<Cores> getVpuSpecV0() const;
  Stated<Cores> getVpuSpecV1() const;
  Stated<Cores> getVpuSpecV2() const;
  void logCores() const;

  template <class Record>
  KelpReturn access(Record& record) const;

  NodeFile node_;
  DevArch arch_;
  int specVersion_ = kUnboundVersion;
  Cores cores_;
};

}  // namespace kelp::linux_
