// What older drivers tell of the board in one piece: memory, GPU and displays.
#ifndef SIM_BOARD_H
#define SIM_BOARD_H

#include "sim_records.h"

enum {
  SIM_BOARD_INTERFACE = 57,
  SIM_BOARD_SIZE = 616,
  SIM_BOARD_HEAD_SIZE = 24,  // without display rows and name
  SIM_BOARD_FIELDS = 12,
  SIM_BOARD_HEAD_FIELDS = 11,
};

// Offsets count from the start of the board data. The head comes first, the name last.
extern const SimField simBoardFields[SIM_BOARD_FIELDS];
extern const SimRows simBoardRows;
extern const SimRows simBoardRowsShort;  // of the form that ends behind five rows

// The other interfaces that the board data serve, and those that need a shared buffer for what they tell.
extern const uint16_t simBoardInterfaces[];
extern const uint16_t simBufferInterfaces[];

#endif
