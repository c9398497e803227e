#pragma once

#include <initializer_list>
#include <string_view>

#include "linux/ap/misc/misc_kernel_accessor_base.h"

namespace kelp::linux_ {

/// Protocol 0, for older drivers: every record is a request of its own, without header and status.
/// Interfaces that this protocol lacks keep the base's empty slots. Those that it has but that are not
/// served yet list their versions without an operation: a driver that lacks one must read as such, and not
/// as one that speaks another protocol.
class MiscKernelAccessorV0 : public MiscKernelAccessorBase {
 public:
  using MiscKernelAccessorBase::MiscKernelAccessorBase;

  MkisStated<RemoteList> mkisList(const MkisProbe& probe) override;

  VersionMap<Operation<GpuStatus>> doQueryGpuStatus() override;
  VersionMap<Operation<MemoryUsage>> doQueryMemUsage() override;
  VersionMap<Operation<ProcessMemoryMap>> doQueryProcMemState() override;
  VersionMap<Operation<PcieInfo>> doQueryPciConfigData() override;

#define NOT_SERVED(name, ...)                                  \
  VersionsOf<MiscMkisIntfName::k##name> do##name() override {  \
    return unserved<MiscMkisIntfName::k##name>({__VA_ARGS__}); \
  }
  NOT_SERVED(QueryDevDesc, 0)
  NOT_SERVED(QueryMpcProfList, 0)
  NOT_SERVED(QueryMpcConfList, 0)
  NOT_SERVED(QueryMpcInstList, 0)
  NOT_SERVED(QueryMpcParent, 0)
  NOT_SERVED(QueryMpcProf, 0)
  NOT_SERVED(QuerySmcFwVersion, 0)
  NOT_SERVED(QueryTemper, 0)
  NOT_SERVED(QueryDdrCap, 0)
  NOT_SERVED(QueryEfuseData, 0)
  NOT_SERVED(QueryInfoRom, 0)
  NOT_SERVED(QueryEccMode, 0)
  NOT_SERVED(QueryP2pStatus, 0)
  NOT_SERVED(QueryMpcConf, 0)
  NOT_SERVED(SetMpcConf, 0)
  NOT_SERVED(SetMpcSwitch, 0)
  NOT_SERVED(StartPciePerf, 0, 1)
  NOT_SERVED(QueryPciePerfData, 0, 1)
  NOT_SERVED(StopPciePerf, 0)
  NOT_SERVED(QueryPcieReplayCounter, 0)
  NOT_SERVED(QueryProcGpuUtil, 0)
  NOT_SERVED(ResetGpu, 0)
  NOT_SERVED(ResetGpuHwErrorCounts, 0)
  NOT_SERVED(ResetDeviceEventMsgs, 0)
  NOT_SERVED(ResetDevice, 0)
  NOT_SERVED(QuerySablinkSpec, 1)
  NOT_SERVED(QuerySablinkCapStatus, 1)
  NOT_SERVED(QuerySablinkState, 1)
  NOT_SERVED(QuerySablinkErrCounter, 1, 2)
  NOT_SERVED(ResetSablinkErrCounter, 1)
  NOT_SERVED(QuerySablinkLayouts, 1)
  NOT_SERVED(QuerySablinkRemoteDev, 1)
  NOT_SERVED(QuerySablinkShortestPaths, 1)
  NOT_SERVED(StartSablinkPerf, 0)
  NOT_SERVED(QuerySablinkPerfData, 0)
  NOT_SERVED(StopSablinkPerf, 0)
  NOT_SERVED(QuerySablinkSerdesStatus, 0)
  NOT_SERVED(QueryClock, 0)
  NOT_SERVED(QueryMemEdc, 0)
  NOT_SERVED(QueryFanChnlCount, 0)
  NOT_SERVED(QueryFanSpeed, 0)
  NOT_SERVED(QueryPower, 0)
  NOT_SERVED(QueryVoltage, 0)
  NOT_SERVED(QueryMemoryTemperature, 0)
  NOT_SERVED(QueryGpuCap, 0)
  NOT_SERVED(QueryPcieSlotInfo, 0)
  NOT_SERVED(QueryDisplayInterfaceSpec, 0)
  NOT_SERVED(QueryVgpuUtil, 0)
  NOT_SERVED(QueryVgpuMemInfo, 0)
  NOT_SERVED(QueryTemperatureLimitInfo, 0)
  NOT_SERVED(QueryEccRetiredPagesCnt, 0)
  NOT_SERVED(QueryEccRetiredPagesInfo, 0)
  NOT_SERVED(QueryEccRetiredPagesPendingInfo, 0)
  NOT_SERVED(SetEccMode, 0)
#undef NOT_SERVED

 private:
  template <MiscMkisIntfName Name>
  static VersionsOf<Name> unserved(std::initializer_list<std::uint32_t> versions) {
    VersionsOf<Name> slot;
    for (const std::uint32_t version : versions) {
      slot.try_emplace(version);
    }
    return slot;
  }

  Stated<GpuStatus> doQueryGpuStatusV0() const;
  Stated<GpuStatus> doQueryGpuStatusV1() const;
  Stated<MemoryUsage> doQueryMemUsageV0() const;
  template <class Record>
  Stated<ProcessMemoryMap> queryProcMemState() const;
  Stated<PcieInfo> doQueryPciConfigDataV0() const;

  /// Sends a zeroed record and turns the reply into the value; `subject` names the query in the log
  /// line of a failure.
  template <class Record, class Read>
  auto query(std::string_view subject, Read read) const -> Stated<decltype(read(Record{}))>;
};

}  // namespace kelp::linux_
