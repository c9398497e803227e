#pragma once

#include <string_view>

#include "linux/ap/misc/misc_kernel_accessor_base.h"

namespace kelp::linux_ {

/// Protocol 0, for older drivers: every record is a request of its own, without header and status.
/// Interfaces that this protocol lacks keep the base's empty slots.
class MiscKernelAccessorV0 : public MiscKernelAccessorBase {
 public:
  using MiscKernelAccessorBase::MiscKernelAccessorBase;

  MkisStated<RemoteList> mkisList(const MkisProbe& probe) override;

  VersionMap<Operation<GpuStatus>> doQueryGpuStatus() override;
  VersionMap<Operation<MemoryUsage>> doQueryMemUsage() override;
  VersionMap<Operation<ProcessMemoryMap>> doQueryProcMemState() override;
  VersionMap<Operation<PcieInfo>> doQueryPciConfigData() override;

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
