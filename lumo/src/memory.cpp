#include "memory.h"

#include <algorithm>
#include <limits>

#include "objects/memory_feat_obj.h"
#include "objects/virtual_feat_obj.h"
#include "whole_number.h"

namespace lumo {

using kelp::Features;
using kelp::MemoryFeatObj;

namespace {

/// Share in whole percent. A part so large that its hundredfold overflows is scaled down first.
unsigned int percentOf(unsigned long part, unsigned long whole, LumoReturn* status) {
  if (*status != LUMO_RETURN_SUCCESS) {
    return 0;
  }
  if (whole == 0) {
    *status = LUMO_RETURN_UNKNOWN_ERROR;
    return 0;
  }
  constexpr unsigned long kMost = std::numeric_limits<unsigned long>::max() / 100;
  const unsigned long percent = part > kMost ? part / std::max(whole / 100, 1UL) : part * 100 / whole;
  return static_cast<unsigned int>(
      std::min<unsigned long>(percent, std::numeric_limits<unsigned int>::max()));
}

}  // namespace

unsigned long Memory::getTotal(LumoReturn* status) const {
  return ask(&Features::memory, status, &MemoryFeatObj::queryTotal);
}

kelp::GuestMemoryUsage Memory::queryGuestMemory(LumoReturn* status, std::source_location operation) const {
  if (getType() != kelp::DevType::kMediated) {
    logMissingFeature(operation);
    *status = LUMO_RETURN_NOT_SUPPORTED;
    return {};
  }
  const auto feature = enterAny(&Features::virt, status, operation);
  return feature == nullptr ? kelp::GuestMemoryUsage{}
                            : consumeMv(feature->queryGuestMemory(), status, operation);
}

unsigned long Memory::getGuestTotal(LumoReturn* status) const {
  kelp::GuestMemoryUsage usage = queryGuestMemory(status, std::source_location::current());
  return *status == LUMO_RETURN_SUCCESS ? consumeMv(std::move(usage.total), status) : 0;
}

unsigned long Memory::getUsed(LumoReturn* status) const {
  return ask(&Features::memory, status, &MemoryFeatObj::queryUsed);
}

unsigned long Memory::getSystemTotal(LumoReturn* status) const {
  return ask(&Features::memory, status, &MemoryFeatObj::querySystemTotal);
}

unsigned long Memory::getGuestUsed(LumoReturn* status) const {
  kelp::GuestMemoryUsage usage = queryGuestMemory(status, std::source_location::current());
  return *status == LUMO_RETURN_SUCCESS ? consumeMv(std::move(usage.used), status) : 0;
}

unsigned int Memory::getClock(LumoReturn* status) const {
  return megahertz(ask(&Features::memory, status, &MemoryFeatObj::queryClock));
}

unsigned int Memory::getMaxClock(LumoReturn* status) const {
  if (!hasMaxClocks()) {
    *status = LUMO_RETURN_NOT_SUPPORTED;
    return 0;
  }
  return megahertz(ask(&Features::memory, status, &MemoryFeatObj::getMaxClock));
}

unsigned int Memory::getBusWidth(LumoReturn* status) const {
  return ask(&Features::memory, status, &MemoryFeatObj::getBusWidth);
}

unsigned int Memory::getBandwidth(LumoReturn* status) const {
  return ask(&Features::memory, status, &MemoryFeatObj::queryBandwidth);
}

unsigned int Memory::getSpeed(LumoReturn* status) const {
  return ask(&Features::memory, status, &MemoryFeatObj::querySpeed);
}

std::string Memory::getVendor(LumoReturn* status) const {
  return ask(&Features::memory, status, &MemoryFeatObj::getVendor);
}

unsigned int Memory::getMemoryType(LumoReturn* status) const {
  return ask(&Features::memory, status, &MemoryFeatObj::getMemoryType);
}

unsigned long Memory::getGuestReserved(LumoReturn* status) const {
  return ask(&Features::memory, status, &MemoryFeatObj::queryGuestReserved);
}

kelp::MemoryEdc Memory::getMemEdcCounter(LumoReturn* status) const {
  return ask(&Features::memory, status, &MemoryFeatObj::queryEdcCounters);
}

unsigned int Memory::getUtilization(LumoReturn* status) const {
  const unsigned long used = getUsed(status);
  const unsigned long total = *status == LUMO_RETURN_SUCCESS ? getTotal(status) : 0;
  return percentOf(used, total, status);
}

unsigned int Memory::getGuestUtilization(LumoReturn* status) const {
  // Both from one answer: between two of them the guest may have taken more.
  kelp::GuestMemoryUsage usage = queryGuestMemory(status, std::source_location::current());
  const auto take = [status](kelp::Stated<unsigned long>& bytes) {
    return *status == LUMO_RETURN_SUCCESS ? consumeMv(std::move(bytes), status) : 0;
  };
  const unsigned long used = take(usage.used);
  const unsigned long total = take(usage.total);
  return percentOf(used, total, status);
}

}  // namespace lumo
