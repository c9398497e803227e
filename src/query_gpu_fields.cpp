#include "query_gpu_fields.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

#include "command_access/lumo_access/lumo_access_device.h"
#include "command_access/lumo_access/lumo_access_system.h"
#include "command_access/value_text.h"
#include "common_define.h"

namespace tolk {

namespace {

using Text = std::optional<std::string>;

/// `what` says which value could not be had.
Text failed(const char* what, LumoReturn ret) {
  TOLK_LOG(kError) << "thread " << ::gettid() << what << ret;
  return std::nullopt;
}

std::string asText(std::string value) {
  return value;
}
std::string asText(std::uint32_t value) {
  return std::to_string(value);
}
std::string asText(std::int32_t value) {
  return std::to_string(value);
}

/// Bytes as MiB.
std::string asText(unsigned long long bytes) {
  return std::to_string(bytes / kMib);
}

/// Watts.
std::string asText(double value) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.2f", value);
  return text.data();
}

/// One value of the device.
template <class Value>
Text query(const QueryGpuSource& gpu, LumoReturn (LumoAccessDevice::*method)(Value&) const,
           const char* failure) {
  Value value{};
  const LumoReturn ret = (gpu.device.*method)(value);
  return ret == LUMO_RETURN_SUCCESS ? asText(value) : failed(failure, ret);
}

Text getTimestamp(const QueryGpuSource&) {
  return localTimeMsText(std::chrono::system_clock::now());
}

Text getDriverVersion(const QueryGpuSource& gpu) {
  std::string version;
  const LumoReturn ret = gpu.system.getDriverVersion(version);
  if (ret == LUMO_RETURN_SUCCESS) return version;
  TOLK_LOG(kError) << "lumoSystemGetDriverVersion() failed, ret = " << ret;
  return failed(" get driver version failed, errorcode is ", ret);
}

Text getCount(const QueryGpuSource& gpu) {
  return asText(gpu.deviceCount);
}

Text getDeviceName(const QueryGpuSource& gpu) {
  return query(gpu, &LumoAccessDevice::devGetName, " get device name failed, errorcode is ");
}

Text getDeviceUuid(const QueryGpuSource& gpu) {
  return query(gpu, &LumoAccessDevice::devGetUUID, " get device uuid failed, errorcode is ");
}

Text getDeviceIndex(const QueryGpuSource& gpu) {
  return query(gpu, &LumoAccessDevice::devGetIndex, " get device index failed, errorcode is ");
}

Text getMemoryTotal(const QueryGpuSource& gpu) {
  return query(gpu, &LumoAccessDevice::memoryGetTotal, " get total memory failed, errorcode is ");
}

Text getMemoryUsed(const QueryGpuSource& gpu) {
  return query(gpu, &LumoAccessDevice::memoryGetUsed, " get used memory failed, errorcode is ");
}

Text getMemoryFree(const QueryGpuSource& gpu) {
  unsigned long long totalBytes = 0;
  unsigned long long usedBytes = 0;
  const LumoReturn totalRet = gpu.device.memoryGetTotal(totalBytes);
  const LumoReturn usedRet = gpu.device.memoryGetUsed(usedBytes);
  if (totalRet != LUMO_RETURN_SUCCESS || usedRet != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "thread " << ::gettid() << " get total memory error code " << totalRet
                     << " used memory error code " << usedRet;
    return std::nullopt;
  }
  // A driver that counts more than there is has left nothing, which is no reason to print 2^44 MiB.
  return asText(totalBytes - std::min(usedBytes, totalBytes));
}

Text getGpuUtilization(const QueryGpuSource& gpu) {
  return query(gpu, &LumoAccessDevice::gpuGetUtilization, " get gpu utilization failed, errorcode is ");
}

Text getMemoryUtilization(const QueryGpuSource& gpu) {
  return query(gpu, &LumoAccessDevice::memoryGetUtilization, " get memory utilization failed, errorcode is ");
}

Text getTemperature(const QueryGpuSource& gpu) {
  return query(gpu, &LumoAccessDevice::gpuGetTemperature, " get gpu temperature failed, errorcode is ");
}

Text getPower(const QueryGpuSource& gpu) {
  return query(gpu, &LumoAccessDevice::getPowerUsage, " get current power failed, errorcode is ");
}

Text getGpuClock(const QueryGpuSource& gpu) {
  return query(gpu, &LumoAccessDevice::gpuGetClock, " get gpu clock failed, errorcode is ");
}

Text getMemoryClock(const QueryGpuSource& gpu) {
  return query(gpu, &LumoAccessDevice::memoryGetClock, " get memory clock failed, errorcode is ");
}

Text getVpuClock(const QueryGpuSource& gpu) {
  return query(gpu, &LumoAccessDevice::vpuGetClock, " get vpu clock failed, errorcode is ");
}

constexpr QueryGpuField kFields[] = {
    {"timestamp", "The timestamp of when the query was made in format \"YYYY/MM/DD HH:MM:SS.msec\".",
     getTimestamp},
    {"driver_version", "The version of the installed Orvane display driver.", getDriverVersion},
    {"count", "The number of Orvane GPUs in the system.", getCount},
    {"name", "The official product name of the GPU. This is an alphanumeric string. For all products.",
     getDeviceName},
    {"uuid",
     "This value is the globally unique immutable alphanumeric identifier of the GPU. It does not correspond "
     "to any physical label on the board.",
     getDeviceUuid},
    {"index", "Zero based index of the GPU. Can change at each boot.", getDeviceIndex},
    {"memory.total", "Total installed GPU memory.", getMemoryTotal},
    {"memory.used", "Total memory allocated by active contexts.", getMemoryUsed},
    {"memory.free", "Total free memory.", getMemoryFree},
    {"utilization.gpu",
     "Percent of time over the past sample period during which one or more kernels was executing on the "
     "GPU.",
     getGpuUtilization},
    {"utilization.memory",
     "Percent of time over the past sample period during which global (device) memory was being read or "
     "written.",
     getMemoryUtilization},
    {"temperature.gpu", "Core GPU temperature. in degrees C.", getTemperature},
    {"power.draw", "The last measured power draw for the entire board, in watts.", getPower},
    {"clocks.current.gpu", "Current frequency of gpu clock.", getGpuClock},
    {"clocks.current.memory", "Current frequency of memory clock.", getMemoryClock},
    {"clocks.current.vpu", "Current frequency of vpu clock.", getVpuClock},
};

struct UnitRow {
  std::string_view part;
  std::string_view unit;
};

/// The first row whose part stands in the name counts.
constexpr UnitRow kUnits[] = {
    {"memory.", " [MiB]"},
    {"utilization.", " [%]"},
    {"power.", " [W]"},
    {"clocks.", " [MHz]"},
};

}  // namespace

std::span<const QueryGpuField> queryGpuFields() {
  return kFields;
}

const QueryGpuField* findQueryGpuField(std::string_view name) {
  const auto found = std::ranges::find(kFields, name, &QueryGpuField::name);
  return found == std::end(kFields) ? nullptr : found;
}

std::string_view queryGpuUnit(std::string_view fieldName) {
  const auto found = std::ranges::find_if(
      kUnits, [fieldName](const UnitRow& row) { return fieldName.find(row.part) != std::string_view::npos; });
  return found == std::end(kUnits) ? std::string_view{} : found->unit;
}

}  // namespace tolk
