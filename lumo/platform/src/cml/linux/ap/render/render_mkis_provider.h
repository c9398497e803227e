#pragma once

#include <memory>
#include <string>

#include "common/mkis/mkis_provider.h"
#include "linux/ap/render/render_kernel_accessor_base.h"

namespace kelp::linux_ {

class RenderKernelAccessor;

/// Negotiation over the DRM render node "/dev/dri/renderDN". The only local protocol is 0.
class RenderMkisProvider : public MkisProvider<RenderMkisProvider, RenderMkisIntfName> {
 public:
  /// `nodeName` is "renderDN"; `arch` decides the cores of a driver that can't be asked for them.
  RenderMkisProvider(std::string nodeName, DevArch arch);
  ~RenderMkisProvider() override;

  MkisStated<int> init() override;
  Done postInit() override;
  void deinit() override;
  RemoteList mkisListDefault() const override;

  RenderKernelAccessorBase* getAccessor();

 private:
  MkisStated<MkisProbe> getMkisProbe(int fd) const;

  std::string nodeName_;
  DevArch arch_;
  std::unique_ptr<RenderKernelAccessor> accessor_;
};

}  // namespace kelp::linux_
