#pragma once

#include <string_view>

#include "linux/ap/misc/misc_kernel_accessor_base.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"

namespace kelp::linux_ {

/// Protocol 1: one request for everything, a common header, and a body that names an interface and a
/// version. Every `do...V<n>` is one record: it is filled, sent, and read into a value.
class MiscKernelAccessorV1 : public MiscKernelAccessorBase {
 public:
  MiscKernelAccessorV1(NodeFile node, u16 major, u16 minor)
      : MiscKernelAccessorBase(std::move(node)), major_(major), minor_(minor) {}

  MkisStated<RemoteList> mkisList(const MkisProbe& probe) override;

#define MISC_INTERFACE(number, name, ...) VersionMap<Operation<__VA_ARGS__>> do##name() override;
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE

  /// Sends a record that starts with a header and maps the driver's status.
  KelpReturn access(const char* recordName, MciHeader& header) const;

 private:
  Stated<GpuStatus> doQueryGpuStatusV2() const;
  Stated<GpuStatus> doQueryGpuStatusV3() const;
  Stated<MemoryUsage> doQueryMemUsageV1() const;
  Stated<ProcessMemoryMap> doQueryProcMemStateV3() const;
  Stated<PcieInfo> doQueryPciConfigDataV1() const;
  Stated<DevDesc> doQueryDevDescV1() const;
  Stated<DevDesc> doQueryDevDescV2() const;
  Stated<std::vector<MpcProfile>> doQueryMpcProfListV1() const;
  Stated<std::vector<MpcConfiguration>> doQueryMpcConfListV1() const;
  Stated<MpcInstList> doQueryMpcInstListV1() const;
  Stated<unsigned long> doQueryMpcParentV1() const;
  Stated<MpcProfile> doQueryMpcProfV1() const;
  Stated<FirmwareVersions> doQuerySmcFwVersionV1() const;
  Stated<float> doQueryTemperV1(const QueryTemperParam& param) const;
  Stated<MemorySpec> doQueryDdrCapV1() const;
  Stated<EfuseData> doQueryEfuseDataV1(const QueryEfuseDataParam& param) const;
  Stated<DeviceInfoRom> doQueryInfoRomV1() const;
  Stated<EccModeInfo> doQueryEccModeV1() const;
  Stated<unsigned int> doQueryPstateV0() const;
  Stated<std::string> doQueryDevNameV0() const;

  MkisStated<u16> scanPdu() const;
  MciHeader newHeader(MciPduType type, std::size_t bodySize) const;

  /// The one shape of a call: `fill` sets the request fields of a zeroed payload, `read` turns the
  /// reply into the value. `subject` names the query in the log line of a failure.
  template <class Payload, class Fill, class Read>
  auto query(std::string_view subject, Fill fill, Read read) const -> Stated<decltype(read(Payload{}))>;
  template <class Payload, class Read>
  auto query(std::string_view subject, Read read) const {
    return query<Payload>(
        subject, [](Payload&) {}, read);
  }

  u16 major_;
  u16 minor_;
};

}  // namespace kelp::linux_
