#include "command_access/vgpu_created_command_access.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "command_access/value_text.h"
#include "command_output/vgpu_output.h"
#include "common_define.h"

namespace tolk {

LumoReturn VgpuCreatedCommandAccess::queryDeviceInfo(std::uint32_t index, const LumoAccessDevice& device,
                                                     Json& document) const {
  TOLK_LOG(kTrace) << "device index = " << index;
  return getAllVirtualDevice(index, device, document, queryStaticInfo);
}

void VgpuCreatedCommandAccess::queryStaticInfo(const LumoAccessVirtualDevice& vgpu, Json& rows) {
  LumoVirtType type{};
  const LumoReturn ret = vgpu.GetVirtType(type);
  const bool known = ret == LUMO_RETURN_SUCCESS;
  if (!known) TOLK_LOG(kError) << "Failed to get vgpu type! error code[" << ret << "]";
  rows["ID"] = known ? type.id : kNoValue;
  rows["Name"] = known ? type.name : kNoValue;
  rows["Device API"] = known ? type.deviceApi : kNoValue;
}

std::shared_ptr<Step> VgpuCreatedCommandAccess::makeOutput(Json document) const {
  return std::make_shared<VgpuOutput>(std::move(document));
}

}  // namespace tolk
