#include "command_access/vgpu_support_command_access.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "command_access/value_text.h"
#include "command_error.h"
#include "command_output/vgpu_output.h"
#include "common_define.h"

namespace tolk {

namespace {

std::string descriptionOf(const LumoAccessDevice& device, const LumoVirtType& type) {
  std::uint32_t maxInstances = 0;
  if (const LumoReturn ret = device.vGpuGetMaxInstance(type.id, maxInstances); ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "can not get max instance of vgpu, ret = " << ret;
    return kNoValue;
  }
  return formatMessage(
      "max_encode_num=%llu, max_decode_num=%llu, framebuffer=%llu, max_resolution=%llux%llu, "
      "max_ov_virtual_display=%llu, max_instances=%u",
      type.maxEncode, type.maxDecode, type.framebuffer, type.maxWidth, type.maxHeight, type.maxVirtualDisplay,
      maxInstances);
}

}  // namespace

LumoReturn VgpuSupportCommandAccess::queryDeviceInfo(std::uint32_t index, const LumoAccessDevice& device,
                                                     Json& document) const {
  TOLK_LOG(kTrace) << "device index = " << index;
  std::vector<LumoVirtType> types;
  if (const LumoReturn ret = device.vGpuGetSupportedType(types); ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "can not get supported vgpu type! error code[" << ret << "]";
    return ret;
  }
  Json& offered = document["GPU " + std::to_string(index)] = Json::object();
  for (const auto& type : types) {
    offered[type.id] = {{"ID", type.id},
                        {"Name", type.name},
                        {"Device API", type.deviceApi},
                        {"Description", descriptionOf(device, type)}};
  }
  return LUMO_RETURN_SUCCESS;
}

std::shared_ptr<Step> VgpuSupportCommandAccess::makeOutput(Json document) const {
  return std::make_shared<VgpuOutput>(std::move(document));
}

}  // namespace tolk
