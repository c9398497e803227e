#pragma once

#include <lumo.h>

#include <ostream>

/// What the library writes into an output, as a text: the fields of a record in their order, with blanks
/// between. Fields that say 0 always, and texts in records that have no NUL, are told as faults.
namespace tolk_test {

void print(std::ostream& out, unsigned number);
void print(std::ostream& out, unsigned long long number);
void print(std::ostream& out, int number);

/// The driver's number of the device, "none" without a handle.
void print(std::ostream& out, LumoDevice* device);
void print(std::ostream& out, const LumoGpu* gpu);
void print(std::ostream& out, const LumoMemory* memory);
void print(std::ostream& out, const LumoVpu* vpu);

void print(std::ostream& out, const LumoPciInfo& info);
void print(std::ostream& out, const LumoPciSlotInfo& slot);
void print(std::ostream& out, const LumoPcieBandWidth& data);
void print(std::ostream& out, const LumoDispIntfSpec& spec);
void print(std::ostream& out, const LumoProcessMemUsage& usage);
void print(std::ostream& out, const LumoProcessGpuUtilization& share);
void print(std::ostream& out, const LumoMpcProfile& profile);
void print(std::ostream& out, const LumoMpcConfiguration& configuration);
void print(std::ostream& out, const LumoSablinkSpec& spec);
void print(std::ostream& out, const LumoSablinkLayout& layout);
void print(std::ostream& out, const LumoSablinkPath& path);
void print(std::ostream& out, const LumoSablinkPerfData& data);
void print(std::ostream& out, const LumoSablinkSerdesStatus& status);
void print(std::ostream& out, const LumoVirtType& type);
void print(std::ostream& out, const LumoVgpuOverCommitInfo& info);
void print(std::ostream& out, const LumoRetiredPage& page);
void print(std::ostream& out, const LumoMemoryEdcCounters& counters);
void print(std::ostream& out, const LumoVpuUtilization& utilization);
void print(std::ostream& out, const LumoVpuSessionMetrics& metrics);
void print(std::ostream& out, const LumoEventData& event);

}  // namespace tolk_test
