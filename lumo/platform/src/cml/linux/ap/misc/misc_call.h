#pragma once

#include "linux/ap/misc/interface_record.h"
#include "linux/ap/misc/misc_kernel_accessor_base.h"

// The one shape of an interface call. A record brings what differs: `fillRequest(record, parameters...)`
// sets its request fields, `readReply(record)` makes the value of its reply. A protocol brings
// `newCall<Record>(accessor)`, a call whose `payload` is a zeroed record, and `send(accessor, call)`.

namespace kelp::linux_ {

/// Sets the request fields of a record. One that has no form for what is asked returns the state that
/// says so.
template <class Record, class... Params>
KelpReturn fill(Record& record, const Params&... params) {
  if constexpr (sizeof...(Params) != 0) {
    if constexpr (std::is_void_v<decltype(fillRequest(record, params...))>) {
      fillRequest(record, params...);
    } else {
      return fillRequest(record, params...);
    }
  }
  return KelpReturn::kSuccess;
}

/// Fills a call with what the operation was given and sends it, unless its record refuses.
template <class Accessor, class Call, class... Params>
KelpReturn exchange(const Accessor& accessor, Call& call, const Params&... params) {
  if (const KelpReturn state = fill(call.payload, params...); state != KelpReturn::kSuccess) {
    return state;
  }
  return send(accessor, call);
}

/// One version of an operation, from its parameters to its value.
template <class Record, class Result, class Accessor, class... Params>
Result perform(const Accessor& accessor, const char* action, const Params&... params) {
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
template <class Record, class Accessor, class Result, class... Params>
void offer(VersionMap<rusk::Callable<std::function<Result(Params...)>>>& slot, const Accessor& accessor,
           const char* action) {
  slot[kVersionOf<Record>] = [&accessor, action](const Params&... params) {
    return perform<Record, Result>(accessor, action, params...);
  };
}

template <MiscMkisIntfName Name, class... Records, class Accessor>
VersionsOf<Name> offerAll(const Accessor& accessor, const char* action) {
  static_assert((RecordOf<Records, static_cast<int>(Name)> && ...), "a record of another interface");
  VersionsOf<Name> slot;
  (offer<Records>(slot, accessor, action), ...);
  return slot;
}

}  // namespace kelp::linux_
