// The lists of a device in a host description, as cells of the image.
#ifndef DEVICE_LISTS_H
#define DEVICE_LISTS_H

#include "host.h"
#include "json_cursor.h"

/// Unknown keys in the lists, and unknown values, are errors.
void checkLists(const JsonCursor& device);
/// The same for one list of objects; null stands for no row.
void checkRows(const JsonCursor& device, std::string_view key, const std::vector<std::string_view>& keys);

/// The place of a text among `names`; a number stands for itself.
uint64_t chooseFrom(const JsonCursor& place, const std::vector<std::string_view>& names);

/// Processes, displays, fans, pages, and cores and sessions of the video engine. Returns the ids of the
/// processes that are named.
std::vector<uint64_t> setLists(const JsonCursor& device, CellMap& cells);

#endif
