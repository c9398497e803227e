// Reads and writes the values of one node. For the sources of the model.
#ifndef SIM_CELLS_H
#define SIM_CELLS_H

#include "sim_records.h"

// What the request selects.
typedef struct SimSelection {
  uint32_t keys[3];
  uint32_t keyCount;
} SimSelection;

// How a call is refused; both 0 when it is not.
typedef struct SimRefusal {
  uint32_t status;  // enum SimStatus
  int error;
} SimRefusal;

// Fills the out fields of `record` at `bytes` and stores its in fields.
SimRefusal simServeRecord(SimImage* image, const SimNode* node, const SimRecord* record,
                          SimSelection* selection, uint8_t* bytes);

// The keys that the request fields of `record` hold.
void simReadSelection(const SimRecord* record, const uint8_t* bytes, SimSelection* selection);

// One number of the node without a key; `otherwise` when it has none.
uint64_t simNumberOf(SimImage* image, const SimNode* node, uint32_t value, uint64_t otherwise);

// Little-endian numbers at any address.
uint64_t simGet(const uint8_t* bytes, uint32_t width);
void simPut(uint8_t* bytes, uint32_t width, uint64_t number);

#endif
