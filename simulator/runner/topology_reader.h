// What stands beside the GPUs of a host: Sablink between them, bridges, network adapters.
#ifndef TOPOLOGY_READER_H
#define TOPOLOGY_READER_H

#include "host.h"
#include "json_cursor.h"

/// "sablink" of the host, after all GPUs. What a GPU says of its links itself comes first.
void readSablink(const JsonCursor& top, Host& host);

void readAdapters(const JsonCursor& top, Host& host);
void readBridges(const JsonCursor& top, Host& host);

#endif
