#pragma once

#include "linux/ap/wire.h"

// Commands to the controller of the board: the driver passes a record of fixed size to the firmware and
// its reply back. What is asked lies where the reply has its status, or behind.

namespace kelp::linux_ {

constexpr u32 kIpcRequest = 0xC1084D01;
constexpr std::size_t kIpcRecordSize = 264;
constexpr u32 kIpcGoodStatus = 0;

/// The first word of a record; both ends of the way are the second of their kind.
constexpr u64 ipcHeader(u64 command, u64 length) {
  constexpr u64 kTarget = 2;
  constexpr u64 kSource = 2;
  return (command << 5) | (kTarget << 24) | (kSource << 29) | (length << 45);
}

/// What a command's line states; a record without one can't be sent.
template <class Record>
struct IpcTraits;

/// IPC_RECORD(record, command, length)
#define IPC_RECORD(Record, commandNumber, lengthValue)                                                  \
  static_assert(std::is_trivial_v<Record> && alignof(Record) == 1 && sizeof(Record) == kIpcRecordSize); \
  template <>                                                                                           \
  struct IpcTraits<Record> {                                                                            \
    static constexpr const char* kName = #Record;                                                       \
    static constexpr u32 kCommand = commandNumber;                                                      \
    static constexpr u32 kLength = lengthValue;                                                         \
  }

/// Sends a command, up to ten times with a pause after each failure: the firmware may be busy.
KelpReturn runCommand(int fd, const char* name, u32 command, void* record);

/// Runs a command on a record that holds nothing but what it asks. What the firmware thinks of it is in
/// the record's status.
template <class Record>
KelpReturn cmd(int fd, Record& record) {
  record.header = ipcHeader(IpcTraits<Record>::kCommand, IpcTraits<Record>::kLength);
  return runCommand(fd, IpcTraits<Record>::kName, IpcTraits<Record>::kCommand, &record);
}

}  // namespace kelp::linux_
