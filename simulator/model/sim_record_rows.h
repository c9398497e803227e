// How rows of the record tables are written. For the sources of the model that have such tables.
#ifndef SIM_RECORD_ROWS_H
#define SIM_RECORD_ROWS_H

#include "sim_records.h"

#define COUNT_OF(table) ((uint32_t)(sizeof(table) / sizeof((table)[0])))

#define IN_KEY(at, size) \
  { .offset = at, .width = size, .type = SIM_FIELD_KEY }
#define IN_STORE(at, size, id, limit) \
  { .offset = at, .width = size, .type = SIM_FIELD_STORE, .value = SIM_##id, .count = limit }
#define IN_CONSTANT(at, size, number) \
  { .offset = at, .width = size, .type = SIM_FIELD_CONSTANT, .count = number }
#define IN_LIMIT(at, size, number) \
  { .offset = at, .width = size, .type = SIM_FIELD_LIMIT, .count = number }
#define OUT(at, size, id) \
  { .offset = at, .width = size, .type = SIM_FIELD_NUMBER, .value = SIM_##id }
#define OUT_OPTIONAL(at, size, id) \
  { .offset = at, .width = size, .type = SIM_FIELD_NUMBER, .value = SIM_##id, .flags = SIM_FLAG_OPTIONAL }
#define OUT_SIGNED(at, size, id) \
  { .offset = at, .width = size, .type = SIM_FIELD_NUMBER, .value = SIM_##id, .flags = SIM_FLAG_SIGNED_NA }
#define OUT_DIVIDED(at, size, id, by) \
  { .offset = at, .width = size, .type = SIM_FIELD_NUMBER, .value = SIM_##id, .divisor = by }
#define OUT_AS(at, size, id, key)                                                                          \
  {                                                                                                        \
    .offset = at, .width = size, .type = SIM_FIELD_NUMBER, .value = SIM_##id, .flags = SIM_FLAG_FIXED_KEY, \
    .fixedKey = key                                                                                        \
  }
#define OUT_BITS(at, size, id, first, n) \
  { .offset = at, .width = size, .type = SIM_FIELD_BITS, .value = SIM_##id, .shift = first, .bits = n }
#define OUT_ARRAY(at, size, n, id) \
  { .offset = at, .width = size, .type = SIM_FIELD_ARRAY, .value = SIM_##id, .count = n, .stride = size }
#define OUT_SPREAD(at, size, n, every, id) \
  { .offset = at, .width = size, .type = SIM_FIELD_ARRAY, .value = SIM_##id, .count = n, .stride = every }
#define OUT_BYTES(at, size, id) \
  { .offset = at, .width = size, .type = SIM_FIELD_BYTES, .value = SIM_##id }

#define ROWS(name, at, size, id, first, every, limit, table) \
  static const SimRows name = {.countOffset = at,            \
                               .countWidth = size,           \
                               .countValue = SIM_##id,       \
                               .base = first,                \
                               .stride = every,              \
                               .max = limit,                 \
                               .fields = table,              \
                               .fieldCount = COUNT_OF(table)}

// ---- records

enum {
  kPlain = SIM_NODE_PLAIN,
  kParent = SIM_NODE_PARENT,
  kInstance = SIM_NODE_INSTANCE,
  kAny = SIM_NODE_PLAIN | SIM_NODE_PARENT | SIM_NODE_INSTANCE,
  kSablink = SIM_NEEDS_SABLINK,
  kLink = SIM_NEEDS_SABLINK | SIM_NEEDS_LINK,
  kPeer = SIM_NEEDS_SABLINK | SIM_NEEDS_PEER,
};

#define RECORD1(name, edition, bytes, who, what, table)                                                     \
  {                                                                                                         \
    .interfaceName = name, .version = edition, .size = bytes, .nodes = who, .needs = what, .fields = table, \
    .fieldCount = COUNT_OF(table)                                                                           \
  }
#define RECORD1_FIRST(name, edition, bytes, who, what, table, n)                                            \
  {                                                                                                         \
    .interfaceName = name, .version = edition, .size = bytes, .nodes = who, .needs = what, .fields = table, \
    .fieldCount = n                                                                                         \
  }
#define LIST1(name, edition, bytes, who, what, list) \
  { .interfaceName = name, .version = edition, .size = bytes, .nodes = who, .needs = what, .rows = &(list) }
#define LIST1_OF(name, edition, bytes, who, what, table, list)                                              \
  {                                                                                                         \
    .interfaceName = name, .version = edition, .size = bytes, .nodes = who, .needs = what, .fields = table, \
    .fieldCount = COUNT_OF(table), .rows = &(list)                                                          \
  }
// Records that do something before their fields are filled, or that have none.
#define ACTION1(name, edition, bytes, who, what, table, act)                                                \
  {                                                                                                         \
    .interfaceName = name, .version = edition, .size = bytes, .nodes = who, .needs = what, .fields = table, \
    .fieldCount = COUNT_OF(table), .action = act                                                            \
  }
#define ACTION1_BARE(name, edition, bytes, who, what, act) \
  { .interfaceName = name, .version = edition, .size = bytes, .nodes = who, .needs = what, .action = act }
#define ACTION1_ROWS(name, edition, bytes, who, what, table, list, act)                                     \
  {                                                                                                         \
    .interfaceName = name, .version = edition, .size = bytes, .nodes = who, .needs = what, .fields = table, \
    .fieldCount = COUNT_OF(table), .rows = &(list), .action = act                                           \
  }

#define RECORD0(number, name, edition, bytes, who, what, table)                                \
  {                                                                                            \
    .request = number, .interfaceName = name, .version = edition, .size = bytes, .nodes = who, \
    .needs = what, .fields = table, .fieldCount = COUNT_OF(table)                              \
  }
#define RECORD0_FIRST(number, name, edition, bytes, who, what, table, n)                       \
  {                                                                                            \
    .request = number, .interfaceName = name, .version = edition, .size = bytes, .nodes = who, \
    .needs = what, .fields = table, .fieldCount = n                                            \
  }
#define LIST0(number, name, edition, bytes, who, what, list)                                   \
  {                                                                                            \
    .request = number, .interfaceName = name, .version = edition, .size = bytes, .nodes = who, \
    .needs = what, .rows = &(list)                                                             \
  }
#define LIST0_OF(number, name, edition, bytes, who, what, table, list)                         \
  {                                                                                            \
    .request = number, .interfaceName = name, .version = edition, .size = bytes, .nodes = who, \
    .needs = what, .fields = table, .fieldCount = COUNT_OF(table), .rows = &(list)             \
  }

#define ACTION0(number, name, edition, bytes, who, what, table, act)                           \
  {                                                                                            \
    .request = number, .interfaceName = name, .version = edition, .size = bytes, .nodes = who, \
    .needs = what, .fields = table, .fieldCount = COUNT_OF(table), .action = act               \
  }
#define ACTION0_FIRST(number, name, edition, bytes, who, what, table, n, act)                  \
  {                                                                                            \
    .request = number, .interfaceName = name, .version = edition, .size = bytes, .nodes = who, \
    .needs = what, .fields = table, .fieldCount = n, .action = act                             \
  }
#define ACTION0_BARE(number, name, edition, bytes, who, what, act)                             \
  {                                                                                            \
    .request = number, .interfaceName = name, .version = edition, .size = bytes, .nodes = who, \
    .needs = what, .action = act                                                               \
  }
#define ACTION0_ROWS(number, name, edition, bytes, who, what, table, list, act)                   \
  {                                                                                               \
    .request = number, .interfaceName = name, .version = edition, .size = bytes, .nodes = who,    \
    .needs = what, .fields = table, .fieldCount = COUNT_OF(table), .rows = &(list), .action = act \
  }

// ---- chip families, a bit for each

enum {
  kWold = 1 << 1,
  kFen = 1 << 2 | 1 << 3,
  kTor1 = 1 << 4,
};

#endif
