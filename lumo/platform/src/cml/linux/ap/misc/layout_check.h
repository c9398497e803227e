#pragma once

#include <cstddef>

// For the second transcription of the driver's layout tables: a slip in a record does not compile.

#define FIELD_AT(Record, field, offset, width) \
  static_assert(offsetof(Record, field) == (offset) && sizeof(Record::field) == (width))

#define ROWS_AT(Record, rows, offset, count, rowSize)                                                \
  static_assert(offsetof(Record, rows) == (offset) && sizeof(Record::rows) == (count) * (rowSize) && \
                sizeof(Record::rows[0]) == (rowSize))

#define CALL_IS(Record, interfaceName, version, payloadSize)                                  \
  static_assert(kInterfaceOf<Record> == (interfaceName) && kVersionOf<Record> == (version) && \
                sizeof(Record) == (payloadSize))

#define REQUEST_IS(Record, requestNumber, size) \
  static_assert(MkiTraits<Record>::kRequest == (requestNumber) && sizeof(Record) == (size))

#define COMMAND_IS(Record, commandNumber, lengthValue)            \
  static_assert(IpcTraits<Record>::kCommand == (commandNumber) && \
                IpcTraits<Record>::kLength == (lengthValue) && sizeof(Record) == 264)
