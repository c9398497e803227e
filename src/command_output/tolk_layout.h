#pragma once

#include <array>
#include <cstddef>

namespace tolk {

/// One column of a row: its title in the header and the key of its value in a device or process. A cell
/// without a key shows its title in both.
struct Cell {
  std::size_t width = 0;
  const char* title = "";
  const char* key = nullptr;
  bool alignRight = false;
};

/// Cells left over are empty and of no width, so they show nothing.
using Row = std::array<Cell, 8>;

/// Widths of the summary's columns, in characters. A rule has one more than `total`.
struct ColumnWidths {
  std::size_t total;
  std::size_t id, name, pcie, gpu, mem;
  std::size_t deviceType, perf;  ///< 0 where they are not shown
  std::size_t gpuId, pid, processName, gpuMemoryUsage;
};

inline constexpr ColumnWidths kNormalWidths{.total = 68,
                                            .id = 5,
                                            .name = 21,
                                            .pcie = 20,
                                            .gpu = 6,
                                            .mem = 16,
                                            .deviceType = 14,
                                            .perf = 7,
                                            .gpuId = 5,
                                            .pid = 14,
                                            .processName = 36,
                                            .gpuMemoryUsage = 13};

inline constexpr ColumnWidths kWideWidths{.total = 76,
                                          .id = 5,
                                          .name = 29,
                                          .pcie = 20,
                                          .gpu = 6,
                                          .mem = 16,
                                          .deviceType = 18,
                                          .perf = 11,
                                          .gpuId = 5,
                                          .pid = 18,
                                          .processName = 36,
                                          .gpuMemoryUsage = 17};

inline constexpr ColumnWidths kGuestWidths{.total = 69,
                                           .id = 5,
                                           .name = 22,
                                           .pcie = 20,
                                           .gpu = 6,
                                           .mem = 15,
                                           .deviceType = 0,
                                           .perf = 0,
                                           .gpuId = 5,
                                           .pid = 10,
                                           .processName = 36,
                                           .gpuMemoryUsage = 11};

/// The shape of the whole summary.
struct TolkLayout {
  std::size_t total;
  std::array<Row, 3> deviceRows;
  std::size_t deviceRowCount;
  Row processRow;
};

inline constexpr Cell kBar{.title = "|"};

constexpr Row firstDeviceRow(const ColumnWidths& w) {
  return {{{w.id, "ID", "index"},
           {w.name, "Name", "Name"},
           kBar,
           {w.pcie, "PCIe", "PCIe"},
           kBar,
           {w.gpu, "%GPU", "%GPU"},
           {w.mem, "Mem", "MEM"}}};
}

constexpr Row processRow(const ColumnWidths& w) {
  return {{{w.gpuId, "ID", "GPU ID"},
           {w.pid, "PID", "PID"},
           {w.processName, "Process name", "Process name"},
           {w.gpuMemoryUsage, "GPU Memory", "GPU Memory Usage", true}}};
}

constexpr TolkLayout hostLayout(const ColumnWidths& w) {
  return {w.total,
          {{firstDeviceRow(w),
            {{{w.id},
              {w.deviceType, "Device Type", "DeviceType"},
              {w.perf, "Perf", "Perf"},
              kBar,
              {w.pcie, "Pcie Lane Width", "Pcie Lane Width"},
              kBar,
              {w.gpu, "Temp", "Temp"},
              {w.mem, "MPC Capable", "MPC Capable"}}},
            {{{1 + w.id + w.name + w.pcie}, kBar, {w.gpu}, {w.mem, "ECC Mode", "ECC Mode"}}}}},
          3,
          processRow(w)};
}

/// A guest sees neither sensors nor what its host's GPU can do.
constexpr TolkLayout guestLayout(const ColumnWidths& w) {
  return {w.total,
          {{firstDeviceRow(w),
            {{{w.id},
              {w.name, "Device Type", "DeviceType"},
              kBar,
              {w.pcie, "Pcie Lane Width", "Pcie Lane Width"},
              kBar}}}},
          2,
          processRow(w)};
}

inline constexpr TolkLayout kNormalLayout = hostLayout(kNormalWidths);
inline constexpr TolkLayout kWideLayout = hostLayout(kWideWidths);
inline constexpr TolkLayout kGuestLayout = guestLayout(kGuestWidths);

}  // namespace tolk
