// Faults in a host description: what the log daemon has written down, and what waits in event queues.
#ifndef EVENT_READER_H
#define EVENT_READER_H

#include "host.h"
#include "json_cursor.h"

void checkEventKeys(const JsonCursor& gpu);

/// "xid_records" and "events" of a GPU entry, whose function has its uuid.
void readEvents(const JsonCursor& gpu, Host& host, size_t function);

/// "xid_records" of the host: those of GPUs that are gone, by uuid.
void readOldRecords(const JsonCursor& top, Host& host);

#endif
