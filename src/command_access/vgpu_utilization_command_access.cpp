#include "command_access/vgpu_utilization_command_access.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "command_access/value_text.h"
#include "command_output/vgpu_utilization_output.h"
#include "common_define.h"

namespace tolk {

LumoReturn VgpuUtilizationCommandAccess::queryDeviceInfo(std::uint32_t index, const LumoAccessDevice& device,
                                                         Json& document) const {
  TOLK_LOG(kTrace) << "device index = " << index;
  const LumoReturn ret = visitVirtualDevices(device, [&](const LumoAccessVirtualDevice& vgpu) {
    getGuestUitilizaiton(index, vgpu, document);
    return LUMO_RETURN_SUCCESS;
  });
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "query device's guest utilization info failed! device id[" << index << "]";
  }
  return ret;
}

void VgpuUtilizationCommandAccess::getGuestUitilizaiton(std::uint32_t index,
                                                        const LumoAccessVirtualDevice& vgpu, Json& rows) {
  std::uint32_t vgpuId = 0;
  std::string number = kNoValue;
  std::string expected = kNoValue;
  if (const LumoReturn ret = vgpu.getVgpuId(vgpuId); ret == LUMO_RETURN_SUCCESS) {
    number = std::to_string(uniqueIdentifier(index, vgpuId));
    expected = std::to_string(vgpuId);
  } else {
    TOLK_LOG(kError) << "can not get vgpu id! error code[" << ret << "]";
  }

  std::uint32_t percent = 0;
  std::string gpu = kNoValue;
  std::string memory = kNoValue;
  if (vgpu.getGuestGpuUtilization(percent) == LUMO_RETURN_SUCCESS) {
    gpu = std::to_string(percent) + "%";
  } else {
    TOLK_LOG(kError) << "Failed to query guest gpu utilization! expect vgpu id[" << expected << "]";
  }
  if (vgpu.getGuestMemUtilization(percent) == LUMO_RETURN_SUCCESS) {
    memory = std::to_string(percent) + "%";
  } else {
    TOLK_LOG(kError) << "Failed to query guest memory utilization! expect vgpu id[" << expected << "]";
  }
  rows[std::to_string(rows.size())] = {{"Gpu Idx", std::to_string(index)},
                                       {"Vgpu Id", std::move(number)},
                                       {"Gpu Utilization", std::move(gpu)},
                                       {"Mem Utilization", std::move(memory)}};
}

std::shared_ptr<Step> VgpuUtilizationCommandAccess::makeOutput(Json document) const {
  return std::make_shared<VgpuUtilizationOutput>(std::move(document));
}

}  // namespace tolk
