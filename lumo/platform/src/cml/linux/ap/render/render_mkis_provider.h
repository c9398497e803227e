#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "common/mkis/mkis_provider.h"
#include "linux/ap/render/render_kernel_accessor_base.h"

namespace kelp::linux_ {

class RenderKernelAccessor;

/// Negotiation over the DRM render node "/dev/dri/renderDN". The only local protocol is 0.
class RenderMkisProvider : public MkisProvider<RenderMkisProvider, RenderMkisIntfName> {
 public:
  /// `nodeName` is "renderDN"; `arch` decides the cores of a driver that can't be asked for them. On the
  /// context of a mediated device only the sessions of the vGPU `vgpuId` count.
  RenderMkisProvider(std::string nodeName, DevArch arch, std::optional<std::uint32_t> vgpuId = std::nullopt);
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
  std::optional<std::uint32_t> vgpuId_;
  std::unique_ptr<RenderKernelAccessor> accessor_;
};

}  // namespace kelp::linux_
