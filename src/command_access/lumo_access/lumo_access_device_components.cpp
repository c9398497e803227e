#include <array>
#include <cstddef>
#include <utility>

#include "command_access/lumo_access/lumo_access_device.h"
#include "command_access/lumo_access/lumo_call.h"

namespace tolk {

namespace {

/// The most session slots of one kind: 16 cores with 36 each.
constexpr std::size_t kMaxSessions = 576;

constexpr unsigned kEccOff = 0;
constexpr unsigned kEccOn = 1;

/// The one kind of ECC counter.
constexpr unsigned kInlineCounter = 1;

template <class Function>
LumoReturn querySessionStates(const LumoEntry<Function>& entry, SessionStates& out, LumoVpu* vpu) {
  std::array<unsigned, kMaxSessions> states;
  states.fill(LUMO_NOT_AVAILABLE);
  const LumoReturn ret = callLumo(entry, vpu, states.data(), static_cast<unsigned>(states.size()));
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  out.clear();
  for (std::uint32_t session = 0; session < states.size(); ++session) {
    if (states[session] != LUMO_NOT_AVAILABLE) out.emplace_hint(out.end(), session, states[session]);
  }
  return ret;
}

}  // namespace

LumoReturn LumoAccessDevice::gpuGetUtilization(std::uint32_t& utilization) const {
  return queryLumo(LUMO_ENTRY(lumoGpuGetUtilization), utilization, modules_.gpu);
}

LumoReturn LumoAccessDevice::gpuGetTemperature(std::int32_t& temperature) const {
  return queryLumo(LUMO_ENTRY(lumoGpuGetTemperature), temperature, modules_.gpu);
}

LumoReturn LumoAccessDevice::gpuGetClock(std::uint32_t& megahertz) const {
  return queryLumo(LUMO_ENTRY(lumoGpuGetClock), megahertz, modules_.gpu);
}

LumoReturn LumoAccessDevice::gpuGetMaxClock(std::uint32_t& megahertz) const {
  return queryLumo(LUMO_ENTRY(lumoGpuGetMaxClock), megahertz, modules_.gpu);
}

LumoReturn LumoAccessDevice::gpuReset() {
  return callLumo(LUMO_ENTRY(lumoGpuReset), modules_.gpu);
}

LumoReturn LumoAccessDevice::gpuHwrCountsReset() {
  return callLumo(LUMO_ENTRY(lumoGpuResetHwErrorCounts), modules_.gpu);
}

LumoReturn LumoAccessDevice::gpuGetThermalSlowdownStatistics(std::uint32_t& count,
                                                             std::uint32_t& totalTimeMs) const {
  return queryLumoPair(LUMO_ENTRY(lumoGpuGetThermalSlowdownStatistics), count, totalTimeMs, modules_.gpu);
}

LumoReturn LumoAccessDevice::vpuGetUtilization(LumoVpuUtilization& utilization) const {
  return queryLumo(LUMO_ENTRY(lumoVpuGetUtilization), utilization, modules_.vpu);
}

LumoReturn LumoAccessDevice::vpuGetClock(std::uint32_t& megahertz) const {
  return queryLumo(LUMO_ENTRY(lumoVpuGetClock), megahertz, modules_.vpu);
}

LumoReturn LumoAccessDevice::vpuGetMaxClock(std::uint32_t& megahertz) const {
  return queryLumo(LUMO_ENTRY(lumoVpuGetMaxClock), megahertz, modules_.vpu);
}

LumoReturn LumoAccessDevice::vpuGetCodecCapacity(std::uint32_t& encode, std::uint32_t& decode) const {
  return queryLumoPair(LUMO_ENTRY(lumoVpuGetCodecCapacity), encode, decode, modules_.vpu);
}

LumoReturn LumoAccessDevice::vpuGetEncoderSessionStates(SessionStates& states) const {
  return querySessionStates(LUMO_ENTRY(lumoVpuGetEncoderSessionStates), states, modules_.vpu);
}

LumoReturn LumoAccessDevice::vpuGetEncoderSessionMetrics(std::uint32_t session,
                                                         LumoVpuSessionMetrics& metrics) const {
  return queryLumo(LUMO_ENTRY(lumoVpuGetEncoderSessionMetrics), metrics, modules_.vpu, session);
}

LumoReturn LumoAccessDevice::vpuGetDecoderSessionStates(SessionStates& states) const {
  return querySessionStates(LUMO_ENTRY(lumoVpuGetDecoderSessionStates), states, modules_.vpu);
}

LumoReturn LumoAccessDevice::vpuGetDecoderSessionMetrics(std::uint32_t session,
                                                         LumoVpuSessionMetrics& metrics) const {
  return queryLumo(LUMO_ENTRY(lumoVpuGetDecoderSessionMetrics), metrics, modules_.vpu, session);
}

LumoReturn LumoAccessDevice::memoryGetTotal(unsigned long long& totalBytes) const {
  return queryLumo(LUMO_ENTRY(lumoMemoryGetTotal), totalBytes, modules_.memory);
}

LumoReturn LumoAccessDevice::memoryGetUsed(unsigned long long& usedBytes) const {
  return queryLumo(LUMO_ENTRY(lumoMemoryGetUsed), usedBytes, modules_.memory);
}

LumoReturn LumoAccessDevice::memoryGetUtilization(std::uint32_t& utilization) const {
  return queryLumo(LUMO_ENTRY(lumoMemoryGetUtilization), utilization, modules_.memory);
}

LumoReturn LumoAccessDevice::memoryGetClock(std::uint32_t& megahertz) const {
  return queryLumo(LUMO_ENTRY(lumoMemoryGetClock), megahertz, modules_.memory);
}

LumoReturn LumoAccessDevice::memoryGetMaxClock(std::uint32_t& megahertz) const {
  return queryLumo(LUMO_ENTRY(lumoMemoryGetMaxClock), megahertz, modules_.memory);
}

LumoReturn LumoAccessDevice::memoryGetBandwidth(std::uint32_t& bandwidth) const {
  return queryLumo(LUMO_ENTRY(lumoMemoryGetBandwidth), bandwidth, modules_.memory);
}

LumoReturn LumoAccessDevice::memoryGetSpeed(std::uint32_t& speed) const {
  return queryLumo(LUMO_ENTRY(lumoMemoryGetSpeed), speed, modules_.memory);
}

LumoReturn LumoAccessDevice::memoryGetType(std::uint32_t& type) const {
  return queryLumo(LUMO_ENTRY(lumoMemoryGetType), type, modules_.memory);
}

LumoReturn LumoAccessDevice::memoryGetBusWidth(std::uint32_t& bits) const {
  return queryLumo(LUMO_ENTRY(lumoMemoryGetBusWidth), bits, modules_.memory);
}

LumoReturn LumoAccessDevice::memoryGetVendor(std::string& vendor) const {
  return queryLumoText<kTextSize>(LUMO_ENTRY(lumoMemoryGetVendor), vendor, modules_.memory);
}

LumoReturn LumoAccessDevice::memoryGetEccMode(std::uint32_t& current, std::uint32_t& pending) const {
  return queryLumoPair(LUMO_ENTRY(lumoMemoryGetEccMode), current, pending, modules_.memory);
}

LumoReturn LumoAccessDevice::memoryGetEccErrorCounter(EccErrorCounts& counts) const {
  EccErrorCounts found;
  for (unsigned i = 0; i < found.size(); ++i) {
    unsigned long long count = 0;
    const LumoReturn ret = queryLumo(LUMO_ENTRY(lumoMemoryGetEccErrorCounter), count, modules_.memory, i % 2,
                                     kInlineCounter, i / 2);
    if (ret != LUMO_RETURN_SUCCESS) return ret;
    found[i] = std::to_string(count);
  }
  counts = std::move(found);
  return LUMO_RETURN_SUCCESS;
}

LumoReturn LumoAccessDevice::memoryEnableEccMode() {
  return callLumo(LUMO_ENTRY(lumoMemorySetEccMode), modules_.memory, kEccOn);
}

LumoReturn LumoAccessDevice::memoryDisableEccMode() {
  return callLumo(LUMO_ENTRY(lumoMemorySetEccMode), modules_.memory, kEccOff);
}

LumoReturn LumoAccessDevice::memoryGetRetiredPagesPendingStatus(bool& pending) const {
  unsigned status = 0;
  const LumoReturn ret =
      queryLumo(LUMO_ENTRY(lumoMemoryGetRetiredPagesPendingStatus), status, modules_.memory);
  if (ret == LUMO_RETURN_SUCCESS) pending = status != 0;
  return ret;
}

LumoReturn LumoAccessDevice::memoryCountRetiredPages(std::uint32_t& singleBit,
                                                     std::uint32_t& doubleBit) const {
  return queryLumoPair(LUMO_ENTRY(lumoMemoryGetRetiredPagesCount), singleBit, doubleBit, modules_.memory);
}

LumoReturn LumoAccessDevice::memoryGetRetiredPages(std::vector<LumoRetiredPage>& pages) const {
  std::array<std::uint32_t, 2> counts{};
  LumoReturn ret =
      queryLumoPair(LUMO_ENTRY(lumoMemoryGetRetiredPagesCount), counts[LUMO_RETIREMENT_SINGLE_BIT],
                    counts[LUMO_RETIREMENT_DOUBLE_BIT], modules_.memory);
  std::vector<LumoRetiredPage> found(std::size_t{counts[0]} + counts[1]);
  auto* next = found.data();
  for (unsigned cause = 0; cause < counts.size() && ret == LUMO_RETURN_SUCCESS; ++cause) {
    if (counts[cause] == 0) continue;
    ret = callLumo(LUMO_ENTRY(lumoMemoryGetRetiredPages), modules_.memory, cause, counts[cause], next);
    next += counts[cause];
  }
  if (ret == LUMO_RETURN_SUCCESS) pages = std::move(found);
  return ret;
}

}  // namespace tolk
