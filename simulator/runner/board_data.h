// What older drivers tell of a board, as it follows from what newer ones tell.
#ifndef BOARD_DATA_H
#define BOARD_DATA_H

#include <string>

#include "host.h"

/// Adds what the description did not say: the codes of memory size and frequency, the board's name, and fan
/// speeds in steps of the controller.
void completeBoard(Family family, const std::string& modelName, CellMap& cells);

#endif
