// Measurements: counters of PCIe and Sablink between a start and a stop, and samples of processes.
#include "sim_actions.h"
#include "sim_cells.h"

enum { kShortestMs = 10, kLongestMs = 60000 };

// ---- counters

static SimSession* findSession(const SimServing* serving, uint32_t kind, uint32_t link, uint32_t id) {
  SimSession* const sessions = SIM_AT(serving->image, SimSession, sessions);
  for (uint32_t i = 0; id && i < serving->image->sessions.count; ++i) {
    const SimSession* const session = &sessions[i];
    const int isMine = session->node == serving->call->node && session->kind == kind && session->link == link;
    if (session->id == id && isMine) return &sessions[i];
  }
  return 0;
}

// Older records end before some of the fields.
static void put(const SimServing* serving, uint32_t at, uint32_t width, uint64_t number) {
  if (at + width <= serving->record->size) simPut(serving->bytes + at, width, number);
}

// Fills id and interval of the start records, which have them at the same place.
static SimRefusal start(const SimServing* serving, uint32_t kind, uint32_t link, uint64_t interval) {
  SimSession* const sessions = SIM_AT(serving->image, SimSession, sessions);
  uint32_t place = 0;
  while (place < serving->image->sessions.count && sessions[place].id) ++place;
  if (place == serving->image->sessions.count) return simRefuse(SIM_OUT_OF_MEMORY);
  sessions[place] = (SimSession){.id = ++serving->image->lastSession,
                                 .kind = kind,
                                 .node = serving->call->node,
                                 .link = link,
                                 .interval = (uint32_t)interval};
  simPut(serving->bytes + 4, 4, sessions[place].id);
  put(serving, 8, 4, interval);
  return simRefuse(SIM_DONE);
}

// A session that is read is an interval further. Bytes follow from the rate, as it is told then.
static SimRefusal advance(const SimServing* serving, SimSession* session, uint32_t rateIn, uint32_t rateOut,
                          uint64_t key, uint32_t samplesAt) {
  if (!session) return simRefuse(SIM_NO_SUCH_OBJECT);
  const uint64_t ms = (uint64_t)++session->samples * session->interval;
  const uint32_t rates[] = {rateIn, rateOut};
  for (uint32_t i = 0; i < 2; ++i) {
    const SimCell* const cell = simFindCell(serving->image, serving->node, rates[i], key);
    const int isKnown = cell && cell->kind == SIM_CELL_NUMBER;
    simPut(serving->bytes + 8 + 8 * i, 8, isKnown ? cell->number * ms / 1000 : ~(uint64_t)0);
  }
  put(serving, samplesAt, 4, session->samples);
  return simRefuse(SIM_DONE);
}

static SimRefusal stop(const SimServing* serving, SimSession* session, uint32_t samplesAt) {
  if (!session) return simRefuse(SIM_NO_SUCH_OBJECT);
  simPut(serving->bytes + samplesAt, 4, session->samples);
  session->id = 0;
  return simRefuse(SIM_DONE);
}

SimRefusal simStartPcie(const SimServing* serving) {
  const uint32_t wanted = serving->selection->keys[0];
  const uint32_t interval = wanted < kShortestMs ? kShortestMs : wanted > kLongestMs ? kLongestMs : wanted;
  return start(serving, SIM_SESSION_PCIE, 0, interval);
}

SimRefusal simReadPcie(const SimServing* serving) {
  SimSession* const session = findSession(serving, SIM_SESSION_PCIE, 0, serving->selection->keys[0]);
  return advance(serving, session, SIM_PCIE_RX_RATE, SIM_PCIE_TX_RATE, 0, 92);
}

SimRefusal simStopPcie(const SimServing* serving) {
  return stop(serving, findSession(serving, SIM_SESSION_PCIE, 0, serving->selection->keys[0]), 4);
}

SimRefusal simStartSablink(const SimServing* serving) {
  const uint64_t interval = simNumberOf(serving->image, serving->node, SIM_SABLINK_PERF_INTERVAL, 100);
  return start(serving, SIM_SESSION_SABLINK, serving->selection->keys[0], interval);
}

SimRefusal simReadSablink(const SimServing* serving) {
  const uint32_t link = serving->selection->keys[0];
  SimSession* const session = findSession(serving, SIM_SESSION_SABLINK, link, serving->selection->keys[1]);
  return advance(serving, session, SIM_SABLINK_RX_RATE, SIM_SABLINK_TX_RATE, link, 40);
}

SimRefusal simStopSablink(const SimServing* serving) {
  const uint32_t link = serving->selection->keys[0];
  return stop(serving, findSession(serving, SIM_SESSION_SABLINK, link, serving->selection->keys[1]), 8);
}

