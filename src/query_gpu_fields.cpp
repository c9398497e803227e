#include "query_gpu_fields.h"

namespace tolk {

namespace {

constexpr QueryGpuField kFields[] = {
    {"timestamp", "The timestamp of when the query was made in format \"YYYY/MM/DD HH:MM:SS.msec\"."},
    {"driver_version", "The version of the installed Orvane display driver."},
    {"count", "The number of Orvane GPUs in the system."},
    {"name", "The official product name of the GPU. This is an alphanumeric string. For all products."},
    {"uuid",
     "This value is the globally unique immutable alphanumeric identifier of the GPU. It does not correspond "
     "to any physical label on the board."},
    {"index", "Zero based index of the GPU. Can change at each boot."},
    {"memory.total", "Total installed GPU memory."},
    {"memory.used", "Total memory allocated by active contexts."},
    {"memory.free", "Total free memory."},
    {"utilization.gpu",
     "Percent of time over the past sample period during which one or more kernels was executing on the "
     "GPU."},
    {"utilization.memory",
     "Percent of time over the past sample period during which global (device) memory was being read or "
     "written."},
    {"temperature.gpu", "Core GPU temperature. in degrees C."},
    {"power.draw", "The last measured power draw for the entire board, in watts."},
    {"clocks.current.gpu", "Current frequency of gpu clock."},
    {"clocks.current.memory", "Current frequency of memory clock."},
    {"clocks.current.vpu", "Current frequency of vpu clock."},
};

}  // namespace

std::span<const QueryGpuField> queryGpuFields() {
  return kFields;
}

}  // namespace tolk
