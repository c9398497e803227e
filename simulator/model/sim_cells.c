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

static SimCell* findExactly(SimImage* image, const SimNode* node, uint32_t value, uint64_t key) {
  SimCell* const cells = SIM_AT(image, SimCell, cells) + node->cellFirst;
  uint32_t low = 0;
  uint32_t high = node->cellCount;
  while (low < high) {
    const uint32_t middle = low + (high - low) / 2;
    if (isBefore(&cells[middle], value, key)) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  if (low == node->cellCount || cells[low].value != value || cells[low].key != key) return 0;
  return &cells[low];
}

static SimCell* findCell(SimImage* image, const SimNode* node, uint32_t value, uint64_t key) {
  SimCell* const cell = findExactly(image, node, value, key);
  return cell || valueKeys[value][0] == 0 ? cell : findExactly(image, node, value, SIM_ANY_KEY);
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
  if (cell->kind != SIM_CELL_NA) return cell->number;
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

static SimRefusal refuse(uint32_t status) {
  return (SimRefusal){status, 0};
}

// A value that the device does not have: nothing that was selected, or nothing of the kind at all.
static SimRefusal refuseMissing(const SimRecord* record, const SimField* field) {
  const char first = valueKeys[field->value][0];
  const int selected = first == 'a' && !(record->needs & SIM_NEEDS_KEY);
  return refuse(selected ? SIM_NO_SUCH_OBJECT : SIM_NOT_SUPPORTED);
}

static SimRefusal store(SimImage* image, const SimNode* node, const SimField* field, const uint8_t* from) {
  const uint64_t number = simGet(from, field->width);
  if (field->count && number > field->count) return refuse(SIM_BAD_ARGUMENT);
  SimCell* const cell =
      findCell(image, node, field->value, field->flags & SIM_FLAG_FIXED_KEY ? field->fixedKey : 0);
  if (!cell) return refuse(SIM_NOT_SUPPORTED);
  if (cell->kind == SIM_CELL_STATUS) return refuse((uint32_t)cell->number);
  if (cell->kind == SIM_CELL_ERRNO) return (SimRefusal){0, (int)cell->number};
  __atomic_store_n(&cell->number, number, __ATOMIC_RELAXED);
  __atomic_store_n(&cell->kind, (uint8_t)SIM_CELL_NUMBER, __ATOMIC_RELEASE);
  return refuse(SIM_DONE);
}

static SimRefusal serveFields(SimImage* image, const SimNode* node, const SimRecord* record,
                              const SimField* fields, uint32_t count, const SimSelection* selection,
                              uint32_t row, uint8_t* bytes) {
  const int blank = record->needs & SIM_BLANK_ONES;
  for (uint32_t i = 0; i < count; ++i) {
    const SimField* const field = &fields[i];
    if (field->type == SIM_FIELD_KEY) continue;
    if (field->type == SIM_FIELD_STORE) {
      const SimRefusal refusal = store(image, node, field, bytes + field->offset);
      if (refusal.status || refusal.error) return refusal;
      continue;
    }
    uint64_t key;
    SimCell* const found =
        makeKey(field, selection, row, &key) ? findCell(image, node, field->value, key) : 0;
    if (!found) {
      if (field->flags & SIM_FLAG_OPTIONAL) continue;
      return refuseMissing(record, field);
    }
    const SimCell* const cell = currentOf(image, found);
    if (cell->kind == SIM_CELL_STATUS) return refuse((uint32_t)cell->number);
    if (cell->kind == SIM_CELL_ERRNO) return (SimRefusal){0, (int)cell->number};
    putField(image, field, cell, bytes + field->offset, blank);
  }
  return refuse(SIM_DONE);
}

static SimRefusal serveRows(SimImage* image, const SimNode* node, const SimRecord* record,
                            const SimSelection* selection, uint8_t* bytes) {
  const SimRows* const rows = record->rows;
  const SimField counter = {.offset = rows->countOffset,
                            .width = rows->countWidth,
                            .type = SIM_FIELD_NUMBER,
                            .value = rows->countValue};
  uint8_t* const at = bytes + rows->countOffset;
  SimRefusal refusal = serveFields(image, node, record, &counter, 1, selection, 0, bytes);
  if (refusal.status || refusal.error) return refusal;
  // What does not fit is dropped.
  uint64_t count = simGet(at, rows->countWidth);
  if (count > rows->max) count = rows->max;
  simPut(at, rows->countWidth, count);
  for (uint32_t i = 0; i < count; ++i) {
    refusal = serveFields(image, node, record, rows->fields, rows->fieldCount, selection, i,
                          bytes + rows->base + i * rows->stride);
    if (refusal.status || refusal.error) return refusal;
  }
  return refusal;
}

void simReadSelection(const SimRecord* record, const uint8_t* bytes, SimSelection* selection) {
  selection->keyCount = 0;
  for (uint32_t i = 0; i < record->fieldCount; ++i) {
    const SimField* const field = &record->fields[i];
    if (field->type != SIM_FIELD_KEY) continue;
    selection->keys[selection->keyCount++] = (uint32_t)simGet(bytes + field->offset, field->width);
  }
}

SimRefusal simServeRecord(SimImage* image, const SimNode* node, const SimRecord* record,
                          SimSelection* selection, uint8_t* bytes) {
  const int capable =
      !(record->needs & SIM_NEEDS_SABLINK) || simNumberOf(image, node, SIM_SABLINK_CAPABLE, 0) != 0;
  if (!(record->nodes & node->kind) || !capable) return refuse(SIM_NOT_SUPPORTED);
  if (record->needs & SIM_BLANK_ONES) {
    for (uint32_t i = 0; i < record->size; ++i) bytes[i] = 0xff;
  }
  const SimRefusal refusal =
      serveFields(image, node, record, record->fields, record->fieldCount, selection, 0, bytes);
  if (refusal.status || refusal.error || !record->rows) return refusal;
  return serveRows(image, node, record, selection, bytes);
}

uint64_t simNumberOf(SimImage* image, const SimNode* node, uint32_t value, uint64_t otherwise) {
  SimCell* const cell = findExactly(image, node, value, 0);
  return cell && cell->kind == SIM_CELL_NUMBER ? cell->number : otherwise;
}
