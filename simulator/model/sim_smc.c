// Commands to the board's firmware, on drivers that have no records for them. One request carries all: a word
// in front tells the command, the argument follows, and the reply takes its place with a status before it.
#include "sim_actions.h"
#include "sim_board.h"
#include "sim_call.h"
#include "sim_cells.h"
#include "sim_record_rows.h"

enum {
  kRecordSize = 264,
  kArgumentAt = 8,
  kStatusAt = 8,
  kValuesAt = 12,
  kScratchAt = 512,  // in the call's buffer: what is not answered at its own place
};

// A command as a family of chips has it.
typedef struct SmcForm {
  uint8_t command;
  uint8_t length;        // that the word in front tells
  uint8_t lastKey;       // of values that have a key behind what the argument selects
  uint8_t isShared;      // the reply goes into the shared buffer
  uint16_t scratchSize;  // the fields count from the start of what is told, so many bytes; 0: of the record
  SimRecord record;
} SmcForm;

enum { kAll = kWold | kFen | kTor1, kNewer = kFen | kTor1 };

static const SimField dutyFields[] = {IN_KEY(8, 4), OUT(12, 4, FAN_DUTY), OUT(16, 4, FAN_DUTY_MAX)};
static const SimField clockFields[] = {IN_KEY(8, 4), OUT(12, 4, CLOCK)};
static const SimField fanCountFields[] = {OUT(12, 4, FAN_COUNT)};
static const SimField limitFields[] = {OUT_SIGNED(12, 4, TEMPERATURE_SLOWDOWN),
                                       OUT_SIGNED(16, 4, TEMPERATURE_SHUTDOWN)};
static const SimField degreeFields[] = {IN_KEY(8, 4), OUT_DIVIDED(12, 4, TEMPERATURE, 1000)};
static const SimField temperatureFields[] = {IN_KEY(8, 4), OUT(12, 4, TEMPERATURE)};
static const SimField fanSpeedFields[] = {IN_KEY(8, 4), OUT(12, 4, FAN_SPEED)};
static const SimField voltageFields[] = {IN_KEY(8, 4), OUT(12, 4, VOLTAGE)};
static const SimField powerFields[] = {IN_KEY(8, 4), OUT(12, 4, POWER)};
static const SimField memoryTemperatureFields[] = {OUT(12, 4, MEMORY_TEMPERATURE)};
static const SimField firmwareFields[] = {OUT_ARRAY(12, 4, 6, FIRMWARE)};
static const SimField efuseFields[] = {IN_LIMIT(12, 4, 1024), OUT(12, 4, EFUSE_START), OUT(16, 4, EFUSE_BITS),
                                       OUT_ARRAY(20, 4, 32, EFUSE_WORDS)};
static const SimField edcRow[] = {
    OUT(0, 4, EDC_READ_ERRORS),
    OUT(4, 4, EDC_WRITE_ERRORS),
    OUT(8, 4, EDC_READ_RETRIES),
    OUT(12, 4, EDC_WRITE_RETRIES),
};
ROWS(edcRows, 0, 4, EDC_CHANNELS, 4, 16, 24, edcRow);

#define RECORD_OF(name, chips, table)                                                              \
  {                                                                                                \
    .interfaceName = name, .families = chips, .size = kRecordSize, .nodes = kAny, .fields = table, \
    .fieldCount = COUNT_OF(table)                                                                  \
  }
#define COMMAND(number, words, chips, name, table) \
  { .command = number, .length = words, .record = RECORD_OF(name, chips, table) }

static const SmcForm forms[] = {
    COMMAND(0x57, 0x04, kAll, 54, dutyFields),
    COMMAND(0x47, 0x04, kAll, 51, clockFields),
    {.command = 0x7D,
     .length = 0x1A,
     .scratchSize = SIM_BOARD_HEAD_SIZE,
     .record = {.interfaceName = SIM_BOARD_INTERFACE,
                .further = simBoardInterfaces,
                .families = kWold,
                .size = SIM_BOARD_HEAD_SIZE,
                .nodes = kAny,
                .fields = simBoardFields,
                .fieldCount = SIM_BOARD_HEAD_FIELDS}},
    {.command = 0x7D,
     .length = 0x04,
     .isShared = 1,
     .scratchSize = SIM_BOARD_SIZE,
     .record = {.interfaceName = SIM_BOARD_INTERFACE,
                .further = simBoardInterfaces,
                .families = kFen,
                .size = SIM_BOARD_SIZE,
                .nodes = kAny,
                .fields = simBoardFields,
                .fieldCount = SIM_BOARD_FIELDS,
                .rows = &simBoardRows}},
    {.command = 0x1C,
     .length = 0x04,
     .isShared = 1,
     .scratchSize = 388,
     .record = {.interfaceName = 64, .families = kAll, .size = 388, .nodes = kAny, .rows = &edcRows}},
    COMMAND(0x43, 0x02, kAll, 53, fanCountFields),
    COMMAND(0x58, 0x0C, kAll, 66, limitFields),
    COMMAND(0x50, 0x03, kWold, 56, degreeFields),
    COMMAND(0x50, 0x03, kNewer, 56, temperatureFields),
    {.command = 0x51, .length = 0x03, .lastKey = 1, .record = RECORD_OF(54, kAll, fanSpeedFields)},
    COMMAND(0x56, 0x03, kAll, 65, voltageFields),
    COMMAND(0x53, 0x03, kAll, 55, powerFields),
    COMMAND(0x17, 0x32, kAll, 63, memoryTemperatureFields),
    COMMAND(0x0B, 0x15, kAll, 52, firmwareFields),
    COMMAND(0x08, 0x0E, kWold, 62, efuseFields),
    COMMAND(0x08, 0x23, kNewer, 62, efuseFields),
};
_Static_assert(COUNT_OF(forms) <= SIM_SMC_FORMS, "a node counts attempts of each form");

