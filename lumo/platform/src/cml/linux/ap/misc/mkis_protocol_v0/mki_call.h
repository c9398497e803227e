#pragma once

#include "linux/ap/misc/misc_call.h"
#include "linux/ap/misc/mkis_protocol_v0/misc_kernel_accessor_v0.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_record.h"

// What calls of this protocol have in common: nothing but the record itself.

namespace kelp::linux_ {

template <class Record>
struct MkiCall {
  Record payload;
};

template <class Record>
MkiCall<Record> newCall(const MiscKernelAccessorV0& /*accessor*/) {
  return {};
}

template <class Record>
KelpReturn send(const MiscKernelAccessorV0& accessor, MkiCall<Record>& call) {
  return accessor.access(call.payload);
}

/// MKI_SLOT(Name, action, records...): the slot of an interface.
#define MKI_SLOT(name, action, ...)                                         \
  VersionsOf<MiscMkisIntfName::k##name> MiscKernelAccessorV0::do##name() {  \
    return offerAll<MiscMkisIntfName::k##name, __VA_ARGS__>(*this, action); \
  }

}  // namespace kelp::linux_
