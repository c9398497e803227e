// Mediated devices in a GPU entry: types, vGPUs, and the share of a guest.
#ifndef MEDIATED_READER_H
#define MEDIATED_READER_H

#include "host.h"
#include "json_cursor.h"

void checkMediatedKeys(const JsonCursor& gpu);

/// Fills the function and what its node answers of its guests. Adds the processes of virtual machines to
/// `pids`.
void readMediated(const JsonCursor& gpu, PciFunction& function, CellMap& cells, std::vector<uint64_t>& pids);

#endif
