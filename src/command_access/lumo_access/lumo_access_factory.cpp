#include "command_access/lumo_access/lumo_access_factory.h"

#include "command_access/lumo_access/lumo_call.h"

namespace tolk {

namespace {

/// Information and all that is graver.
constexpr unsigned kLibraryLogLevel = 4;

/// `library` is set by a success alone, though it came too late to count.
LumoReturn startLibrary(LumoLibrary** library) {
  LumoLibrary* started = nullptr;
  const LumoReturn ret = lumoLibraryInit(&started);
  if (ret == LUMO_RETURN_SUCCESS) *library = started;
  return ret;
}

/// The adaptor of a device whose own handle is there; null when one of its parts cannot be had.
std::shared_ptr<LumoAccessDevice> makeDevice(LumoModuleSet& modules) {
  LumoReturn ret = wrapperLumo("lumoDeviceInitGpu", lumoDeviceInitGpu, modules.device, &modules.gpu);
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "Init gpu failed, ret = " << ret;
    return nullptr;
  }
  ret = wrapperLumo("lumoDeviceInitVpu", lumoDeviceInitVpu, modules.device, &modules.vpu);
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "Init vpu failed, ret = " << ret;
    return nullptr;
  }
  ret = wrapperLumo("lumoDeviceInitMemory", lumoDeviceInitMemory, modules.device, &modules.memory);
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "Init memory failed, ret = " << ret;
    return nullptr;
  }
  return std::make_shared<LumoAccessDevice>(modules);
}

}  // namespace

LumoAccessFactory::LumoAccessFactory()
    : library_(std::make_shared<LumoAccessLibrary>()), system_(std::make_shared<LumoAccessSystem>()) {}

LumoReturn LumoAccessFactory::initializeLumo() {
  TOLK_LOG(kTrace);
  LumoLibrary* library = nullptr;
  LumoReturn ret = wrapperLumo("lumoLibraryInit", startLibrary, &library);
  if (ret == LUMO_RETURN_DRIVER_NOT_LOADED) {
    TOLK_LOG(kError) << "dirver not load";  // sic
    return ret;
  }
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "lumoLibraryInit() failed, ret = " << ret;
    if (library != nullptr) wrapperLumo("lumoLibraryShutDown", lumoLibraryShutDown, library);
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  library_->setLumoLibrary(library);

  LumoSystem* system = nullptr;
  ret = wrapperLumo("lumoLibraryInitSystem", lumoLibraryInitSystem, library, &system);
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "lumoLibraryInitSystem() failed, ret = " << ret;
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  system_->setLumoSystem(system);
  return LUMO_RETURN_SUCCESS;
}

std::shared_ptr<LumoAccessDevice> LumoAccessFactory::getAccessDeviceById(std::uint32_t id) const {
  TOLK_LOG(kTrace) << "devId = " << id;
  LumoModuleSet modules;
  const LumoReturn ret = wrapperLumo("lumoLibraryInitDeviceByIndex", lumoLibraryInitDeviceByIndex,
                                     library_->getLumoLibrary(), id, &modules.device);
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "Init device failed, devId = " << id;
    return nullptr;
  }
  return makeDevice(modules);
}

std::shared_ptr<LumoAccessDevice> LumoAccessFactory::getAccessDeviceByUuid(const std::string& uuid) const {
  TOLK_LOG(kTrace) << "uuid = " << uuid;
  LumoModuleSet modules;
  const LumoReturn ret = wrapperLumo("lumoLibraryInitDeviceByUuid", lumoLibraryInitDeviceByUuid,
                                     library_->getLumoLibrary(), uuid.c_str(), &modules.device);
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "Init device failed, uuid = " << uuid;
    return nullptr;
  }
  return makeDevice(modules);
}

LumoReturn LumoAccessFactory::configureLog() {
  TOLK_LOG(kInfo) << "orvane-tolk version : " << kVersion;
  LumoLogConfiguration configuration;
  LumoReturn ret = wrapperLumo("lumoLogGetConfiguration", lumoLogGetConfiguration, &configuration);
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "get configuration of lumo's log failed, ret = " << ret;
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  // A repeat of the command finds it set. Setting it again could meet a line that is on its way.
  if (configuration.callbackLevel == kLibraryLogLevel && configuration.callback == logCallBack) return ret;
  configuration.callbackLevel = kLibraryLogLevel;
  configuration.callback = logCallBack;
  ret = wrapperLumo("lumoLogSetConfiguration", lumoLogSetConfiguration, &configuration);
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "configure lumo's log failed, ret = " << ret;
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  return ret;
}

void logCallBack(const char* message, unsigned) {
  RUSK_LOG_AS(frontLogger(), rusk::LogLevel::kInfo, "lumo_access_factory", "logCallBack") << message;
}

}  // namespace tolk
