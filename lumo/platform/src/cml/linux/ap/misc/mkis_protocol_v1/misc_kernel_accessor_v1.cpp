#include "linux/ap/misc/mkis_protocol_v1/misc_kernel_accessor_v1.h"

#include <array>
#include <span>

#include "common/mkis/firmware_components.h"
#include "common/pcie_config_space.h"
#include "kelp_log.h"
#include "linux/ap/misc/dev_desc_record.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_device_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_gpu_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_memory_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_mpc_records.h"
#include "linux/ap/misc/status_record.h"

namespace kelp::linux_ {
namespace {

constexpr float kMilli = 1000.0F;
constexpr u32 kUnknownMemoryType = 15;

MpcProfile readMpcProfile(const MciMpcProfileRow& row) {
  return {.id = row.id, .name = textOf(row.name), .coreCount = row.coreCount, .memory = row.memory};
}

MpcConfiguration readMpcConfiguration(const MciMpcConfigurationRow& row) {
  MpcConfiguration configuration{.id = row.id, .name = textOf(row.name), .profileIds = {}};
  const std::size_t count = std::min<std::size_t>(row.profileCount, sizeof row.profileIds / sizeof(u16));
  for (std::size_t i = 0; i < count; ++i) {
    configuration.profileIds.push_back(row.profileIds[i]);
  }
  return configuration;
}

/// Makers of memory chips by the number in the record; the gaps are unknown.
Stated<std::string> memoryVendorOf(u32 number) {
  constexpr std::array<const char*, 4> kVendors{nullptr, "Samsung", "Micron", "Hynix"};
  if (number >= kVendors.size() || kVendors[number] == nullptr) {
    return KelpReturn::kNotSupported;
  }
  return std::string(kVendors[number]);
}

}  // namespace

template <class Payload, class Fill, class Read>
auto MiscKernelAccessorV1::query(std::string_view subject, Fill fill, Read read) const
    -> Stated<decltype(read(Payload{}))> {
  using Traits = MciTraits<Payload>;
  MciCall<Payload> call{};
  call.header = newHeader(MciPduType::kCall, sizeof call.body + sizeof call.payload);
  call.body.intfName = Traits::kInterface;
  call.body.intfVersion = Traits::kVersion;
  call.body.payloadSize = sizeof call.payload;
  fill(call.payload);
  if (const KelpReturn state = access(Traits::kName, call.header); state != KelpReturn::kSuccess) {
    KELP_LOG(kError) << std::string("failed to query ").append(subject).append(", access error is ") << state;
    return state;
  }
  return read(call.payload);
}

// What each slot offers: the versions of its interface, ascending.

#define VERSION(number, function)                                    \
  {                                                                  \
    number, [this](auto&&... params) { return function(params...); } \
  }

VersionMap<Operation<GpuStatus>> MiscKernelAccessorV1::doQueryGpuStatus() {
  return {VERSION(2, doQueryGpuStatusV2), VERSION(3, doQueryGpuStatusV3)};
}
VersionMap<Operation<MemoryUsage>> MiscKernelAccessorV1::doQueryMemUsage() {
  return {VERSION(1, doQueryMemUsageV1)};
}
VersionMap<Operation<ProcessMemoryMap>> MiscKernelAccessorV1::doQueryProcMemState() {
  return {VERSION(3, doQueryProcMemStateV3)};
}
VersionMap<Operation<PcieInfo>> MiscKernelAccessorV1::doQueryPciConfigData() {
  return {VERSION(1, doQueryPciConfigDataV1)};
}
VersionMap<Operation<DevDesc>> MiscKernelAccessorV1::doQueryDevDesc() {
  return {VERSION(1, doQueryDevDescV1), VERSION(2, doQueryDevDescV2)};
}
VersionMap<Operation<std::vector<MpcProfile>>> MiscKernelAccessorV1::doQueryMpcProfList() {
  return {VERSION(1, doQueryMpcProfListV1)};
}
VersionMap<Operation<std::vector<MpcConfiguration>>> MiscKernelAccessorV1::doQueryMpcConfList() {
  return {VERSION(1, doQueryMpcConfListV1)};
}
VersionMap<Operation<MpcInstList>> MiscKernelAccessorV1::doQueryMpcInstList() {
  return {VERSION(1, doQueryMpcInstListV1)};
}
VersionMap<Operation<unsigned long>> MiscKernelAccessorV1::doQueryMpcParent() {
  return {VERSION(1, doQueryMpcParentV1)};
}
VersionMap<Operation<MpcProfile>> MiscKernelAccessorV1::doQueryMpcProf() {
  return {VERSION(1, doQueryMpcProfV1)};
}
VersionMap<Operation<FirmwareVersions>> MiscKernelAccessorV1::doQuerySmcFwVersion() {
  return {VERSION(1, doQuerySmcFwVersionV1)};
}
VersionMap<Operation<float, QueryTemperParam>> MiscKernelAccessorV1::doQueryTemper() {
  return {VERSION(1, doQueryTemperV1)};
}
VersionMap<Operation<MemorySpec>> MiscKernelAccessorV1::doQueryDdrCap() {
  return {VERSION(1, doQueryDdrCapV1)};
}
VersionMap<Operation<EfuseData, QueryEfuseDataParam>> MiscKernelAccessorV1::doQueryEfuseData() {
  return {VERSION(1, doQueryEfuseDataV1)};
}
VersionMap<Operation<DeviceInfoRom>> MiscKernelAccessorV1::doQueryInfoRom() {
  return {VERSION(1, doQueryInfoRomV1)};
}
VersionMap<Operation<EccModeInfo>> MiscKernelAccessorV1::doQueryEccMode() {
  return {VERSION(1, doQueryEccModeV1)};
}
VersionMap<Operation<unsigned int>> MiscKernelAccessorV1::doQueryPstate() {
  return {VERSION(0, doQueryPstateV0)};
}
VersionMap<Operation<std::string>> MiscKernelAccessorV1::doQueryDevName() {
  return {VERSION(0, doQueryDevNameV0)};
}

// Not spoken yet.
VersionMap<Operation<P2pCapStatus, QueryP2pStatusParam>> MiscKernelAccessorV1::doQueryP2pStatus() {
  return {};
}
VersionMap<Operation<unsigned int>> MiscKernelAccessorV1::doQueryMpcConf() {
  return {};
}
VersionMap<Operation<int, SetMpcConfParam>> MiscKernelAccessorV1::doSetMpcConf() {
  return {};
}
VersionMap<Operation<int, SetMpcSwitchParam>> MiscKernelAccessorV1::doSetMpcSwitch() {
  return {};
}
VersionMap<Operation<unsigned int, StartPciePerfParam>> MiscKernelAccessorV1::doStartPciePerf() {
  return {};
}
VersionMap<Operation<PcieBandWidthData, QueryPciePerfDataParam>> MiscKernelAccessorV1::doQueryPciePerfData() {
  return {};
}
VersionMap<Operation<int, StopPciePerfParam>> MiscKernelAccessorV1::doStopPciePerf() {
  return {};
}
VersionMap<Operation<unsigned long>> MiscKernelAccessorV1::doQueryPcieReplayCounter() {
  return {};
}
VersionMap<Operation<ProcessGpuUtilMap, QueryProcGpuUtilParam>> MiscKernelAccessorV1::doQueryProcGpuUtil() {
  return {};
}
VersionMap<Operation<int>> MiscKernelAccessorV1::doResetGpu() {
  return {};
}
VersionMap<Operation<int, ResetGpuHwErrorCountsParam>> MiscKernelAccessorV1::doResetGpuHwErrorCounts() {
  return {};
}
VersionMap<Operation<int>> MiscKernelAccessorV1::doResetDeviceEventMsgs() {
  return {};
}
VersionMap<Operation<int>> MiscKernelAccessorV1::doResetDevice() {
  return {};
}
VersionMap<Operation<SablinkSpec>> MiscKernelAccessorV1::doQuerySablinkSpec() {
  return {};
}
VersionMap<Operation<SablinkCapStatus, QuerySablinkCapStatusParam>> MiscKernelAccessorV1::doQuerySablinkCapStatus() {
  return {};
}
VersionMap<Operation<SablinkState, QuerySablinkStateParam>> MiscKernelAccessorV1::doQuerySablinkState() {
  return {};
}
VersionMap<Operation<unsigned long, QuerySablinkErrCounterParam>> MiscKernelAccessorV1::doQuerySablinkErrCounter() {
  return {};
}
VersionMap<Operation<int, unsigned int>> MiscKernelAccessorV1::doResetSablinkErrCounter() {
  return {};
}
VersionMap<Operation<std::vector<SablinkLayout>, QuerySablinkLayoutsParam>> MiscKernelAccessorV1::doQuerySablinkLayouts() {
  return {};
}
VersionMap<Operation<SablinkRemoteDevInfo, QuerySablinkStateParam>> MiscKernelAccessorV1::doQuerySablinkRemoteDev() {
  return {};
}
VersionMap<Operation<std::vector<SablinkPath>, QuerySablinkLayoutsParam>> MiscKernelAccessorV1::doQuerySablinkShortestPaths() {
  return {};
}
VersionMap<Operation<SablinkPerfStart, StartSablinkPerfParam>> MiscKernelAccessorV1::doStartSablinkPerf() {
  return {};
}
VersionMap<Operation<SablinkPerfData, QuerySablinkPerfDataParam>> MiscKernelAccessorV1::doQuerySablinkPerfData() {
  return {};
}
VersionMap<Operation<SablinkPerfStop, QuerySablinkPerfDataParam>> MiscKernelAccessorV1::doStopSablinkPerf() {
  return {};
}
VersionMap<Operation<SablinkSerdesStatus, QuerySablinkStateParam>> MiscKernelAccessorV1::doQuerySablinkSerdesStatus() {
  return {};
}
VersionMap<Operation<unsigned long, QueryClockParam>> MiscKernelAccessorV1::doQueryClock() {
  return {};
}
VersionMap<Operation<MemoryEdc>> MiscKernelAccessorV1::doQueryMemEdc() {
  return {};
}
VersionMap<Operation<unsigned int>> MiscKernelAccessorV1::doQueryFanChnlCount() {
  return {};
}
VersionMap<Operation<unsigned int, QueryFanSpeedParam>> MiscKernelAccessorV1::doQueryFanSpeed() {
  return {};
}
VersionMap<Operation<unsigned int, QueryPowerUsageParam>> MiscKernelAccessorV1::doQueryPower() {
  return {};
}
VersionMap<Operation<float, QueryVoltageParam>> MiscKernelAccessorV1::doQueryVoltage() {
  return {};
}
VersionMap<Operation<unsigned int>> MiscKernelAccessorV1::doQueryMemoryTemperature() {
  return {};
}
VersionMap<Operation<GpuSpec>> MiscKernelAccessorV1::doQueryGpuCap() {
  return {};
}
VersionMap<Operation<PcieSlotInfo>> MiscKernelAccessorV1::doQueryPcieSlotInfo() {
  return {};
}
VersionMap<Operation<std::vector<DispInterfaceInfo>>> MiscKernelAccessorV1::doQueryDisplayInterfaceSpec() {
  return {};
}
VersionMap<Operation<unsigned int, unsigned int>> MiscKernelAccessorV1::doQueryVgpuUtil() {
  return {};
}
VersionMap<Operation<GuestMemoryUsage, unsigned int>> MiscKernelAccessorV1::doQueryVgpuMemInfo() {
  return {};
}
VersionMap<Operation<TemperatureLimitInfo>> MiscKernelAccessorV1::doQueryTemperatureLimitInfo() {
  return {};
}
VersionMap<Operation<EccPageRetirementCount>> MiscKernelAccessorV1::doQueryEccRetiredPagesCnt() {
  return {};
}
VersionMap<Operation<EccPageRetirementInfo, QueryEccPageRetirementInfoParam>> MiscKernelAccessorV1::doQueryEccRetiredPagesInfo() {
  return {};
}
VersionMap<Operation<EccPendingErrorInfo, QueryEccPendingErrorInfoParam>> MiscKernelAccessorV1::doQueryEccRetiredPagesPendingInfo() {
  return {};
}
VersionMap<Operation<int, EccMode>> MiscKernelAccessorV1::doSetEccMode() {
  return {};
}
VersionMap<Operation<int, SetPerfStateParam>> MiscKernelAccessorV1::doSetPstate() {
  return {};
}
VersionMap<Operation<unsigned long long, QueryEccErrorsParam>> MiscKernelAccessorV1::doQueryEccErr() {
  return {};
}
VersionMap<Operation<int, EccCounterType>> MiscKernelAccessorV1::doClearEccErr() {
  return {};
}
VersionMap<Operation<unsigned int, PowerLimitType>> MiscKernelAccessorV1::doQueryPowerLimit() {
  return {};
}
VersionMap<Operation<ThermalSlowdownStatistics>> MiscKernelAccessorV1::doQueryThermalSlowdownStatistics() {
  return {};
}
VersionMap<Operation<PcieBar2MemInfo>> MiscKernelAccessorV1::doQueryPcieBar2MemInfo() {
  return {};
}
VersionMap<Operation<VgpuOverCommitInfo, unsigned int>> MiscKernelAccessorV1::doQueryVgpuOverCommit() {
  return {};
}
VersionMap<Operation<int, SetPowerLimitParam>> MiscKernelAccessorV1::doSetPowerLimit() {
  return {};
}

#undef VERSION

Stated<GpuStatus> MiscKernelAccessorV1::doQueryGpuStatusV2() const {
  return query<MciGetDeviceStatusV2>("gpu status", [](const auto& reply) { return readGpuStatus(reply); });
}

Stated<GpuStatus> MiscKernelAccessorV1::doQueryGpuStatusV3() const {
  return query<MciGetDeviceStatusV3>("gpu status", [](const auto& reply) { return readGpuStatus(reply); });
}

Stated<MemoryUsage> MiscKernelAccessorV1::doQueryMemUsageV1() const {
  return query<MciGetDeviceMemUsageV1>("memory usage",
                                       [](const auto& reply) { return readMemoryUsage(reply); });
}

Stated<ProcessMemoryMap> MiscKernelAccessorV1::doQueryProcMemStateV3() const {
  return query<MciGetProcessLevelMemV3>("process memory",
                                        [](const auto& reply) { return readProcessMemory(reply); });
}

Stated<PcieInfo> MiscKernelAccessorV1::doQueryPciConfigDataV1() const {
  return query<MciGetPciConfigSpaceV1>("pci configuration space", [](const auto& reply) {
    return PcieConfigSpace(reply.configSpace).decode();
  });
}

Stated<DevDesc> MiscKernelAccessorV1::doQueryDevDescV1() const {
  return query<MciGetMgtDevDescV1>("device description",
                                   [](const auto& reply) { return readDevDesc(reply, reply.ionId); });
}

Stated<DevDesc> MiscKernelAccessorV1::doQueryDevDescV2() const {
  return query<MciGetMgtDevDescV2>("device description",
                                   [](const auto& reply) { return readDevDesc(reply, reply.ionId); });
}

Stated<std::vector<MpcProfile>> MiscKernelAccessorV1::doQueryMpcProfListV1() const {
  return query<MciGetMgtMpcProfileListV1>("mpc profiles", [](const auto& reply) {
    std::vector<MpcProfile> profiles;
    for (const MciMpcProfileRow& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
      profiles.push_back(readMpcProfile(row));
    }
    return profiles;
  });
}

Stated<std::vector<MpcConfiguration>> MiscKernelAccessorV1::doQueryMpcConfListV1() const {
  return query<MciGetMgtMpcConfListV1>("mpc configurations", [](const auto& reply) {
    std::vector<MpcConfiguration> configurations;
    for (const MciMpcConfigurationRow& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
      configurations.push_back(readMpcConfiguration(row));
    }
    return configurations;
  });
}

Stated<MpcInstList> MiscKernelAccessorV1::doQueryMpcInstListV1() const {
  return query<MciGetMgtMpcInstanceListV1>("mpc instances", [](const auto& reply) {
    MpcInstList instances;
    for (const MciMpcInstanceRow& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
      instances.push_back({.miscId = row.miscId, .instanceId = row.instanceId});
    }
    return instances;
  });
}

Stated<unsigned long> MiscKernelAccessorV1::doQueryMpcParentV1() const {
  return query<MciGetMgtMpcParentV1>(
      "mpc parent", [](const auto& reply) { return static_cast<unsigned long>(reply.parentMiscId); });
}

Stated<MpcProfile> MiscKernelAccessorV1::doQueryMpcProfV1() const {
  return query<MciGetMgtMpcProfileV1>("mpc profile",
                                      [](const auto& reply) { return readMpcProfile(reply.profile); });
}

Stated<FirmwareVersions> MiscKernelAccessorV1::doQuerySmcFwVersionV1() const {
  return query<MciGetSmcFwVerV1>("firmware versions", [](const auto& reply) {
    FirmwareVersions versions;
    for (std::size_t i = 0; i < std::size(reply.versions); ++i) {
      versions.emplace(kFirmwareComponents[i], unlessAllOnes<unsigned int>(u32{reply.versions[i]}));
    }
    return versions;
  });
}

Stated<float> MiscKernelAccessorV1::doQueryTemperV1(const QueryTemperParam& param) const {
  return query<MciGetTemperV1>(
      "temperature", [&](auto& request) { request.sensorId = param.sensorId; },
      [](const auto& reply) { return static_cast<float>(reply.temperature) / kMilli; });
}

Stated<MemorySpec> MiscKernelAccessorV1::doQueryDdrCapV1() const {
  return query<MciGetDdrConfInfoV1>("memory specification", [](const auto& reply) {
    const u32 type = reply.typeVendor & 0xFU;
    MemorySpec spec;
    spec.maxClock = unlessZero<unsigned long>(u64{reply.maxClock});
    spec.type = type == kUnknownMemoryType ? Stated<unsigned int>(KelpReturn::kNotSupported) : type;
    spec.vendor = memoryVendorOf(reply.typeVendor >> 4);
    spec.channelCount = unlessZero<unsigned int>(reply.channels & 0xFFU);
    spec.channelWidth = unlessZero<unsigned int>(u32{reply.channels} >> 8);
    return spec;
  });
}

Stated<EfuseData> MiscKernelAccessorV1::doQueryEfuseDataV1(const QueryEfuseDataParam& param) const {
  return query<MciGetEfuseDataV1>(
      "efuse data",
      [&](auto& request) {
        request.startBit = param.startBit;
        request.bitCount = param.bitCount;
      },
      [](const auto& reply) {
        constexpr u32 kBitsHeld = sizeof reply.words * 8;
        EfuseData data{
            .startBit = reply.startBit, .bitCount = std::min(u32{reply.bitCount}, kBitsHeld), .words = {}};
        for (std::size_t i = 0; i < std::size(reply.words); ++i) {
          data.words.push_back(reply.words[i]);
        }
        return data;
      });
}

Stated<DeviceInfoRom> MiscKernelAccessorV1::doQueryInfoRomV1() const {
  return query<MciGetInfoRomV1>("info rom", [](const auto& reply) {
    return DeviceInfoRom{.serialNumber = textOf(reply.serialNumber), .brand = textOf(reply.brand)};
  });
}

Stated<EccModeInfo> MiscKernelAccessorV1::doQueryEccModeV1() const {
  return query<MciGetEccModeV1>("ecc mode", [](const auto& reply) {
    return EccModeInfo{.current = static_cast<EccMode>(u32{reply.current}),
                       .pending = static_cast<EccMode>(u32{reply.pending})};
  });
}

Stated<unsigned int> MiscKernelAccessorV1::doQueryPstateV0() const {
  return query<MciGetPstateV0>("performance state",
                               [](const auto& reply) { return static_cast<unsigned int>(reply.state); });
}

Stated<std::string> MiscKernelAccessorV1::doQueryDevNameV0() const {
  return query<MciGetDevNameV0>("device name", [](const auto& reply) { return textOf(reply.name); });
}

}  // namespace kelp::linux_
