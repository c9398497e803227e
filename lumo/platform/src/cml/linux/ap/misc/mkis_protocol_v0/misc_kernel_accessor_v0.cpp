#include "linux/ap/misc/mkis_protocol_v0/misc_kernel_accessor_v0.h"

#include <span>

#include "common/pcie_config_space.h"
#include "kelp_log.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_records.h"
#include "linux/ap/misc/status_record.h"

namespace kelp::linux_ {

template <class Record, class Read>
auto MiscKernelAccessorV0::query(std::string_view subject, Read read) const
    -> Stated<decltype(read(Record{}))> {
  Record record{};
  if (const KelpReturn state = access(fd(), record); state != KelpReturn::kSuccess) {
    KELP_LOG(kError) << std::string("failed to query ").append(subject).append(", access error is ") << state;
    return state;
  }
  return read(record);
}

MkisStated<RemoteList> MiscKernelAccessorV0::mkisList(const MkisProbe& probe) {
  return fetchMkisList(probe.interfaceCount,
                       [this](MkiMkisList& page) { return access(fd(), page) == KelpReturn::kSuccess; });
}

VersionMap<Operation<GpuStatus>> MiscKernelAccessorV0::doQueryGpuStatus() {
  return {{0, [this] { return doQueryGpuStatusV0(); }}, {1, [this] { return doQueryGpuStatusV1(); }}};
}
VersionMap<Operation<MemoryUsage>> MiscKernelAccessorV0::doQueryMemUsage() {
  return {{0, [this] { return doQueryMemUsageV0(); }}};
}
VersionMap<Operation<ProcessMemoryMap>> MiscKernelAccessorV0::doQueryProcMemState() {
  return {{0, [this] { return queryProcMemState<MkiGetProcessLevelMemV0>(); }},
          {1, [this] { return queryProcMemState<MkiGetProcessLevelMemV1>(); }},
          {2, [this] { return queryProcMemState<MkiGetProcessLevelMemV2>(); }}};
}
VersionMap<Operation<PcieInfo>> MiscKernelAccessorV0::doQueryPciConfigData() {
  return {{0, [this] { return doQueryPciConfigDataV0(); }}};
}

Stated<GpuStatus> MiscKernelAccessorV0::doQueryGpuStatusV0() const {
  return query<MkiGetDeviceStatusV0>("gpu status", [](const auto& reply) { return readGpuStatus(reply); });
}

Stated<GpuStatus> MiscKernelAccessorV0::doQueryGpuStatusV1() const {
  return query<MkiGetDeviceStatusV1>("gpu status", [](const auto& reply) { return readGpuStatus(reply); });
}

Stated<MemoryUsage> MiscKernelAccessorV0::doQueryMemUsageV0() const {
  return query<MkiGetDeviceMemUsageV0>("memory usage", [](const auto& reply) {
    MemoryUsage usage = readMemoryUsage(reply);
    usage.systemTotal = unlessAllOnes<unsigned long>(u64{reply.systemTotal});
    usage.guestReserved = unlessAllOnes<unsigned long>(u64{reply.guestReserved});
    return usage;
  });
}

template <class Record>
Stated<ProcessMemoryMap> MiscKernelAccessorV0::queryProcMemState() const {
  return query<Record>("process memory", [](const auto& reply) { return readProcessMemory(reply); });
}

Stated<PcieInfo> MiscKernelAccessorV0::doQueryPciConfigDataV0() const {
  return query<MkiGetPciConfigSpaceV0>("pci configuration space", [](const auto& reply) {
    return PcieConfigSpace(reply.configSpace).decode();
  });
}

}  // namespace kelp::linux_
