#include "command_access/list_command_access.h"

#include <string>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_error.h"
#include "command_output/list_output.h"
#include "common_define.h"

namespace tolk {

std::shared_ptr<Step> ListCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  if (auto failure = startLibrary()) return failure;
  std::vector<std::uint32_t> indices;
  if (auto failure = listDevices(StartWording{}, indices)) return failure;

  auto devices = nlohmann::ordered_json::object();
  for (const auto index : indices) {
    if (auto failure = addDevice(index, devices)) return failure;
  }
  return std::make_shared<ListOutput>(std::move(devices), hasOption("-cf"));
}

std::shared_ptr<Step> ListCommandAccess::addDevice(std::uint32_t index,
                                                   nlohmann::ordered_json& devices) const {
  const auto device = accessFactory->getAccessDeviceById(index);
  if (!device) return noSuchDevice(index);

  std::string name;
  std::string uuid;
  DeviceType type{};
  if (device->devGetName(name) != LUMO_RETURN_SUCCESS || device->devGetUUID(uuid) != LUMO_RETURN_SUCCESS ||
      device->devGetDeviceType(type) != LUMO_RETURN_SUCCESS) {
    return commandError(kNotAvailable, ExitCode::kUnsupported);
  }
  auto& member = devices[std::to_string(index)];
  member = {{"Brand Name", name}, {"UUID", uuid}};
  if (type == DeviceType::kMpcInstance) member["DeviceType"] = "MPC Instance";
  return nullptr;
}

}  // namespace tolk
