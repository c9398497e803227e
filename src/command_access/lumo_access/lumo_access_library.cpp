#include "command_access/lumo_access/lumo_access_library.h"

#include "command_access/lumo_access/lumo_call.h"

namespace tolk {

LumoAccessLibrary::LumoAccessLibrary() {
  TOLK_LOG(kTrace);
}

LumoAccessLibrary::~LumoAccessLibrary() {
  TOLK_LOG(kTrace);
  if (library_ != nullptr) callLumo(LUMO_ENTRY(lumoLibraryShutDown), library_);
}

void LumoAccessLibrary::setLumoLibrary(LumoLibrary* library) {
  TOLK_LOG(kTrace);
  library_ = library;
}

LumoReturn LumoAccessLibrary::getAccessDeviceNum(std::uint32_t& count) const {
  return queryLumo(LUMO_ENTRY(lumoLibraryCountDevice), count, library_);
}

}  // namespace tolk
