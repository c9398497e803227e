// The video engine of a device in a host description: its cores and their sessions.
#ifndef VPU_LISTS_H
#define VPU_LISTS_H

#include "host.h"
#include "json_cursor.h"

void checkVpuLists(const JsonCursor& device);

/// Adds the processes that sessions name to `pids`.
void setVpuLists(const JsonCursor& device, CellMap& cells, std::vector<uint64_t>& pids);

#endif