const SimRecord* simSmcRecord(uint32_t place) {
  return place < COUNT_OF(forms) ? &forms[place].record : 0;
}

static uint64_t wordOf(const SmcForm* form) {
  enum { kTarget = 2, kSource = 2 };
  return (uint64_t)form->command << 5 | (uint64_t)kTarget << 24 | (uint64_t)kSource << 29 |
         (uint64_t)form->length << 45;
}

// The form of the node's chip, or another one's when that has none.
static const SmcForm* findForm(SimImage* image, const SimCall* call) {
  const SmcForm* found = 0;
  for (uint32_t i = 0; i < COUNT_OF(forms); ++i) {
    if (forms[i].command != call->command) continue;
    if (simOffers0(image, call, &forms[i].record)) return &forms[i];
    if (!found) found = &forms[i];
  }
  return found;
}

static int isBusy(SimImage* image, const SimCall* call, const SmcForm* form) {
  uint32_t* const attempts = &simNodeOf(image, call)->attempts[form - forms];
  if (*attempts < image->busyAttempts) return ++*attempts != 0;
  if (image->busyAgain) *attempts = 0;
  return 0;
}

// What the firmware tells, in the record or in `scratch`.
static SimRefusal serveForm(SimImage* image, SimCall* call, const SmcForm* form, uint8_t* scratch,
                            uint32_t* buffer) {
  SimSelection selection;
  simReadSelection(&form->record, call->buffer, &selection);
  selection.keys[selection.keyCount++] = form->lastKey;
  if (!form->scratchSize) return simServeRecord(image, call, &form->record, &selection, call->buffer);
  const uint64_t handle = simGet(call->buffer + kArgumentAt, 4);
  const SimRefusal refusal =
      form->isShared ? simFindBuffer(call, handle, form->scratchSize, buffer) : simRefuse(SIM_DONE);
  if (simIsRefused(refusal)) return refusal;
  for (uint32_t i = 0; i < form->scratchSize; ++i) scratch[i] = 0;
  return simServeRecord(image, call, &form->record, &selection, scratch);
}

// Brings the told bytes to where the caller looks for them. 0, or an errno.
static int deliver(SimCall* call, const SmcForm* form, const SimCallFault* fault, uint8_t* scratch,
                   uint32_t buffer) {
  if (fault->hasCount && form->record.rows) {
    simPut(scratch + form->record.rows->countOffset, form->record.rows->countWidth, fault->count);
  }
  if (!form->isShared) {
    for (uint32_t i = 0; i < form->scratchSize; ++i) call->buffer[kValuesAt + i] = scratch[i];
    return 0;
  }
  if (fault->ones) {
    for (uint32_t i = 0; i < form->scratchSize; ++i) scratch[i] = 0xff;
  }
  const int isShort = fault->hasShort && fault->shortTo < form->scratchSize;
  return call->buffers->fill(call, buffer, scratch, isShort ? (size_t)fault->shortTo : form->scratchSize)
             ? SIM_EFAULT
             : 0;
}

int simAnswerSmc(SimImage* image, SimCall* call) {
  SimCallFault fault = {0};
  call->kind = SIM_CALL_SMC;
  call->isUnexpected = 1;
  if (simReadRecord(call, kRecordSize)) return call->error;
  const uint64_t word = simGet(call->buffer, 8);
  call->command = (uint8_t)(word >> 5 & 0x7f);
  const SmcForm* const form = findForm(image, call);
  const int isOffered = form && simOffers0(image, call, &form->record);
  if (form) {
    call->hasInterface = 1;
    call->interfaceName = form->record.interfaceName;
    call->version = 0;
    // The length selects nothing: one that is not of the form is answered, and still not as it should be.
    call->isUnexpected = !isOffered || word != wordOf(form);
  }
  if (simStartFaults(image, call, &fault)) return call->error;
  if (!isOffered) return simFail(call, SIM_ENOTTY);
  if (isBusy(image, call, form)) return simFail(call, SIM_EAGAIN);

  uint8_t* const scratch = call->buffer + kScratchAt;
  uint32_t buffer = 0;
  SimRefusal refusal = serveForm(image, call, form, scratch, &buffer);
  if (fault.hasStatus) refusal = simRefuse(fault.status);
  if (refusal.error) return simFail(call, refusal.error);
  call->status = refusal.status;
  simPut(call->buffer + kStatusAt, 4, refusal.status);
  if (refusal.status) return simWriteRecord(call, kRecordSize);
  const int error = form->scratchSize ? deliver(call, form, &fault, scratch, buffer) : 0;
  return error ? simFail(call, error) : simWriteReply(call, &fault, kValuesAt, kRecordSize);
}
