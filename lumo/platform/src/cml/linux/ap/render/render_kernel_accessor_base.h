#pragma once

#include "common/mkis/intf_names.h"
#include "common/mkis/mkis_intf.h"
#include "common/mkis/mkis_provider.h"
#include "dev_cuid.h"
#include "linux/ap/node_file.h"

namespace kelp::linux_ {

/// Speaks one protocol on an open DRM render node, which it owns and closes: the video engine's.
class RenderKernelAccessorBase {
 public:
  virtual ~RenderKernelAccessorBase() = default;

  virtual Done init() = 0;
  virtual Done postInit() = 0;
  virtual void deinit() = 0;
  virtual MkisStated<RemoteList> mkisList(const MkisProbe& probe) = 0;

#define RENDER_INTERFACE(number, name, slot, ...) virtual VersionMap<Operation<__VA_ARGS__>> slot() = 0;
#include "common/mkis/render_interfaces.def"
#undef RENDER_INTERFACE
};

}  // namespace kelp::linux_

namespace kelp {

#define RENDER_INTERFACE(number, name, slot, ...)                                                \
  template <>                                                                                    \
  struct MkisIntfSlot<linux_::RenderMkisIntfName::k##name> {                                     \
    static auto versions(linux_::RenderKernelAccessorBase& accessor) { return accessor.slot(); } \
  };
#include "common/mkis/render_interfaces.def"
#undef RENDER_INTERFACE

}  // namespace kelp
