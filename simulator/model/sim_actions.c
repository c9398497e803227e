// Resets and settings: what changes more than the value of one field.
#include "sim_actions.h"

#include "sim_cells.h"

// Limits by kind, as records select them.
enum { kRequested = 1, kEnforced = 2, kLowest = 4, kHighest = 5 };

enum { kVolatile = 0, kSablinkErrorKinds = 6, kCauses = 2 };

// Groups of the hardware error counters, a bit each.
enum { kReplayBit = 1, kSablinkBit = 2, kEdcBit = 4, kEccBit = 8, kThermalBit = 16 };

// Parts of a key, in the order of the request's fields.
static uint32_t partOf(uint64_t key, uint32_t place) {
  return (uint32_t)(key >> (16 * place)) & 0xffff;
}

SimRefusal simRefuseWhileOthersOpen(const SimServing* serving) {
  SimCall* const call = serving->call;
  return simRefuse(call->othersOpen && call->othersOpen(call, serving->node->owner) ? SIM_BUSY : SIM_DONE);
}

// Numbers of a value back to 0: all, or those whose part of the key at `place` is `part`.
static void clearNumbers(const SimServing* serving, uint32_t value, int place, uint32_t part) {
  uint32_t count;
  SimCell* const cells = simCellsOf(serving->image, serving->node, value, &count);
  for (uint32_t i = 0; i < count; ++i) {
    const int isCounter = cells[i].kind == SIM_CELL_NUMBER || cells[i].kind == SIM_CELL_STEPS;
    const int isMeant =
        place < 0 || cells[i].key == SIM_ANY_KEY || partOf(cells[i].key, (uint32_t)place) == part;
    if (isCounter && isMeant) simSetNumber(&cells[i], 0);
  }
}

static void restoreAll(const SimServing* serving, uint32_t value) {
  uint32_t count;
  SimCell* const cells = simCellsOf(serving->image, serving->node, value, &count);
  for (uint32_t i = 0; i < count; ++i) simRestore(&cells[i]);
}

SimRefusal simClearCounts(const SimServing* serving) {
  const uint32_t mask = serving->selection->keys[0];
  if (mask & kReplayBit) clearNumbers(serving, SIM_PCIE_REPLAYS, -1, 0);
  if (mask & kSablinkBit) clearNumbers(serving, SIM_SABLINK_ERRORS, -1, 0);
  if (mask & kEccBit) clearNumbers(serving, SIM_ECC_ERRORS, 2, kVolatile);
  if (mask & kThermalBit) {
    clearNumbers(serving, SIM_SLOWDOWN_COUNT, -1, 0);
    clearNumbers(serving, SIM_SLOWDOWN_TIME, -1, 0);
  }
  if (mask & kEdcBit) {
    static const uint16_t rows[] = {SIM_EDC_READ_ERRORS, SIM_EDC_WRITE_ERRORS, SIM_EDC_READ_RETRIES,
                                    SIM_EDC_WRITE_RETRIES};
    for (uint32_t i = 0; i < sizeof rows / sizeof rows[0]; ++i) clearNumbers(serving, rows[i], -1, 0);
    SimCell* const total = simFindExactly(serving->image, serving->node, SIM_EDC_TOTAL, 0);
    if (total && total->kind == SIM_CELL_BLOB) simSetNumber(total, 0);
  }
  return simRefuse(SIM_DONE);
}

SimRefusal simClearEcc(const SimServing* serving) {
  const uint32_t kind = serving->selection->keys[0];
  uint32_t count;
  simCellsOf(serving->image, serving->node, SIM_ECC_ERRORS, &count);
  if (!count) return simRefuse(SIM_NOT_SUPPORTED);
  if (kind > 1) return simRefuse(SIM_BAD_ARGUMENT);
  clearNumbers(serving, SIM_ECC_ERRORS, 2, kind);
  return simRefuse(SIM_DONE);
}

SimRefusal simResetLink(const SimServing* serving) {
  const uint32_t link = serving->selection->keys[0];
  uint64_t ignored;
  const SimRefusal refusal =
      simReadNumber(serving->image, serving->node, SIM_SABLINK_RESET, link, 0, &ignored);
  if (!simIsRefused(refusal)) clearNumbers(serving, SIM_SABLINK_ERRORS, 0, link);
  return refusal;
}

SimRefusal simDropEvents(const SimServing* serving) {
  serving->call->dropsEvents = 1;
  return simRefuse(SIM_DONE);
}

