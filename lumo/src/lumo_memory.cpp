#include "entry_point.h"
#include "memory.h"

using lumo::Memory;

LumoReturn lumoMemoryGetTotal(LumoMemory* memory, unsigned long long* total) {
  return lumo::getValue(memory, total, &Memory::getTotal);
}

LumoReturn lumoMemoryGetUsed(LumoMemory* memory, unsigned long long* used) {
  return lumo::getValue(memory, used, &Memory::getUsed);
}

LumoReturn lumoMemoryGetEccMode(LumoMemory* memory, unsigned* current, unsigned* pending) {
  if (memory == nullptr || current == nullptr || pending == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::callObject(memory, &Memory::getEccMode, [=](const kelp::EccModeInfo& mode) {
    *current = static_cast<unsigned>(mode.current);
    *pending = static_cast<unsigned>(mode.pending);
    return LUMO_RETURN_SUCCESS;
  });
}

LumoReturn lumoDeviceFreeMemory(LumoMemory* memory) {
  return lumo::ignoreRelease(memory, "lumoDeviceFreeMemory");
}
