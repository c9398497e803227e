#include "command_access/vgpu_sessions_command_access.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "command_output/vgpu_sessions_output.h"
#include "common_define.h"

namespace tolk {

VgpuSessionsCommandAccess::VgpuSessionsCommandAccess(ParsedOptions parsedOptions, const CodecSessions& kind)
    : VgpuDevicesCommandAccess(std::move(parsedOptions)), kind_(kind) {}

LumoReturn VgpuSessionsCommandAccess::queryDeviceInfo(std::uint32_t index, const LumoAccessDevice& device,
                                                      Json& document) const {
  TOLK_LOG(kTrace) << "device index = " << index;
  return visitVirtualDevices(device, [&](const LumoAccessVirtualDevice& vgpu) {
    std::string uuid;
    vgpu.devGetUUID(uuid);
    return queryActiveSessions(vgpu, kind_, uuid, document);
  });
}

std::shared_ptr<Step> VgpuSessionsCommandAccess::makeOutput(Json document) const {
  return std::make_shared<VgpuSessionsOutput>(std::move(document));
}

}  // namespace tolk
