#include "board_data.h"

#include <array>

namespace {

constexpr uint64_t kUnknown = 0xFFFFFFFF;
constexpr uint64_t kDefaultMaxDuty = 255;

// By their codes, from 0 up.
constexpr std::array<uint64_t, 10> kSizesMib{1024,  2048,  4096,  8192,  12288,
                                             16384, 24576, 32768, 49152, 65536};
constexpr std::array<uint64_t, 8> kTransfersMt{3200, 3733, 4266, 12000, 14000, 16000, 18000, 20000};

template <class Change>
Cell changed(const Cell& cell, Change change) {
  Cell made = cell;
  if (cell.kind == SIM_CELL_NUMBER) made.number = change(cell.number);
  for (Cell& step : made.steps) step = changed(step, change);
  return made;
}

uint64_t sizeCode(uint64_t bytes) {
  for (size_t i = 0; i < kSizesMib.size(); ++i) {
    if (bytes <= kSizesMib[i] << 20) return i;
  }
  return kUnknown;
}

// The clock is a part of the transfer rate, in whole megahertz.
uint64_t frequencyCode(uint64_t hertz, uint64_t transfersPerClock) {
  for (size_t i = 0; i < kTransfersMt.size(); ++i) {
    if (kTransfersMt[i] / transfersPerClock * 1000000 == hertz) return i;
  }
  return kUnknown;
}

// The fewest steps of which the percentage, rounded down, is this one.
uint64_t dutyOf(uint64_t percent, uint64_t highest) {
  return (percent * highest + 99) / 100;
}

uint64_t numberAt(const CellMap& cells, SimValue value, uint64_t key, uint64_t otherwise) {
  const auto found = cells.find({static_cast<uint16_t>(value), key});
  return found != cells.end() && found->second.kind == SIM_CELL_NUMBER ? found->second.number : otherwise;
}

void completeFans(CellMap& cells) {
  constexpr uint64_t kUnitBits = uint64_t{0xFFFF} << 16;
  const auto first = cells.lower_bound({SIM_FAN_SPEED, 0});
  CellMap duties;
  for (auto fan = first; fan != cells.end() && fan->first.first == SIM_FAN_SPEED; ++fan) {
    const uint64_t key = fan->first.second;
    if (key != SIM_ANY_KEY && (key & kUnitBits) != 0) continue;
    const uint64_t highest = numberAt(cells, SIM_FAN_DUTY_MAX, key, kDefaultMaxDuty);
    duties[{SIM_FAN_DUTY, key}] = changed(fan->second, [&](uint64_t n) { return dutyOf(n, highest); });
    duties[{SIM_FAN_DUTY_MAX, key}] = Cell{.number = highest};
  }
  // What is there already stays.
  cells.merge(duties);
}

}  // namespace

void completeBoard(Family family, const std::string& modelName, CellMap& cells) {
  const auto keep = [&](SimValue value, const Cell& cell) {
    cells.try_emplace({static_cast<uint16_t>(value), 0}, cell);
  };
  keep(SIM_BOARD_VERSION, Cell{.number = 1});
  keep(SIM_BOARD_NAME, Cell{.kind = SIM_CELL_BLOB, .blob = modelName + " board"});
  keep(SIM_MEMORY_SIZE_INDEX, Cell{.number = sizeCode(numberAt(cells, SIM_MEMORY_TOTAL, 0, ~uint64_t{0}))});
  const uint64_t perClock = family == Family::kWold ? 2 : 8;
  const auto clock = cells.find({SIM_MEMORY_CLOCK_MAX, 0});
  keep(SIM_MEMORY_FREQUENCY_TYPE,
       clock == cells.end() ? Cell{.number = kUnknown} : changed(clock->second, [&](uint64_t hertz) {
         return frequencyCode(hertz, perClock);
       }));
  completeFans(cells);
}
