// The "values" of a device in a host description, as cells of the image.
#ifndef VALUE_READER_H
#define VALUE_READER_H

#include <string>
#include <string_view>
#include <vector>

#include "host.h"
#include "json_cursor.h"

/// Names of all values.
const std::vector<std::string_view>& valueNames();

/// Reads an object of values into `cells`. `defaults` are those of the family: where they have keys, a
/// single value stands for each of those keys.
void readValues(const JsonCursor& values, const nlohmann::json& defaults, CellMap& cells);

/// Unknown names and keys of the wrong form are errors; values are not looked at.
void checkValueNames(const JsonCursor& values);

/// Whether an object is one value ({"status": 5} and its like) and not values by key.
bool isSingleValue(const nlohmann::json& value);

/// Any bytes, as a text of two hexadecimal digits for each.
std::string bytesFromHex(const JsonCursor& place);

/// One value under one key.
void readValue(const JsonCursor& place, SimValue value, uint64_t key, CellMap& cells);

void setNumber(CellMap& cells, SimValue value, uint64_t number, uint64_t key = 0);
void setText(CellMap& cells, SimValue value, std::string text, uint64_t key = 0);
void setArray(CellMap& cells, SimValue value, const std::vector<uint32_t>& numbers, uint64_t key = 0);

#endif
