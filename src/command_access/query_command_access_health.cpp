#include <string>

#include "command_access/query_command_access.h"
#include "command_access/query_command_access_rows.h"
#include "common_define.h"

namespace tolk {

namespace {

/// Inline ECC. Its counters and retired pages mean something only while it is on.
struct EccMode {
  bool known = false;
  bool on = false;
  bool pendingOn = false;
};

EccMode readEccMode(const LumoAccessDevice& device) {
  std::uint32_t current = 0;
  std::uint32_t pending = 0;
  const bool known = device.memoryGetEccMode(current, pending) == LUMO_RETURN_SUCCESS;
  return {known, known && current == 1, known && pending == 1};
}

const char* onOff(bool known, bool on) {
  if (!known) return kNoValue;
  return on ? "ON" : "OFF";
}

LumoReturn readThermalSlowdowns(const ReportSection& section, ReportRow::Texts& texts) {
  std::uint32_t count = 0;
  std::uint32_t totalTimeMs = 0;
  const LumoReturn ret = section.device.gpuGetThermalSlowdownStatistics(count, totalTimeMs);
  texts[0] = std::to_string(count);
  return ret;
}

LumoReturn readPerformanceState(const ReportSection& section, ReportRow::Texts& texts) {
  std::uint32_t state = 0;
  const LumoReturn ret = section.device.deviceGetPerfState(state);
  texts[0] = std::string("P").append(std::to_string(state));
  return ret;
}

constexpr ReportRow kPerformanceRows[] = {
    {.path = "Performance State", .read = readPerformanceState},
};

constexpr ReportRow kThermalRows[] = {
    {.path = "Thermal Slowdown Stats/Count", .read = readThermalSlowdowns},
};

}  // namespace

LumoReturn QueryCommandAccess::queryEcc(const LumoAccessDevice& device, Json& document) {
  TOLK_LOG(kTrace);
  ReportSection section(device, document);
  if (section.status() != LUMO_RETURN_SUCCESS) return section.status();

  const bool hasEcc = section.architecture() >= kEccArchitecture;
  const EccMode mode = hasEcc ? readEccMode(device) : EccMode{};
  EccErrorCounts counts;
  counts.fill(kNoValue);
  if (mode.on) device.memoryGetEccErrorCounter(counts);

  section.put("ECC Mode/EDC", onOff(hasEcc, true));
  section.put("ECC Mode/On-die", onOff(hasEcc, true));
  section.put("ECC Mode/Inline/Current", onOff(mode.known, mode.on));
  section.put("ECC Mode/Inline/Pending", onOff(mode.known, mode.pendingOn));
  section.put("ECC Errors/Inline/Volatile/DRAM Correctable", counts[0]);
  section.put("ECC Errors/Inline/Volatile/DRAM Uncorrectable", counts[1]);
  section.put("ECC Errors/Inline/Aggregate/DRAM Correctable", counts[2]);
  section.put("ECC Errors/Inline/Aggregate/DRAM Uncorrectable", counts[3]);
  return LUMO_RETURN_SUCCESS;
}

LumoReturn QueryCommandAccess::queryRetiredPage(const LumoAccessDevice& device, Json& document) {
  TOLK_LOG(kTrace);
  ReportSection section(device, document);
  if (section.status() != LUMO_RETURN_SUCCESS) return section.status();

  std::uint32_t singleBit = 0;
  std::uint32_t doubleBit = 0;
  const bool counted =
      readEccMode(device).on && device.memoryCountRetiredPages(singleBit, doubleBit) == LUMO_RETURN_SUCCESS;
  bool pending = false;
  const bool pendingKnown =
      counted && device.memoryGetRetiredPagesPendingStatus(pending) == LUMO_RETURN_SUCCESS;
  section.put("Retired Pages/Inline/Single Bit ECC", counted ? std::to_string(singleBit) : kNoValue);
  section.put("Retired Pages/Inline/Double Bit ECC", counted ? std::to_string(doubleBit) : kNoValue);
  section.put("Retired Pages/Inline/Pending Page Blacklist", pendingKnown ? reportText(pending) : kNoValue);
  return LUMO_RETURN_SUCCESS;
}

LumoReturn QueryCommandAccess::queryPerfState(const LumoAccessDevice& device, Json& document) {
  TOLK_LOG(kTrace);
  return queryRows(kPerformanceRows, device, document);
}

LumoReturn QueryCommandAccess::queryThermalSlowdownCnt(const LumoAccessDevice& device, Json& document) {
  TOLK_LOG(kTrace);
  return queryRows(kThermalRows, device, document);
}

}  // namespace tolk
