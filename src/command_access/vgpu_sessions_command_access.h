#pragma once

#include "command_access/codec_sessions.h"
#include "command_access/vgpu_devices_command_access.h"

namespace tolk {

/// The video sessions that are active in guests. A session that cannot be read ends the command: a list
/// with gaps would be taken for the whole. So does a codec that has no name, by an exception that nothing
/// catches.
class VgpuSessionsCommandAccess : public VgpuDevicesCommandAccess {
 protected:
  VgpuSessionsCommandAccess(ParsedOptions parsedOptions, const CodecSessions& kind);

  LumoReturn queryDeviceInfo(std::uint32_t index, const LumoAccessDevice& device,
                             Json& document) const override;
  std::shared_ptr<Step> makeOutput(Json document) const override;

 private:
  const CodecSessions& kind_;
};

/// The command `vgpu -es`: active encoder sessions.
class VgpuEncoderSessionsCommandAccess : public VgpuSessionsCommandAccess {
 public:
  explicit VgpuEncoderSessionsCommandAccess(ParsedOptions parsedOptions)
      : VgpuSessionsCommandAccess(std::move(parsedOptions), kEncoderSessions) {}
};

/// The command `vgpu -ds`: active decoder sessions.
class VgpuDecoderSessionsCommandAccess : public VgpuSessionsCommandAccess {
 public:
  explicit VgpuDecoderSessionsCommandAccess(ParsedOptions parsedOptions)
      : VgpuSessionsCommandAccess(std::move(parsedOptions), kDecoderSessions) {}
};

}  // namespace tolk
