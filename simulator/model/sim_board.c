#include "sim_board.h"

#include "sim_record_rows.h"

const SimField simBoardFields[SIM_BOARD_FIELDS] = {
    OUT(0, 4, BOARD_VERSION),   OUT(4, 4, MEMORY_SIZE_INDEX), OUT(8, 4, MEMORY_FREQUENCY_TYPE),
    OUT(12, 1, MEMORY_TYPE),    OUT(13, 1, MEMORY_VENDOR),    OUT(14, 1, CHANNEL_COUNT),
    OUT(15, 1, CHANNEL_WIDTH),  OUT(16, 1, CORE_COUNT),       OUT_ARRAY(17, 1, 1, UNITS_PER_CORE),
    OUT(18, 2, CORE_CLOCK_MAX), OUT(20, 1, CLUSTER_COUNT),    OUT_BYTES(152, 64, BOARD_NAME),
};

static const SimField displayRow[] = {
    OUT(0, 4, DISPLAY_TYPE),
    OUT(4, 4, DISPLAY_H_RES),
    OUT(8, 4, DISPLAY_V_RES),
    OUT(12, 4, DISPLAY_PIXEL_CLOCK),
};

#define DISPLAY_ROWS(limit)                                                                           \
  {                                                                                                   \
    .countOffset = 22, .countWidth = 2, .countValue = SIM_DISPLAY_COUNT, .base = SIM_BOARD_HEAD_SIZE, \
    .stride = 16, .max = limit, .fields = displayRow, .fieldCount = COUNT_OF(displayRow)              \
  }
const SimRows simBoardRows = DISPLAY_ROWS(8);
const SimRows simBoardRowsShort = DISPLAY_ROWS(5);

const uint16_t simBoardInterfaces[] = {60, 61, 0};
const uint16_t simBufferInterfaces[] = {SIM_BOARD_INTERFACE, 60, 61, 64, 0};
