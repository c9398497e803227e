#pragma once

#include "kelp_return.h"
#include "linux/ap/wire.h"

namespace kelp::linux_ {

/// What a record's line states: the request that carries it and its name in log lines. A record
/// without such a line can't be sent.
template <class Record>
struct MkiTraits;

/// MKI_RECORD(record, request number): a record that is the whole argument of a request of its own. The
/// size is part of the request number.
#define MKI_RECORD(Record, requestNumber)                               \
  static_assert(std::is_trivial_v<Record> && alignof(Record) == 1 &&    \
                sizeof(Record) == (((requestNumber) >> 16) & 0x3FFFU)); \
  template <>                                                           \
  struct MkiTraits<Record> {                                            \
    static constexpr const char* kName = #Record;                       \
    static constexpr ::kelp::linux_::u32 kRequest = requestNumber;      \
  }

/// Sends a record. The driver has no status word here: the call's own result is all.
KelpReturn accessRecord(int fd, const char* recordName, u32 request, void* record);

template <class Record>
KelpReturn access(int fd, Record& record) {
  return accessRecord(fd, MkiTraits<Record>::kName, MkiTraits<Record>::kRequest, &record);
}

}  // namespace kelp::linux_
