#include "entry_point.h"
#include "system.h"

using lumo::System;

LumoReturn lumoSystemGetDriverVersion(LumoSystem* system, char* version, unsigned length) {
  return lumo::getText(system, version, length, &System::getDriverVersion);
}

LumoReturn lumoSystemGetProcessName(LumoSystem* system, unsigned pid, char* name, unsigned length) {
  return lumo::getText(system, name, length, [pid](const System& machine, LumoReturn* status) {
    return machine.getProcessName(pid, status);
  });
}

LumoReturn lumoLibraryFreeSystem(LumoSystem* system) {
  return lumo::ignoreRelease(system, "lumoLibraryFreeSystem");
}
