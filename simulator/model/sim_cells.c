#include "sim_cells.h"

#include "sim_model.h"

static const char* const valueKeys[] = {
#define SIM_VALUE(id, name, type, keys) keys,
#include "sim_values.def"
#undef SIM_VALUE
};

uint64_t simGet(const uint8_t* bytes, uint32_t width) {
  uint64_t number = 0;
  for (uint32_t i = width; i > 0; --i) number = number << 8 | bytes[i - 1];
  return number;
}

void simPut(uint8_t* bytes, uint32_t width, uint64_t number) {
  for (uint32_t i = 0; i < width; ++i, number >>= 8) bytes[i] = (uint8_t)number;
}

static int isBefore(const SimCell* cell, uint32_t value, uint64_t key) {
  return cell->value < value || (cell->value == value && cell->key < key);
}

// The first cell that is not before it, counted from the node's first.
static uint32_t placeOf(const SimCell* cells, uint32_t count, uint32_t value, uint64_t key) {
  uint32_t low = 0;
  uint32_t high = count;
  while (low < high) {
    const uint32_t middle = low + (high - low) / 2;
    if (isBefore(&cells[middle], value, key)) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low;
}

SimCell* simFindExactly(SimImage* image, const SimNode* node, uint32_t value, uint64_t key) {
  SimCell* const cells = SIM_AT(image, SimCell, cells) + node->cellFirst;
  const uint32_t place = placeOf(cells, node->cellCount, value, key);
  return place < node->cellCount && cells[place].value == value && cells[place].key == key ? &cells[place]
                                                                                           : 0;
}

SimCell* simFindCell(SimImage* image, const SimNode* node, uint32_t value, uint64_t key) {
  SimCell* const cell = simFindExactly(image, node, value, key);
  if (cell) return cell->kind == SIM_CELL_NONE ? 0 : cell;
  return valueKeys[value][0] == 0 ? 0 : simFindExactly(image, node, value, SIM_ANY_KEY);
}

SimCell* simCellsOf(SimImage* image, const SimNode* node, uint32_t value, uint32_t* count) {
  SimCell* const cells = SIM_AT(image, SimCell, cells) + node->cellFirst;
  const uint32_t first = placeOf(cells, node->cellCount, value, 0);
  uint32_t end = first;
  while (end < node->cellCount && cells[end].value == value) ++end;
  *count = end - first;
  return &cells[first];
}

void simSetNumber(SimCell* cell, uint64_t number) {
  cell->changed = 1;
  __atomic_store_n(&cell->number, number, __ATOMIC_RELAXED);
  __atomic_store_n(&cell->kind, (uint8_t)SIM_CELL_NUMBER, __ATOMIC_RELEASE);
}

void simRestore(SimCell* cell) {
  cell->number = cell->initial;
  cell->kind = cell->initialKind;
  cell->position = 0;
}

// The cell to answer from: a sequence moves on by one step.
static const SimCell* currentOf(SimImage* image, SimCell* cell) {
  if (cell->kind != SIM_CELL_STEPS) return cell;
  const SimCell* const steps = SIM_AT(image, SimCell, steps) + cell->offset;
  const uint32_t position = __atomic_fetch_add(&cell->position, 1, __ATOMIC_RELAXED);
  if (cell->cycle) return &steps[position % cell->length];
  return &steps[position < cell->length ? position : cell->length - 1];
}

// 0 when a part of the key is too large for any value to have it.
static int makeKey(const SimField* field, const SimSelection* selection, uint32_t row, uint64_t* key) {
  *key = 0;
  if (field->flags & SIM_FLAG_FIXED_KEY) {
    *key = field->fixedKey;
    return 1;
  }
  for (const char* letter = valueKeys[field->value]; *letter; ++letter) {
    const uint32_t place = *letter == 'r' ? 3 : (uint32_t)(*letter - 'a');
    const uint32_t part = place == 3 ? row : place < selection->keyCount ? selection->keys[place] : 0;
    if (part > 0xffff) return 0;
    *key |= (uint64_t)part << (16 * place);
  }
  return 1;
}

static uint64_t numberFor(const SimField* field, const SimCell* cell) {
  if (cell->kind != SIM_CELL_NA) {
    return field->divisor ? (uint64_t)((int64_t)cell->number / field->divisor) : cell->number;
  }
  return field->flags & SIM_FLAG_SIGNED_NA ? (uint64_t)1 << (8 * field->width - 1) : ~(uint64_t)0;
}

static void putArray(SimImage* image, const SimField* field, const SimCell* cell, uint8_t* to, int blank) {
  const uint8_t* const from = (const uint8_t*)image + cell->offset;
  const uint32_t held = cell->length / 4;
  for (uint32_t i = 0; i < field->count; ++i, to += field->stride) {
    if (i < held) {
      simPut(to, field->width, simGet(from + 4 * i, 4));
    } else if (!blank) {
      simPut(to, field->width, 0);
    }
  }
}

static void putBytes(SimImage* image, const SimField* field, const SimCell* cell, uint8_t* to) {
  const uint8_t* const from = (const uint8_t*)image + cell->offset;
  for (uint32_t i = 0; i < field->width; ++i) to[i] = i < cell->length ? from[i] : 0;
}

static void putField(SimImage* image, const SimField* field, const SimCell* cell, uint8_t* to, int blank) {
  switch (field->type) {
    case SIM_FIELD_NUMBER:
      simPut(to, field->width, numberFor(field, cell));
      break;
    case SIM_FIELD_BITS: {
      const uint64_t mask = ((uint64_t)1 << field->bits) - 1;
      const uint64_t others = simGet(to, field->width) & ~(mask << field->shift);
      simPut(to, field->width, others | (numberFor(field, cell) & mask) << field->shift);
      break;
    }
    case SIM_FIELD_ARRAY:
      if (cell->kind == SIM_CELL_BLOB) {
        putArray(image, field, cell, to, blank);
      } else {
        for (uint32_t i = 0; i < field->count; ++i) {
          simPut(to + i * field->stride, field->width, numberFor(field, cell));
        }
      }
      break;
    case SIM_FIELD_BYTES:
      putBytes(image, field, cell, to);
      break;
    default:
      break;
  }
}

// A value that the device does not have: nothing that was selected, or nothing of the kind at all.
static SimRefusal refuseMissing(const SimRecord* record, const SimField* field) {
  const char first = valueKeys[field->value][0];
  const int selected = first == 'a' && !(record->needs & SIM_NEEDS_KEY);
  return simRefuse(selected ? SIM_NO_SUCH_OBJECT : SIM_NOT_SUPPORTED);
}

// What a cell that refuses refuses with; nothing for all others.
static SimRefusal refusalOf(const SimCell* cell) {
  if (cell->kind == SIM_CELL_STATUS) return simRefuse((uint32_t)cell->number);
  if (cell->kind == SIM_CELL_ERRNO) return (SimRefusal){0, (int)cell->number};
  return simRefuse(SIM_DONE);
}

SimRefusal simStore(SimImage* image, const SimNode* node, uint32_t value, uint64_t key, uint64_t number) {
  SimCell* const cell = simFindCell(image, node, value, key);
  if (!cell) return simRefuse(SIM_NOT_SUPPORTED);
  const SimRefusal refusal = refusalOf(cell);
  if (!simIsRefused(refusal)) simSetNumber(cell, number);
  return refusal;
}

SimRefusal simReadNumber(SimImage* image, const SimNode* node, uint32_t value, uint64_t key,
                         uint64_t otherwise, uint64_t* number) {
  SimCell* const found = simFindCell(image, node, value, key);
  *number = otherwise;
  if (!found) return simRefuse(SIM_DONE);
  const SimCell* const cell = currentOf(image, found);
  *number = cell->kind == SIM_CELL_NA ? ~(uint64_t)0 : cell->number;
  return refusalOf(cell);
}

// In fields that say what to do; the rest selects.
static SimRefusal takeField(const SimServing* serving, const SimField* field) {
  const uint64_t number = simGet(serving->bytes + field->offset, field->width);
  if (field->type == SIM_FIELD_CONSTANT) {
    return simRefuse(number == field->count ? SIM_DONE : SIM_BAD_ARGUMENT);
  }
  if (field->count && number > field->count) return simRefuse(SIM_BAD_ARGUMENT);
  if (field->type == SIM_FIELD_LIMIT) return simRefuse(SIM_DONE);
  return simStore(serving->image, serving->node, field->value, 0, number);
}

// `bytes` is where the fields count from: the record, or a row of it.
static SimRefusal serveFields(const SimServing* serving, const SimField* fields, uint32_t count, uint32_t row,
                              uint8_t* bytes) {
  const int blank = serving->record->needs & SIM_BLANK_ONES;
  for (uint32_t i = 0; i < count; ++i) {
    const SimField* const field = &fields[i];
    if (field->type == SIM_FIELD_KEY) continue;
    SimRefusal refusal;
    if (field->type < SIM_FIELD_NUMBER) {
      refusal = takeField(serving, field);
      if (simIsRefused(refusal)) return refusal;
      continue;
    }
    uint64_t key;
    SimCell* const found = makeKey(field, serving->selection, row, &key)
                               ? simFindCell(serving->image, serving->node, field->value, key)
                               : 0;
    if (!found) {
      if (field->flags & SIM_FLAG_OPTIONAL) continue;
      return refuseMissing(serving->record, field);
    }
    const SimCell* const cell = currentOf(serving->image, found);
    refusal = refusalOf(cell);
    if (simIsRefused(refusal)) return refusal;
    putField(serving->image, field, cell, bytes + field->offset, blank);
  }
  return simRefuse(SIM_DONE);
}

static SimRefusal serveRows(const SimServing* serving) {
  const SimRows* const rows = serving->record->rows;
  const SimField counter = {.offset = rows->countOffset,
                            .width = rows->countWidth,
                            .type = SIM_FIELD_NUMBER,
                            .value = rows->countValue};
  uint8_t* const at = serving->bytes + rows->countOffset;
  SimRefusal refusal = serveFields(serving, &counter, 1, 0, serving->bytes);
  if (simIsRefused(refusal)) return refusal;
  // What does not fit is dropped.
  uint64_t count = simGet(at, rows->countWidth);
  if (count > rows->max) count = rows->max;
  simPut(at, rows->countWidth, count);
  for (uint32_t i = 0; i < count; ++i) {
    refusal = serveFields(serving, rows->fields, rows->fieldCount, i,
                          serving->bytes + rows->base + i * rows->stride);
    if (simIsRefused(refusal)) return refusal;
  }
  return refusal;
}

void simReadSelection(const SimRecord* record, const uint8_t* bytes, SimSelection* selection) {
  *selection = (SimSelection){{0}, 0};
  for (uint32_t i = 0; i < record->fieldCount; ++i) {
    const SimField* const field = &record->fields[i];
    if (field->type != SIM_FIELD_KEY) continue;
    selection->keys[selection->keyCount++] = (uint32_t)simGet(bytes + field->offset, field->width);
  }
}

static int isDevice(SimImage* image, uint32_t miscNumber) {
  const SimNode* const nodes = SIM_AT(image, SimNode, nodes);
  for (uint32_t i = 0; i < image->nodes.count; ++i) {
    const int isMisc = nodes[i].kind < SIM_NODE_RENDER;
    if (isMisc && nodes[i].number == miscNumber && nodes[i].present) return 1;
  }
  return 0;
}

// Whether this node has what the record is about.
static SimRefusal checkNeeds(const SimServing* serving) {
  const uint8_t needs = serving->record->needs;
  const uint32_t first = serving->selection->keys[0];
  if (!(serving->record->nodes & serving->node->kind)) return simRefuse(SIM_NOT_SUPPORTED);
  if (needs & SIM_NEEDS_SABLINK && !simNumberOf(serving->image, serving->node, SIM_SABLINK_CAPABLE, 0)) {
    return simRefuse(SIM_NOT_SUPPORTED);
  }
  if (needs & SIM_NEEDS_LINK && first >= simNumberOf(serving->image, serving->node, SIM_SABLINK_LINKS, 0)) {
    return simRefuse(SIM_NO_SUCH_OBJECT);
  }
  if (needs & SIM_NEEDS_PEER && !isDevice(serving->image, first)) return simRefuse(SIM_NO_SUCH_OBJECT);
  return simRefuse(SIM_DONE);
}

SimRefusal simServeRecord(SimImage* image, SimCall* call, const SimRecord* record,
                          const SimSelection* selection, uint8_t* bytes) {
  const SimServing serving = {image,  call,      SIM_AT(image, SimNode, nodes) + call->node,
                              record, selection, bytes};
  SimRefusal refusal = checkNeeds(&serving);
  if (simIsRefused(refusal)) return refusal;
  if (record->needs & SIM_BLANK_ONES) {
    for (uint32_t i = 0; i < record->size; ++i) bytes[i] = 0xff;
  }
  if (record->action) refusal = record->action(&serving);
  if (simIsRefused(refusal)) return refusal;
  refusal = serveFields(&serving, record->fields, record->fieldCount, 0, bytes);
  if (simIsRefused(refusal) || !record->rows || record->needs & SIM_OWN_ROWS) return refusal;
  return serveRows(&serving);
}

uint64_t simNumberOf(SimImage* image, const SimNode* node, uint32_t value, uint64_t otherwise) {
  const SimCell* const cell = simFindExactly(image, node, value, 0);
  return cell && cell->kind == SIM_CELL_NUMBER ? cell->number : otherwise;
}
