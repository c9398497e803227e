#include "entry_point.h"
#include "memory.h"

using lumo::Memory;

LumoReturn lumoMemoryGetTotal(LumoMemory* memory, unsigned long long* total) {
  return lumo::getValue(memory, total, &Memory::getTotal);
}

LumoReturn lumoMemoryGetUsed(LumoMemory* memory, unsigned long long* used) {
  return lumo::getValue(memory, used, &Memory::getUsed);
}

LumoReturn lumoMemoryGetUtilization(LumoMemory* memory, unsigned* utilization) {
  return lumo::getValue(memory, utilization, &Memory::getUtilization);
}

LumoReturn lumoMemoryGetSystemTotal(LumoMemory* memory, unsigned long long* total) {
  return lumo::getValue(memory, total, &Memory::getSystemTotal);
}

LumoReturn lumoMemoryGetGuestReserved(LumoMemory* memory, unsigned long long* reserved) {
  return lumo::getValue(memory, reserved, &Memory::getGuestReserved);
}

LumoReturn lumoMemoryGetGuestTotal(LumoMemory* memory, unsigned long long* total) {
  return lumo::getValue(memory, total, &Memory::getGuestTotal);
}

LumoReturn lumoMemoryGetGuestUsed(LumoMemory* memory, unsigned long long* used) {
  return lumo::getValue(memory, used, &Memory::getGuestUsed);
}

LumoReturn lumoMemoryGetGuestUtilization(LumoMemory* memory, unsigned* utilization) {
  return lumo::getValue(memory, utilization, &Memory::getGuestUtilization);
}

LumoReturn lumoMemoryGetClock(LumoMemory* memory, unsigned* megahertz) {
  return lumo::getValue(memory, megahertz, &Memory::getClock);
}

LumoReturn lumoMemoryGetMaxClock(LumoMemory* memory, unsigned* megahertz) {
  return lumo::getValue(memory, megahertz, &Memory::getMaxClock);
}

LumoReturn lumoMemoryGetBusWidth(LumoMemory* memory, unsigned* bits) {
  return lumo::getValue(memory, bits, &Memory::getBusWidth);
}

LumoReturn lumoMemoryGetBandwidth(LumoMemory* memory, unsigned* bandwidth) {
  return lumo::getValue(memory, bandwidth, &Memory::getBandwidth);
}

LumoReturn lumoMemoryGetSpeed(LumoMemory* memory, unsigned* speed) {
  return lumo::getValue(memory, speed, &Memory::getSpeed);
}

LumoReturn lumoMemoryGetVendor(LumoMemory* memory, char* vendor, unsigned length) {
  return lumo::getText(memory, vendor, length, &Memory::getVendor);
}

LumoReturn lumoMemoryGetType(LumoMemory* memory, unsigned* type) {
  return lumo::getValue(memory, type, &Memory::getMemoryType);
}

LumoReturn lumoMemoryGetEdcCounters(LumoMemory* memory, LumoMemoryEdcCounters* counters) {
  return lumo::getValue(memory, counters, [](const Memory& object, LumoReturn* status) {
    const kelp::MemoryEdc edc = object.getMemEdcCounter(status);
    return LumoMemoryEdcCounters{.readErrors = edc.readErrors,
                                 .writeErrors = edc.writeErrors,
                                 .readRetries = edc.readRetries,
                                 .writeRetries = edc.writeRetries};
  });
}

LumoReturn lumoDeviceFreeMemory(LumoMemory* memory) {
  return lumo::ignoreRelease(memory, "lumoDeviceFreeMemory");
}
