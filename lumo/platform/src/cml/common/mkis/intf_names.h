#pragma once

#include "commands.h"

namespace kelp::linux_ {

/// Interfaces of the misc node, by the driver's numbers.
enum class MiscMkisIntfName : int {
#define MISC_INTERFACE(number, name, ...) k##name = number,
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE
};

/// Interfaces of the DRM render node, by the driver's numbers.
enum class RenderMkisIntfName : int {
#define RENDER_INTERFACE(number, name, ...) k##name = number,
#include "common/mkis/render_interfaces.def"
#undef RENDER_INTERFACE
};

/// The interface that a forwarding command calls.
template <class Cmd>
struct IntfOf;

#define MISC_INTERFACE(number, name, ...)                    \
  template <>                                                \
  struct IntfOf<name##Cmd> {                                 \
    static constexpr auto kName = MiscMkisIntfName::k##name; \
  };
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE

#define RENDER_INTERFACE(number, name, ...)                    \
  template <>                                                  \
  struct IntfOf<name##Cmd> {                                   \
    static constexpr auto kName = RenderMkisIntfName::k##name; \
  };
#include "common/mkis/render_interfaces.def"
#undef RENDER_INTERFACE

}  // namespace kelp::linux_
