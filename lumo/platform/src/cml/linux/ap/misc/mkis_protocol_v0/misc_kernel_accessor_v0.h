#pragma once

#include <string_view>
#include <utility>

#include "linux/ap/misc/misc_kernel_accessor_base.h"

namespace kelp::linux_ {

/// Protocol 0, for older drivers: every record is a request of its own, without header and status.
/// Interfaces that this protocol lacks keep the base's empty slots. Those that it has but that are not
/// served yet list their version without an operation: a driver that lacks one must read as such, and not
/// as one that speaks another protocol.
class MiscKernelAccessorV0 : public MiscKernelAccessorBase {
 public:
  using MiscKernelAccessorBase::MiscKernelAccessorBase;

  template <MiscMkisIntfName Name>
  using Versions = decltype(MkisIntfSlot<Name>::versions(std::declval<MiscKernelAccessorBase&>()));

  MkisStated<RemoteList> mkisList(const MkisProbe& probe) override;

  VersionMap<Operation<GpuStatus>> doQueryGpuStatus() override;
  VersionMap<Operation<MemoryUsage>> doQueryMemUsage() override;
  VersionMap<Operation<ProcessMemoryMap>> doQueryProcMemState() override;
  VersionMap<Operation<PcieInfo>> doQueryPciConfigData() override;

#define NOT_SERVED(name)                                    \
  Versions<MiscMkisIntfName::k##name> do##name() override { \
    return {{0, {}}};                                       \
  }
  NOT_SERVED(QueryDevDesc)
  NOT_SERVED(QueryMpcProfList)
  NOT_SERVED(QueryMpcConfList)
  NOT_SERVED(QueryMpcInstList)
  NOT_SERVED(QueryMpcParent)
  NOT_SERVED(QueryMpcProf)
  NOT_SERVED(QuerySmcFwVersion)
  NOT_SERVED(QueryTemper)
  NOT_SERVED(QueryDdrCap)
  NOT_SERVED(QueryEfuseData)
  NOT_SERVED(QueryInfoRom)
  NOT_SERVED(QueryEccMode)
  NOT_SERVED(QueryP2pStatus)
  NOT_SERVED(QueryMpcConf)
  NOT_SERVED(SetMpcConf)
  NOT_SERVED(SetMpcSwitch)
  NOT_SERVED(StartPciePerf)
  NOT_SERVED(QueryPciePerfData)
  NOT_SERVED(StopPciePerf)
  NOT_SERVED(QueryPcieReplayCounter)
  NOT_SERVED(QueryProcGpuUtil)
  NOT_SERVED(ResetGpu)
  NOT_SERVED(ResetGpuHwErrorCounts)
  NOT_SERVED(ResetDeviceEventMsgs)
  NOT_SERVED(ResetDevice)
  NOT_SERVED(QuerySablinkSpec)
  NOT_SERVED(QuerySablinkCapStatus)
  NOT_SERVED(QuerySablinkState)
  NOT_SERVED(QuerySablinkErrCounter)
  NOT_SERVED(ResetSablinkErrCounter)
  NOT_SERVED(QuerySablinkLayouts)
  NOT_SERVED(QuerySablinkRemoteDev)
  NOT_SERVED(QuerySablinkShortestPaths)
  NOT_SERVED(StartSablinkPerf)
  NOT_SERVED(QuerySablinkPerfData)
  NOT_SERVED(StopSablinkPerf)
  NOT_SERVED(QuerySablinkSerdesStatus)
  NOT_SERVED(QueryClock)
  NOT_SERVED(QueryMemEdc)
  NOT_SERVED(QueryFanChnlCount)
  NOT_SERVED(QueryFanSpeed)
  NOT_SERVED(QueryPower)
  NOT_SERVED(QueryVoltage)
  NOT_SERVED(QueryMemoryTemperature)
  NOT_SERVED(QueryGpuCap)
  NOT_SERVED(QueryPcieSlotInfo)
  NOT_SERVED(QueryDisplayInterfaceSpec)
  NOT_SERVED(QueryVgpuUtil)
  NOT_SERVED(QueryVgpuMemInfo)
  NOT_SERVED(QueryTemperatureLimitInfo)
  NOT_SERVED(QueryEccRetiredPagesCnt)
  NOT_SERVED(QueryEccRetiredPagesInfo)
  NOT_SERVED(QueryEccRetiredPagesPendingInfo)
  NOT_SERVED(SetEccMode)
#undef NOT_SERVED

 private:
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
