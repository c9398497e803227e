#include "command_access/lumo_access/lumo_access_system.h"

#include "command_access/lumo_access/lumo_call.h"

namespace tolk {

namespace {

constexpr std::size_t kVersionSize = 80;
constexpr std::size_t kProcessNameSize = 4096;

}  // namespace

LumoAccessSystem::LumoAccessSystem() {
  TOLK_LOG(kTrace);
}

LumoAccessSystem::~LumoAccessSystem() {
  TOLK_LOG(kTrace);
  if (system_ != nullptr) callLumo(LUMO_ENTRY(lumoLibraryFreeSystem), system_);
}

void LumoAccessSystem::setLumoSystem(LumoSystem* system) {
  TOLK_LOG(kTrace);
  system_ = system;
}

LumoReturn LumoAccessSystem::getDriverVersion(std::string& version) const {
  return queryLumoText<kVersionSize>(LUMO_ENTRY(lumoSystemGetDriverVersion), version, system_);
}

LumoReturn LumoAccessSystem::getProcessName(std::uint32_t pid, std::string& name) const {
  return queryLumoText<kProcessNameSize>(LUMO_ENTRY(lumoSystemGetProcessName), name, system_, pid);
}

}  // namespace tolk
