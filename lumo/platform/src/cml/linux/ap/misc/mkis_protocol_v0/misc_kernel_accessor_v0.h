#pragma once

#include <mutex>

#include "linux/ap/misc/misc_kernel_accessor_base.h"
#include "linux/ap/misc/mkis_protocol_v0/board_data.h"

namespace kelp::linux_ {

/// Protocol 0, for older drivers: every record is a request of its own, without header and status.
/// Sensors and the board's data have no record; they are commands to the board's controller, whose forms
/// go by the chip family. mki_operations.def says which records or commands a slot has; interfaces that are
/// not there keep the base's empty slots.
class MiscKernelAccessorV0 : public MiscKernelAccessorBase {
 public:
  using MiscKernelAccessorBase::MiscKernelAccessorBase;

  MkisStated<RemoteList> mkisList(const MkisProbe& probe) override;

#define MKI_OPERATION(area, name, ...) VersionsOf<MiscMkisIntfName::k##name> do##name() override;
#define SMC_OPERATION(name, ...) VersionsOf<MiscMkisIntfName::k##name> do##name() override;
#include "linux/ap/misc/mkis_protocol_v0/mki_operations.def"
#undef MKI_OPERATION
#undef SMC_OPERATION

  template <class Record>
  KelpReturn access(Record& record) const {
    return linux_::access(fd(), record);
  }

 private:
  bool isFirstFamily() const {
    return getArch() == DevArch::kWold;
  }

  // Sensors. State 1 when the command fails, 6 when the firmware refuses it.
  Stated<unsigned long> doQueryClockV0(const QueryClockParam& param) const;
  Stated<unsigned int> doQueryFanChnlCountV0() const;
  Stated<unsigned int> doQueryFanSpeedV0(const QueryFanSpeedParam& param) const;
  Stated<unsigned int> queryFanSpeedPercentV0(unsigned int fanIndex) const;
  Stated<unsigned int> queryFanRpmV0(unsigned int fanIndex) const;
  Stated<unsigned int> doQueryPowerV0(const QueryPowerUsageParam& param) const;
  Stated<float> doQueryVoltageV0(const QueryVoltageParam& param) const;
  template <class Command>
  Stated<float> queryVoltage(unsigned int rail, const char* refusal) const;
  Stated<float> doQueryTemperV0(const QueryTemperParam& param) const;
  Stated<float> queryTemperV0(unsigned int sensorId) const;
  Stated<float> queryTemperV1(unsigned int sensorId) const;
  template <class Command>
  Stated<s32> queryTemper(unsigned int sensorId, const char* refusal) const;
  Stated<unsigned int> doQueryMemoryTemperatureV0() const;
  Stated<TemperatureLimitInfo> doQueryTemperatureLimitInfoV0() const;

  // The board. States as above, and 6 for a family that is not known.
  Stated<FirmwareVersions> doQuerySmcFwVersionV0() const;
  Stated<EfuseData> doQueryEfuseDataV0(const QueryEfuseDataParam& param) const;
  template <class Command>
  Stated<EfuseData> queryEfuse(const QueryEfuseDataParam& param) const;
  Stated<MemoryEdc> doQueryMemEdcV0() const;
  Stated<MemorySpec> doQueryDdrCapV0() const;
  Stated<GpuSpec> doQueryGpuCapV0() const;
  Stated<std::vector<DispInterfaceInfo>> doQueryDisplayInterfaceSpecV0() const;

  /// The board's data by the road of the family: in a command's reply, in a shared buffer, as a record.
  /// `dispCount` is no more than the rows that came, but for the buffer's, which has all rows.
  Stated<BoardData> getBoardData() const;
  Stated<BoardData> getBoardCapInfoV0() const;
  Stated<BoardData> getBoardCapInfoV1() const;
  Stated<BoardData> getBoardCapInfoV2() const;

  /// What a command leaves in a shared buffer. The two texts are the log's words for the failures.
  template <class Command, class Data>
  Stated<Data> queryBuffer(const char* mapFailure, const char* refusal) const;

  /// Held while there is a shared buffer: the node has one at a time.
  mutable std::mutex bufferMutex_;
};

}  // namespace kelp::linux_