SimRefusal simSetPowerLimit(const SimServing* serving) {
  const uint32_t limit = serving->selection->keys[0];
  const uint32_t persistent = serving->selection->keys[1];
  SimImage* const image = serving->image;
  SimCell* const requested = simFindCell(image, serving->node, SIM_POWER_LIMIT, kRequested);
  const SimCell* const lowest = simFindExactly(image, serving->node, SIM_POWER_LIMIT, kLowest);
  const SimCell* const highest = simFindExactly(image, serving->node, SIM_POWER_LIMIT, kHighest);
  const int tooLow = lowest && lowest->kind == SIM_CELL_NUMBER && limit < lowest->number;
  const int tooHigh = highest && highest->kind == SIM_CELL_NUMBER && limit > highest->number;
  if (persistent > 1 || tooLow || tooHigh) return simRefuse(SIM_BAD_ARGUMENT);
  const SimRefusal refusal = simStore(image, serving->node, SIM_POWER_LIMIT, kRequested, limit);
  if (simIsRefused(refusal)) return refusal;
  SimCell* const enforced = simFindExactly(image, serving->node, SIM_POWER_LIMIT, kEnforced);
  const int follows = enforced && enforced->kind == SIM_CELL_NUMBER;
  if (follows) simSetNumber(enforced, limit);
  if (persistent) {
    requested->initial = limit;
    requested->initialKind = SIM_CELL_NUMBER;
    if (follows) enforced->initial = limit;
  }
  return refusal;
}

SimRefusal simResetGpu(const SimServing* serving) {
  restoreAll(serving, SIM_PSTATE);
  simEndSessions(serving->image, serving->call->node);
  return simRefuse(SIM_DONE);
}

// ---- pages that wait for the reset

// A pending page becomes a retired one of its cause: from each value to the other.
static const struct {
  uint16_t pending;
  uint16_t retired;
} pageValues[] = {
    {SIM_RETIRING_ADDRESS, SIM_RETIRED_ADDRESS}, {SIM_RETIRING_TIMESTAMP, SIM_RETIRED_TIMESTAMP},
    {SIM_RETIRING_CAUSE, SIM_RETIRED_CAUSE},     {SIM_RETIRING_LOCATION, SIM_RETIRED_LOCATION},
    {SIM_RETIRING_ERRORS, SIM_RETIRED_ERRORS},   {SIM_RETIRING_LAST_ERROR, SIM_VALUE_COUNT},
};
enum { kPageValues = sizeof pageValues / sizeof pageValues[0] };

static void retirePage(const SimServing* serving, uint32_t index) {
  SimImage* const image = serving->image;
  const SimCell* const causeCell = simFindExactly(image, serving->node, SIM_RETIRING_CAUSE, index);
  const uint64_t cause = causeCell ? causeCell->number : 0;
  SimCell* const counter = simFindExactly(image, serving->node, SIM_RETIRED_COUNT, cause);
  if (cause >= kCauses || !counter) return;
  const uint64_t place = counter->number;
  for (uint32_t i = 0; i < kPageValues; ++i) {
    SimCell* const from = simFindExactly(image, serving->node, pageValues[i].pending, index);
    SimCell* const to =
        pageValues[i].retired == SIM_VALUE_COUNT
            ? 0
            : simFindExactly(image, serving->node, pageValues[i].retired, SIM_KEY(cause, place, 0, 0));
    if (from && to) simSetNumber(to, from->number);
    if (from) from->kind = SIM_CELL_NONE;
  }
  simSetNumber(counter, place + 1);
}

static void retirePending(const SimServing* serving) {
  SimCell* const pending = simFindExactly(serving->image, serving->node, SIM_RETIRING_COUNT, 0);
  if (!pending || pending->kind != SIM_CELL_NUMBER) return;
  for (uint32_t i = 0; i < pending->number; ++i) retirePage(serving, i);
  simSetNumber(pending, 0);
}

SimRefusal simResetDevice(const SimServing* serving) {
  const SimRefusal refusal = simRefuseWhileOthersOpen(serving);
  if (simIsRefused(refusal)) return refusal;
  SimCell* const ecc = simFindExactly(serving->image, serving->node, SIM_ECC_CURRENT, 0);
  const uint64_t pending = simNumberOf(serving->image, serving->node, SIM_ECC_PENDING, ~(uint64_t)0);
  if (ecc && ecc->kind == SIM_CELL_NUMBER && pending != ~(uint64_t)0) simSetNumber(ecc, pending);
  retirePending(serving);
  clearNumbers(serving, SIM_ECC_ERRORS, 2, kVolatile);
  clearNumbers(serving, SIM_SABLINK_ERRORS, -1, 0);
  restoreAll(serving, SIM_PSTATE);
  restoreAll(serving, SIM_POWER_LIMIT);
  simEndSessions(serving->image, serving->call->node);
  return refusal;
}
