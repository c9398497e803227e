// The records of the driver, as tables: a record is a row, its fields are rows of their own.
#ifndef SIM_RECORDS_H
#define SIM_RECORDS_H

#include "sim_model.h"

#ifdef __cplusplus
extern "C" {
#endif

enum SimFieldType {
  SIM_FIELD_KEY,       // in: selects, in the order of the keys
  SIM_FIELD_STORE,     // in: becomes the value; more than `count` is a bad argument if `count` is not 0
  SIM_FIELD_CONSTANT,  // in and out: `count` and nothing else
  SIM_FIELD_LIMIT,     // in: at most `count`
  SIM_FIELD_NUMBER,    // out
  SIM_FIELD_BITS,      // out: `bits` bits from bit `shift` on
  SIM_FIELD_ARRAY,     // out: `count` numbers, one every `stride` bytes
  SIM_FIELD_BYTES,     // out: text or bytes, the rest NUL
};

enum {
  SIM_FLAG_OPTIONAL = 1,   // not written when the device has no such value
  SIM_FLAG_FIXED_KEY = 2,  // `fixedKey` instead of what the request selects
  SIM_FLAG_SIGNED_NA = 4,  // the lowest signed number says "not available"
};

typedef struct SimField {
  uint16_t offset;
  uint16_t width;
  uint8_t type;  // enum SimFieldType
  uint8_t flags;
  uint16_t value;  // enum SimValue
  uint16_t count;
  uint16_t stride;
  uint8_t shift;
  uint8_t bits;
  uint16_t fixedKey;
  uint16_t divisor;  // of a signed number; 0 none
} SimField;

// A list inside a record: a count and rows of one form.
typedef struct SimRows {
  uint16_t countOffset;
  uint16_t countWidth;
  uint16_t countValue;  // enum SimValue
  uint16_t base;
  uint16_t stride;
  uint16_t max;
  const SimField* fields;
  uint32_t fieldCount;
} SimRows;

enum {
  SIM_NEEDS_SABLINK = 1,  // the device has Sablink ports
  SIM_NEEDS_KEY = 2,      // what the request selects must be on this device, else it does not support it
  SIM_BLANK_ONES = 4,     // what no field writes comes back as ones
  SIM_NEEDS_LINK = 8,     // the first key is a link of the device
  SIM_NEEDS_PEER = 16,    // the first key is the misc number of a device
  SIM_OWN_ROWS = 32,      // the action writes the rows
};

enum { SIM_MAX_KEYS = 4 };

// What the request selects.
typedef struct SimSelection {
  uint32_t keys[SIM_MAX_KEYS];
  uint32_t keyCount;
} SimSelection;

// How a call is refused; both 0 when it is not.
typedef struct SimRefusal {
  uint32_t status;  // enum SimStatus
  int error;
} SimRefusal;

struct SimRecord;

// A call of a record on a node while it is answered.
typedef struct SimServing {
  SimImage* image;
  SimCall* call;
  SimNode* node;
  const struct SimRecord* record;
  const SimSelection* selection;
  uint8_t* bytes;
} SimServing;

// What a record does besides its fields, and before them.
typedef SimRefusal (*SimAction)(const SimServing* serving);

typedef struct SimRecord {
  uint32_t request;        // protocol 0: the number that calls it; video engine: the operation
  uint32_t size;           // bytes of payload, or of the whole record in protocol 0
  uint32_t interfaceName;  // 0: that of none by itself
  uint16_t version;
  uint8_t nodes;  // enum SimNodeKind, those that answer
  uint8_t needs;
  uint8_t families;         // a bit for each number of a family that has the record; 0 all
  const uint16_t* further;  // other interfaces that the record serves, 0 at the end; null none
  const SimField* fields;
  const SimRows* rows;
  uint32_t fieldCount;
  SimAction action;  // null: none
} SimRecord;

// Null when there is none.
const SimRecord* simFindRecord1(uint32_t interfaceName, uint32_t version);

// The records of a protocol in a row, for what lists them.
const SimRecord* simRecords1(uint32_t* count);
const SimRecord* simRecords0(uint32_t* count);
const SimRecord* simVpuRecords(uint32_t* count);

// The records that stand for commands to the firmware, one after the other; null behind the last.
const SimRecord* simSmcRecord(uint32_t place);

#ifdef __cplusplus
}
#endif

#endif
