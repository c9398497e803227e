#pragma once

#include <string>

#include "dev_desc.h"
#include "linux/ap/wire.h"
#include "pci_sbdf.h"

namespace kelp::linux_ {

constexpr u16 kNoNode = 65535;
constexpr u32 kPlainNode = 0;
constexpr u32 kMpcInstanceNode = 2;

/// The path of a numbered node; state 6 when the driver says that there is none.
inline Stated<std::string> nodePath(const char* prefix, u16 number) {
  if (number == kNoNode) {
    return KelpReturn::kNotSupported;
  }
  return prefix + std::to_string(number);
}

/// Reads the description that all protocols share. `Record` has the driver's fields by their names.
/// An MPC parent has no DRM nodes, and only an instance has a parent. The oldest record has no ion node.
template <class Record>
DevDesc readDevDesc(const Record& reply) {
  const u32 type = reply.devType;
  DevDesc desc;
  desc.sbdf = sbdfText(reply.sbdf);
  desc.parentMiscId = type == kMpcInstanceNode ? u32{reply.parentMiscId} : 0;
  desc.kmdFlagA = u32{reply.flagA} != 0;
  desc.kmdFlagB = u32{reply.flagB} != 0;
  desc.kmdValue32 = static_cast<unsigned int>(u16{reply.value32});
  desc.kmdValue64 = static_cast<unsigned long>(u64{reply.value64});
  desc.miscPath = nodePath("/dev/ovgpu.", reply.miscId);
  if (type == kPlainNode || type == kMpcInstanceNode) {
    desc.cardPath = nodePath("/dev/dri/card", reply.cardId);
    desc.renderPath = nodePath("/dev/dri/renderD", reply.renderId);
  }
  if constexpr (requires { reply.ionId; }) {
    desc.ionPath = nodePath("/dev/ion", reply.ionId);
  }
  return desc;
}

}  // namespace kelp::linux_
