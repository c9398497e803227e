#include "system.h"

#include "device_manager.h"

namespace lumo {
namespace {

constexpr const char* kSource = "system.cc";  // sic: the name under which logs have always shown this file

}  // namespace

std::string System::getDriverVersion(LumoReturn* status) const {
  return consumeMv(deviceManager_->getDriverVersion(), status, kSource, __LINE__);
}

std::string System::getProcessName(unsigned int pid, LumoReturn* status) const {
  return consumeMv(deviceManager_->getProcessName(pid), status, kSource, __LINE__);
}

}  // namespace lumo
