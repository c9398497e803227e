#pragma once

#include "linux/ap/misc/misc_call.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"
#include "linux/ap/misc/mkis_protocol_v1/misc_kernel_accessor_v1.h"

// What calls of this protocol have in common: a header, a body and a payload.

namespace kelp::linux_ {

/// An interface call whose payload is zero.
template <class Record>
MciCall<Record> newCall(const MiscKernelAccessorV1& accessor) {
  MciCall<Record> call{};
  call.header = accessor.newHeader(MciPduType::kCall, sizeof call.body + sizeof call.payload);
  call.body.intfName = kInterfaceOf<Record>;
  call.body.intfVersion = kVersionOf<Record>;
  call.body.payloadSize = sizeof call.payload;
  return call;
}

template <class Record>
KelpReturn send(const MiscKernelAccessorV1& accessor, MciCall<Record>& call) {
  return accessor.access(MciTraits<Record>::kName, call.header);
}

/// MCI_SLOT(Name, action, records...): the slot of an interface.
#define MCI_SLOT(name, action, ...)                                         \
  VersionsOf<MiscMkisIntfName::k##name> MiscKernelAccessorV1::do##name() {  \
    return offerAll<MiscMkisIntfName::k##name, __VA_ARGS__>(*this, action); \
  }

}  // namespace kelp::linux_
