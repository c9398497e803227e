#include "command_access/mpc_command_access.h"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_access/value_text.h"
#include "command_error.h"
#include "command_output/mpc_output.h"
#include "common_define.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;

std::shared_ptr<Step> notAvailable() {
  return commandError(kNotAvailable, ExitCode::kUnsupported);
}

std::shared_ptr<Step> report(LumoReturn ret, const char* success) {
  if (ret != LUMO_RETURN_SUCCESS) return notAvailable();
  std::cout << success << std::endl;
  return nullptr;
}

template <std::size_t size>
std::string textOf(const char (&field)[size]) {
  return {field, ::strnlen(field, size)};
}

std::string nameOf(std::uint32_t profileId, const std::vector<LumoMpcProfile>& profiles) {
  for (const auto& profile : profiles) {
    if (profile.id == profileId) return textOf(profile.name);
  }
  return kNoValue;
}

}  // namespace

const MpcCommandAccess::Form MpcCommandAccess::kForms[] = {
    {"-enable", &MpcCommandAccess::enableMpcModeForTargetDevice},
    {"-disable", &MpcCommandAccess::disableMpcModeForTargetDevice},
    {"-cm", &MpcCommandAccess::configureMpc},
    {"-lmc", &MpcCommandAccess::reportConfigurations},
    {"-lmi", &MpcCommandAccess::reportInstances},
};

std::shared_ptr<Step> MpcCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  if (auto failure = startLibrary()) return failure;
  Target target;
  if (auto failure = findTarget(target)) return failure;
  for (const auto& form : kForms) {
    if (hasOption(form.option)) return (this->*form.run)(target);
  }
  return commandError("Error: not support this command", ExitCode::kUnsupported);
}

std::shared_ptr<Step> MpcCommandAccess::findTarget(Target& target) const {
  if (!hasOption("-i")) {
    return commandError("Error: please specify one GPU device by option -i or --id.", ExitCode::kBadArgument);
  }
  const std::int64_t asked = std::strtol(options.at("-i").front().c_str(), nullptr, 10);
  std::uint32_t count = 0;
  if (auto failure = countDevices(StartWording{}, count)) return failure;
  if (asked >= count) return commandError("Error: index is invalid", ExitCode::kBadArgument);
  target = {.index = static_cast<std::uint32_t>(asked), .device = deviceAt(asked)};
  return target.device ? nullptr : notAvailable();
}

std::shared_ptr<Step> MpcCommandAccess::enableMpcModeForTargetDevice(const Target& target) const {
  return report(target.device->enableMpcMode(), "Enable MPC mode successfully");
}

std::shared_ptr<Step> MpcCommandAccess::disableMpcModeForTargetDevice(const Target& target) const {
  return report(target.device->disableMpcMode(), "Disable MPC mode successfully");
}

std::shared_ptr<Step> MpcCommandAccess::configureMpc(const Target& target) const {
  return report(target.device->setMpcConfiguration(numberOf("-cm")), "Configure MPC mode successfully");
}

std::shared_ptr<Step> MpcCommandAccess::reportConfigurations(const Target& target) const {
  auto document = Json::object();
  if (listMpcConfiguration(target, document) != LUMO_RETURN_SUCCESS) return notAvailable();
  return std::make_shared<MpcOutput>(std::move(document));
}

std::shared_ptr<Step> MpcCommandAccess::reportInstances(const Target& target) const {
  DeviceType type{};
  if (target.device->devGetDeviceType(type) != LUMO_RETURN_SUCCESS || type != DeviceType::kMpcParent) {
    return commandError("Error: target device is not mpc parent", ExitCode::kUnsupported);
  }
  auto document = Json::object();
  if (listMpcInstance(target, document) != LUMO_RETURN_SUCCESS) return notAvailable();
  return std::make_shared<MpcOutput>(std::move(document));
}

LumoReturn MpcCommandAccess::listMpcConfiguration(const Target& target, Json& document) {
  std::vector<LumoMpcProfile> profiles;
  if (const LumoReturn ret = target.device->getSupportedMpcProfiles(profiles); ret != LUMO_RETURN_SUCCESS) {
    return ret;
  }
  std::vector<LumoMpcConfiguration> configurations;
  if (const LumoReturn ret = target.device->getSupportedMpcConfiguretions(configurations);
      ret != LUMO_RETURN_SUCCESS) {
    return ret;
  }

  const auto device = std::to_string(target.index);
  auto& profileRows = document["profiles"][device] = Json::object();
  for (const auto& profile : profiles) {
    profileRows[std::to_string(profileRows.size())] = {{"ProfileId", std::to_string(profile.id)},
                                                       {"Name", textOf(profile.name)},
                                                       {"CoreCount", std::to_string(profile.coreCount)},
                                                       {"Memory", std::to_string(profile.memory)}};
  }
  auto& configurationRows = document["configurations"][device] = Json::object();
  for (const auto& configuration : configurations) {
    std::string ids;
    std::string names;
    for (unsigned i = 0; i < configuration.profileCount && i < std::size(configuration.profileIds); ++i) {
      const auto* const separator = i == 0 ? "" : ",";
      ids.append(separator).append(std::to_string(configuration.profileIds[i]));
      names.append(separator).append(nameOf(configuration.profileIds[i], profiles));
    }
    configurationRows[std::to_string(configurationRows.size())] = {
        {"ConfigId", std::to_string(configuration.id)},
        {"ConfigName", textOf(configuration.name)},
        {"Profile Combination", std::move(ids)},
        {"Profile Names", std::move(names)}};
  }
  return LUMO_RETURN_SUCCESS;
}

LumoReturn MpcCommandAccess::listMpcInstance(const Target& target, Json& document) {
  std::vector<MpcInstance> instances;
  if (const LumoReturn ret = target.device->getMpcInstances(instances); ret != LUMO_RETURN_SUCCESS)
    return ret;

  auto& rows = document["instance"] = Json::object();
  for (const auto& instance : instances) {
    rows[std::to_string(rows.size())] = {{"ParentIndex", std::to_string(target.index)},
                                         {"InstanceId", std::to_string(instance.instanceIndex)},
                                         {"Name", textOf(instance.profile.name)},
                                         {"ProfileID", std::to_string(instance.profile.id)},
                                         {"DeviceID", std::to_string(instance.deviceIndex)}};
  }
  return LUMO_RETURN_SUCCESS;
}

}  // namespace tolk
