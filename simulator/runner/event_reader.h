// Faults in a host description: what the log daemon has written down, and what waits in event queues.
#ifndef EVENT_READER_H
#define EVENT_READER_H

#include "host.h"
#include "json_cursor.h"

void checkEventKeys(const JsonCursor& gpu);

/// 168 bytes; unknown keys are errors.
std::string faultRecord(const JsonCursor& entry);
/// 32 bytes that a file of records begins with.
std::string faultRecordHeader();
/// 256 bytes, as an event queue gives them.
std::string eventMessage(const std::string& uuid, const JsonCursor& entry);

/// "xid_records" and "events" of a GPU entry, whose function has its uuid.
void readEvents(const JsonCursor& gpu, Host& host, size_t function);

/// "xid_records" of the host: those of GPUs that are gone, by uuid.
void readOldRecords(const JsonCursor& top, Host& host);

#endif
