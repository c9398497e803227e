#include "command_access/vgpu_query_command_access.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "command_access/session_stats.h"
#include "command_access/value_text.h"
#include "command_output/vgpu_query_output.h"
#include "common_define.h"
#include "host_environment.h"

namespace tolk {

namespace {

nlohmann::ordered_json statsRows(const std::optional<SessionStats>& stats) {
  return {{"Active Sessions", stats ? std::to_string(stats->active) : kNoValue},
          {"Average FPS", stats ? std::to_string(stats->averageFps) : kNoValue}};
}

}  // namespace

LumoReturn VgpuQueryCommandAccess::queryDeviceInfo(std::uint32_t index, const LumoAccessDevice& device,
                                                   Json& document) const {
  TOLK_LOG(kTrace) << "device index = " << index;
  if (!hostHasMdevBus()) {
    TOLK_LOG(kError) << " not in vdi environment";
    return LUMO_RETURN_SUCCESS;
  }
  const bool logged = hasOption("--debug");
  const LumoReturn ret =
      getAllVirtualDevice(index, device, document, [logged](const LumoAccessVirtualDevice& vgpu, Json& rows) {
        // The report knows a vGPU by its uuid; number and type, by which the driver knows it, are for the
        // log alone.
        if (logged) logIdentity(vgpu);
        queryVgpuInfo(vgpu, rows);
      });
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "Failed to query device's vgpu info! device id[" << index << "]";
  }
  return ret;
}

void VgpuQueryCommandAccess::logIdentity(const LumoAccessVirtualDevice& vgpu) {
  std::uint32_t id = 0;
  if (const LumoReturn ret = vgpu.getVgpuId(id); ret == LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kTrace) << "vgpu id = " << id;
  } else {
    TOLK_LOG(kError) << "Failed to get vgpu id! error code[" << ret << "]";
  }
  LumoVirtType type{};
  if (const LumoReturn ret = vgpu.GetVirtType(type); ret == LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kTrace) << "vgpu type = " << type.id;
  } else {
    TOLK_LOG(kError) << "Failed to get vgpu type! error code[" << ret << "]";
  }
}

void VgpuQueryCommandAccess::queryVgpuInfo(const LumoAccessVirtualDevice& vgpu, Json& rows) {
  queryMemoryUsage(vgpu, rows);
  queryUtilization(vgpu, rows);
  queryEncoderStats(vgpu, rows);
  queryDecoderStats(vgpu, rows);
  queryVgpuOverCommitInfo(vgpu, rows);
  VmInfo vm;
  vgpu.getVmInfo(vm);
  rows["VM UUID"] = std::move(vm.uuid);
}

void VgpuQueryCommandAccess::queryMemoryUsage(const LumoAccessVirtualDevice& vgpu, Json& rows) {
  unsigned long long total = 0;
  unsigned long long used = 0;
  const bool hasTotal = vgpu.getGuestMemTotal(total) == LUMO_RETURN_SUCCESS;
  const bool hasUsed = vgpu.getGuestMemUsed(used) == LUMO_RETURN_SUCCESS;
  const bool known = hasTotal && hasUsed;
  rows["FB Memory Usage"] = {{"Total", known ? mibText(total) : kNoValue},
                             {"Used", known ? mibText(used) : kNoValue},
                             {"Free", known ? mibText(total - used) : kNoValue}};
}

void VgpuQueryCommandAccess::queryUtilization(const LumoAccessVirtualDevice& vgpu, Json& rows) {
  std::uint32_t percent = 0;
  std::string gpu = kNoValue;
  std::string memory = kNoValue;
  if (const LumoReturn ret = vgpu.getGuestGpuUtilization(percent); ret == LUMO_RETURN_SUCCESS) {
    gpu = std::to_string(percent) + "%";
  } else {
    TOLK_LOG(kError) << "Failed to get guest gpu utilization! error code[" << ret << "]";
  }
  if (vgpu.getGuestMemUtilization(percent) == LUMO_RETURN_SUCCESS) memory = std::to_string(percent) + "%";
  rows["Utilization"] = {{"Gpu", std::move(gpu)}, {"Memory", std::move(memory)}};
}

void VgpuQueryCommandAccess::queryEncoderStats(const LumoAccessVirtualDevice& vgpu, Json& rows) {
  rows["Encoder Stats"] = statsRows(encoderStats(vgpu));
}

void VgpuQueryCommandAccess::queryDecoderStats(const LumoAccessVirtualDevice& vgpu, Json& rows) {
  rows["Decoder Stats"] = statsRows(decoderStats(vgpu));
}

void VgpuQueryCommandAccess::queryVgpuOverCommitInfo(const LumoAccessVirtualDevice& vgpu, Json& rows) {
  LumoVgpuOverCommitInfo info{};
  const LumoReturn ret = vgpu.getVgpuOverCommitInfo(info);
  const bool known = ret == LUMO_RETURN_SUCCESS;
  if (!known) TOLK_LOG(kError) << "Failed to get vgpu over commit info ! error code[" << ret << "]";
  rows["vGPU Over Commit"] = {
      {"Enable", !known              ? kNoValue
                 : info.enabled != 0 ? "YES"
                                     : "NO"},
      {"System Memory", known ? std::to_string(info.systemMemory) + "MiB" : kNoValue}};
}

std::shared_ptr<Step> VgpuQueryCommandAccess::makeOutput(Json document) const {
  return std::make_shared<VgpuQueryOutput>(std::move(document));
}

}  // namespace tolk
