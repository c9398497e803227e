#include "kelp_log.h"
#include "linux/ap/misc/device_exchange.h"
#include "linux/ap/misc/mkis_protocol_v0/ipc_sensor_records.h"
#include "linux/ap/misc/mkis_protocol_v0/misc_kernel_accessor_v0.h"

// Clocks, fans, power, voltage and temperatures, asked of the board's controller.

namespace kelp::linux_ {

Stated<unsigned long> MiscKernelAccessorV0::doQueryClockV0(const QueryClockParam& param) const {
  IpcGetFreqCmdV0 record{};
  record.clockId = param.clockId;
  if (const KelpReturn state = cmd(fd(), record); state != KelpReturn::kSuccess) {
    return state;
  }
  if (record.status != kIpcGoodStatus) {
    KELP_LOG(kError) << "clock type = " << param.clockId << " status check failure!";
    return KelpReturn::kNotSupported;
  }
  return static_cast<unsigned long>(record.frequency);
}

Stated<unsigned int> MiscKernelAccessorV0::doQueryFanChnlCountV0() const {
  IpcGetFanEntryInfoCmdV0 record{};
  if (const KelpReturn state = cmd(fd(), record); state != KelpReturn::kSuccess) {
    return state;
  }
  if (record.status != kIpcGoodStatus) {
    KELP_LOG(kError) << "getFanCountV0() status check failed!";
    return KelpReturn::kNotSupported;
  }
  return std::min(u32{record.count}, kMaxFans);
}

Stated<unsigned int> MiscKernelAccessorV0::doQueryFanSpeedV0(const QueryFanSpeedParam& param) const {
  return param.unit == FanUnit::kPercent ? queryFanSpeedPercentV0(param.fanIndex)
                                         : queryFanRpmV0(param.fanIndex);
}

Stated<unsigned int> MiscKernelAccessorV0::queryFanSpeedPercentV0(unsigned int fanIndex) const {
  IpcGetFanDutyCmdV0 record{};
  record.fanIndex = fanIndex;
  if (const KelpReturn state = cmd(fd(), record); state != KelpReturn::kSuccess) {
    return state;
  }
  if (record.status != kIpcGoodStatus) {
    KELP_LOG(kError) << "getFanSpeedV0() status check fail, status = " << u32{record.status}
                     << " maxDuty = " << u32{record.duty};  // sic
    return KelpReturn::kNotSupported;
  }
  if (record.maxDuty == 0) {
    return 0U;
  }
  return saturated<unsigned int>(u64{record.duty} * 100 / record.maxDuty);
}

Stated<unsigned int> MiscKernelAccessorV0::queryFanRpmV0(unsigned int fanIndex) const {
  IpcGetFanSpeedCmdV0 record{};
  record.fanIndex = fanIndex;
  if (const KelpReturn state = cmd(fd(), record); state != KelpReturn::kSuccess) {
    return state;
  }
  if (record.status != kIpcGoodStatus) {
    KELP_LOG(kError) << "getFanRpmV0() status check failed!";
    return KelpReturn::kNotSupported;
  }
  return u32{record.speed};
}

Stated<unsigned int> MiscKernelAccessorV0::doQueryPowerV0(const QueryPowerUsageParam& param) const {
  IpcGetPowerCmdV0 record{};
  record.domain = param.domain;
  if (const KelpReturn state = cmd(fd(), record); state != KelpReturn::kSuccess) {
    return state;
  }
  if (record.status != kIpcGoodStatus) {
    KELP_LOG(kError) << "getPowerUsageV0(): dm = " << param.domain << " status check failed!";
    return KelpReturn::kNotSupported;
  }
  return u32{record.power};
}

template <class Command>
Stated<float> MiscKernelAccessorV0::queryVoltage(unsigned int rail, const char* refusal) const {
  Command record{};
  record.rail = rail;
  if (const KelpReturn state = cmd(fd(), record); state != KelpReturn::kSuccess) {
    return state;
  }
  if (record.status != kIpcGoodStatus) {
    KELP_LOG(kError) << refusal << rail << " status check failure!";
    return KelpReturn::kNotSupported;
  }
  return ofThousandths(u32{record.voltage});
}

Stated<float> MiscKernelAccessorV0::doQueryVoltageV0(const QueryVoltageParam& param) const {
  return isFirstFamily() ? queryVoltage<IpcGetGpuVoltCmdV0>(param.rail, "queryVoltageV0(): type = ")
                         : queryVoltage<IpcGetGpuVoltCmdV1>(param.rail, "queryVoltageV1(): type = ");
}

template <class Command>
Stated<s32> MiscKernelAccessorV0::queryTemper(unsigned int sensorId, const char* refusal) const {
  Command record{};
  record.sensorId = sensorId;
  if (const KelpReturn state = cmd(fd(), record); state != KelpReturn::kSuccess) {
    return state;
  }
  if (record.status != kIpcGoodStatus) {
    KELP_LOG(kError) << refusal << sensorId << ", status = " << u32{record.status} << " check failure!";
    return KelpReturn::kNotSupported;
  }
  return s32{record.temperature};
}

Stated<float> MiscKernelAccessorV0::doQueryTemperV0(const QueryTemperParam& param) const {
  return isFirstFamily() ? queryTemperV0(param.sensorId) : queryTemperV1(param.sensorId);
}

Stated<float> MiscKernelAccessorV0::queryTemperV0(unsigned int sensorId) const {
  const auto degrees = queryTemper<IpcGetTempCmdV0>(sensorId, "queryTemperV0(): type = ");
  if (!degrees.ok()) {
    return degrees.state();
  }
  return static_cast<float>(degrees.value());
}

Stated<float> MiscKernelAccessorV0::queryTemperV1(unsigned int sensorId) const {
  const auto thousandths = queryTemper<IpcGetTempCmdV1>(sensorId, "getGpuTemperatureV1(): type = ");
  if (!thousandths.ok()) {
    return thousandths.state();
  }
  return ofThousandths(thousandths.value());
}

Stated<unsigned int> MiscKernelAccessorV0::doQueryMemoryTemperatureV0() const {
  IpcGetMemoryTemperatureCmdV0 record{};
  if (const KelpReturn state = cmd(fd(), record); state != KelpReturn::kSuccess) {
    return state;
  }
  if (record.status != kIpcGoodStatus) {
    KELP_LOG(kError) << "queryMemoryTemperatureV0() status check failed!";
    return KelpReturn::kNotSupported;
  }
  return u32{record.temperature};
}

Stated<TemperatureLimitInfo> MiscKernelAccessorV0::doQueryTemperatureLimitInfoV0() const {
  IpcGetTemperatureLimitInfoV0 record{};
  if (const KelpReturn state = cmd(fd(), record); state != KelpReturn::kSuccess) {
    return state;
  }
  if (record.status != kIpcGoodStatus) {
    KELP_LOG(kError) << "queryTemperatureLimitInfoV0() status check failed!";
    return KelpReturn::kNotSupported;
  }
  return readTemperatureLimits(record);
}

}  // namespace kelp::linux_
