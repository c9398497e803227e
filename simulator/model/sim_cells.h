// Reads and writes the values of one node. For the sources of the model.
#ifndef SIM_CELLS_H
#define SIM_CELLS_H

#include "sim_records.h"

static inline SimRefusal simRefuse(uint32_t status) {
  return (SimRefusal){status, 0};
}

static inline int simIsRefused(SimRefusal refusal) {
  return refusal.status || refusal.error;
}

// Answers the record on the call's node: runs its action, fills its out fields at `bytes` and stores its
// in fields.
SimRefusal simServeRecord(SimImage* image, SimCall* call, const SimRecord* record,
                          const SimSelection* selection, uint8_t* bytes);

// The keys that the request fields of `record` hold.
void simReadSelection(const SimRecord* record, const uint8_t* bytes, SimSelection* selection);

// The cell of the key, or the one that stands for any key; null when there is none.
SimCell* simFindCell(SimImage* image, const SimNode* node, uint32_t value, uint64_t key);
// That of the key alone, one that has no value yet too.
SimCell* simFindExactly(SimImage* image, const SimNode* node, uint32_t value, uint64_t key);

// A number as a call reads it: a sequence moves on, what refuses refuses. `otherwise` when there is none.
SimRefusal simReadNumber(SimImage* image, const SimNode* node, uint32_t value, uint64_t key,
                         uint64_t otherwise, uint64_t* number);

// One number of the node as it is, without a key; `otherwise` when it has none.
uint64_t simNumberOf(SimImage* image, const SimNode* node, uint32_t value, uint64_t otherwise);

// As a call stores it: refused when the node has no such value or the value refuses.
SimRefusal simStore(SimImage* image, const SimNode* node, uint32_t value, uint64_t key, uint64_t number);

void simSetNumber(SimCell* cell, uint64_t number);

// Back to what the description says, or a setting that was made to stay.
void simRestore(SimCell* cell);

// All cells of a value, to go through them: the first, and how many there are.
SimCell* simCellsOf(SimImage* image, const SimNode* node, uint32_t value, uint32_t* count);

// Little-endian numbers at any address.
uint64_t simGet(const uint8_t* bytes, uint32_t width);
void simPut(uint8_t* bytes, uint32_t width, uint64_t number);

#endif
