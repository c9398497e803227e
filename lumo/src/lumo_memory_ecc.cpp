#include "entry_point.h"
#include "memory.h"

using lumo::Memory;
using lumo::with;

namespace {

/// Every choice of error correction is between 0 and 1.
bool isEither(unsigned number) {
  return number <= 1;
}

constexpr unsigned kInlineEcc = 1;  ///< the only type of counter

}  // namespace

LumoReturn lumoMemoryGetEccMode(LumoMemory* memory, unsigned* current, unsigned* pending) {
  return lumo::getPair(memory, current, pending, [](const Memory& object, LumoReturn* status) {
    const kelp::EccModeInfo mode = object.getEccMode(status);
    return std::pair(static_cast<unsigned>(mode.current), static_cast<unsigned>(mode.pending));
  });
}

LumoReturn lumoMemorySetEccMode(LumoMemory* memory, unsigned mode) {
  if (!isEither(mode)) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::runOperation(memory, with(&Memory::setEccMode, static_cast<kelp::EccMode>(mode)));
}

LumoReturn lumoMemoryGetRetiredPagesCount(LumoMemory* memory, unsigned* singleBit, unsigned* doubleBit) {
  return lumo::getPair(memory, singleBit, doubleBit, [](const Memory& object, LumoReturn* status) {
    const kelp::EccPageRetirementCount count = object.getEccRetiredPagesCount(status);
    return std::pair(count.singleBit, count.doubleBit);
  });
}

LumoReturn lumoMemoryGetRetiredPages(LumoMemory* memory, unsigned cause, unsigned count,
                                     LumoRetiredPage* pages) {
  if (memory == nullptr || pages == nullptr || !isEither(cause) || count == 0) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  std::memset(pages, 0, count * sizeof *pages);
  return lumo::getList(memory, pages, count, with(&Memory::getEccRetiredPagesInfo, cause, count));
}

LumoReturn lumoMemoryGetRetiredPagesPendingStatus(LumoMemory* memory, unsigned* pending) {
  return lumo::getValue(memory, pending, &Memory::getEccRetiredPagesPendingStatus);
}

LumoReturn lumoMemoryGetEccErrorCounter(LumoMemory* memory, unsigned errorType, unsigned counterType,
                                        unsigned location, unsigned long long* count) {
  if (!isEither(errorType) || counterType != kInlineEcc || !isEither(location)) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  const kelp::QueryEccErrorsParam which{
      .errorType = errorType, .counterType = counterType, .location = location};
  return lumo::getValue(memory, count, with(&Memory::getEccErrors, which));
}

LumoReturn lumoMemoryClearEccErrorCounter(LumoMemory* memory, unsigned location) {
  if (!isEither(location)) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::runOperation(memory,
                            with(&Memory::clearEccErrors, static_cast<kelp::EccCounterType>(location)));
}
