#include "command_access/sablink_remote_link_info_command_access.h"

#include <iostream>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_error.h"
#include "common_define.h"

namespace tolk {

std::shared_ptr<Step> SablinkRemoteLinkInfoCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  std::uint32_t count = 0;
  if (auto failure = startWithDevices(count)) return failure;
  if (!hasOption("-i")) return commandError(kNoDeviceAsked, ExitCode::kBadArgument);
  if (!hasOption("-l")) {
    return commandError("Error: please specify one Sablink by option -l or --link.", ExitCode::kBadArgument);
  }
  Target local;
  if (auto failure = findTarget(local)) return failure;

  const auto link = linkAsked();
  Target remote;
  std::string uuid;
  if (local.device->getSablinkRemoteDevice(link, remote.index) == LUMO_RETURN_SUCCESS) {
    remote.device = accessFactory->getAccessDeviceById(remote.index);
  }
  if (!remote.device || remote.device->devGetUUID(uuid) != LUMO_RETURN_SUCCESS) {
    return commandError(kNotAvailable, ExitCode::kUnsupported);
  }
  std::cout << formatMessage("The remote device of link%d in GPU%d is GPU%d(UUID:%s).",
                             static_cast<std::int32_t>(link), static_cast<std::int32_t>(local.index),
                             static_cast<std::int32_t>(remote.index), uuid.c_str())
            << std::endl;
  return nullptr;
}

}  // namespace tolk
