#pragma once

#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"
#include "linux/ap/misc/mkis_protocol_v1/misc_kernel_accessor_v1.h"

// The one shape of an interface call. A record brings what differs: `fillRequest(record, parameters...)`
// sets its request fields, `readReply(record)` makes the value of its reply.

namespace kelp::linux_ {

/// An interface call whose payload is zero.
template <class Record>
MciCall<Record> newCall(const MiscKernelAccessorV1& accessor) {
  MciCall<Record> call{};
  call.header = accessor.newHeader(MciPduType::kCall, sizeof call.body + sizeof call.payload);
  call.body.intfName = MciTraits<Record>::kInterface;
  call.body.intfVersion = MciTraits<Record>::kVersion;
  call.body.payloadSize = sizeof call.payload;
  return call;
}

template <class Record>
KelpReturn send(const MiscKernelAccessorV1& accessor, MciCall<Record>& call) {
  return accessor.access(MciTraits<Record>::kName, call.header);
}

/// Fills a call with what the operation was given and sends it. A record that has no form for that is
/// not sent: its fillRequest returns the state that says so.
template <class Record, class... Params>
KelpReturn exchange(const MiscKernelAccessorV1& accessor, MciCall<Record>& call, const Params&... params) {
  if constexpr (sizeof...(Params) != 0) {
    if constexpr (std::is_void_v<decltype(fillRequest(call.payload, params...))>) {
      fillRequest(call.payload, params...);
    } else if (const KelpReturn state = fillRequest(call.payload, params...); state != KelpReturn::kSuccess) {
      return state;
    }
  }
  return send(accessor, call);
}

/// One version of an operation, from its parameters to its value.
template <class Record, class Result, class... Params>
Result perform(const MiscKernelAccessorV1& accessor, const char* action, const Params&... params) {
  auto call = newCall<Record>(accessor);
  if (const KelpReturn state = exchange(accessor, call, params...); state != KelpReturn::kSuccess) {
    accessor.logFailure(action, state);
    return state;
  }
  if constexpr (requires { readReply(call.payload); }) {
    return readReply(call.payload);
  } else {
    static_assert(std::is_same_v<Result, Done>, "a record with a value needs its readReply");
    return 0;
  }
}

/// Lists a record's version in the slot of its interface.
template <class Record, class Result, class... Params>
void offer(VersionMap<rusk::Callable<std::function<Result(Params...)>>>& slot,
           const MiscKernelAccessorV1& accessor, const char* action) {
  slot[MciTraits<Record>::kVersion] = [&accessor, action](const Params&... params) {
    return perform<Record, Result>(accessor, action, params...);
  };
}

template <MiscMkisIntfName Name, class... Records>
VersionsOf<Name> offerAll(const MiscKernelAccessorV1& accessor, const char* action) {
  static_assert(((MciTraits<Records>::kInterface == static_cast<int>(Name)) && ...),
                "a record of another interface");
  VersionsOf<Name> slot;
  (offer<Records>(slot, accessor, action), ...);
  return slot;
}

/// MCI_SLOT(Name, action, records...): the slot of an interface.
#define MCI_SLOT(name, action, ...)                                         \
  VersionsOf<MiscMkisIntfName::k##name> MiscKernelAccessorV1::do##name() {  \
    return offerAll<MiscMkisIntfName::k##name, __VA_ARGS__>(*this, action); \
  }

}  // namespace kelp::linux_