void simEndSessions(SimImage* image, uint32_t node) {
  SimSession* const sessions = SIM_AT(image, SimSession, sessions);
  for (uint32_t i = 0; i < image->sessions.count; ++i) {
    if (sessions[i].node == node) sessions[i].id = 0;
  }
}

// ---- GPU shares of processes

enum { kAsk = 0, kFetch = 2, kContainer = 1 };
enum { kReadyAt = 32, kCountAt = 36, kLastSeenAt = 24 };

typedef struct Place {
  uint16_t offset;
  uint16_t width;
  uint16_t value;
} Place;

static const Place windowPlaces[] = {
    {0, 8, SIM_SAMPLE_WINDOW_START}, {8, 8, SIM_SAMPLE_WINDOW_END}, {16, 8, SIM_SAMPLE_PERIOD}};

static const Place rowPlaces[] = {
    {0, 4, SIM_SAMPLE_PID},      {4, 4, SIM_SAMPLE_KIND},    {8, 8, SIM_SAMPLE_TIMESTAMP},
    {16, 4, SIM_SAMPLE_GPU},     {20, 4, SIM_SAMPLE_MEMORY}, {24, 4, SIM_SAMPLE_ENCODER},
    {28, 4, SIM_SAMPLE_DECODER},
};

static SimRefusal fill(const SimServing* serving, const Place* places, uint32_t count, uint64_t key,
                       uint8_t* bytes) {
  for (uint32_t i = 0; i < count; ++i) {
    uint64_t number;
    const SimRefusal refusal = simReadNumber(serving->image, serving->node, places[i].value, key, 0, &number);
    if (simIsRefused(refusal)) return refusal;
    simPut(bytes + places[i].offset, places[i].width, number);
  }
  return simRefuse(SIM_DONE);
}

static SimRefusal fetchSample(const SimServing* serving) {
  const SimRows* const rows = serving->record->rows;
  const int inContainer = serving->record->version > 1 && serving->selection->keys[1] == kContainer;
  // Read before the window overwrites what lies there.
  const uint64_t lastSeen = simGet(serving->bytes + kLastSeenAt, 8);
  uint64_t total;
  uint32_t given = 0;
  SimRefusal refusal =
      fill(serving, windowPlaces, sizeof windowPlaces / sizeof windowPlaces[0], 0, serving->bytes);
  if (simIsRefused(refusal)) return refusal;
  refusal = simReadNumber(serving->image, serving->node, SIM_SAMPLE_COUNT, 0, 0, &total);
  for (uint32_t i = 0; !simIsRefused(refusal) && i < total && i < 0xffff && given < rows->max; ++i) {
    const uint64_t key = SIM_KEY(0, 0, 0, i);
    uint8_t* const row = serving->bytes + rows->base + given * rows->stride;
    const SimCell* const pid = simFindCell(serving->image, serving->node, SIM_SAMPLE_CONTAINER_PID, key);
    refusal = fill(serving, rowPlaces, sizeof rowPlaces / sizeof rowPlaces[0], key, row);
    if (inContainer && pid) simPut(row, 4, pid->number);
    given += simGet(row + 8, 8) > lastSeen || !lastSeen;
  }
  // A row behind the last one that is delivered may have been begun.
  for (uint32_t i = 0; given < rows->max && i < rows->stride; ++i) {
    serving->bytes[rows->base + given * rows->stride + i] = 0;
  }
  simPut(serving->bytes + kCountAt, 4, given);
  return refusal;
}

SimRefusal simSampleProcesses(const SimServing* serving) {
  const uint32_t phase = serving->selection->keys[0];
  if (phase != kAsk && phase != kFetch) return simRefuse(SIM_BAD_ARGUMENT);
  if (serving->record->version > 1 && serving->selection->keys[1] > kContainer) {
    return simRefuse(SIM_BAD_ARGUMENT);
  }
  SimCell* const asks = simFindExactly(serving->image, serving->node, SIM_SAMPLE_ASKS, 0);
  if (!asks) return simRefuse(SIM_NOT_SUPPORTED);
  if (asks->kind == SIM_CELL_STATUS) return simRefuse((uint32_t)asks->number);
  if (asks->kind == SIM_CELL_ERRNO) return (SimRefusal){0, (int)asks->number};
  if (phase == kAsk) ++asks->position;
  const int isReady = asks->position && asks->position >= asks->number;
  simPut(serving->bytes + kReadyAt, 4, (uint64_t)isReady);
  simPut(serving->bytes + kCountAt, 4, 0);
  if (phase == kAsk || !isReady) return simRefuse(SIM_DONE);
  asks->position = 0;
  return fetchSample(serving);
}
