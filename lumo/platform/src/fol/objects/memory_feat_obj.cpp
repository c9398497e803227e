#include "objects/memory_feat_obj.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "objects/family_ids.h"
#include "objects/queries.h"

namespace kelp {
namespace {

constexpr unsigned long kHertzPerMegahertz = 1000000;
/// Bits and mega in a bandwidth of GB/s.
constexpr unsigned long kMegabitsPerGigabyte = 8000;

/// No real figure is as large; a driver's nonsense stays large.
unsigned int clamped(unsigned long value) {
  return static_cast<unsigned int>(std::min<unsigned long>(value, std::numeric_limits<unsigned int>::max()));
}

/// Transfers per clock are two; the top bin of the first family's memory is sold by its odd rate.
unsigned long doubleRate(unsigned long clock) {
  constexpr unsigned long kOddBin = 1866;
  const unsigned long megahertz = clock / kHertzPerMegahertz;
  return 2 * megahertz + (megahertz == kOddBin ? 1 : 0);
}

/// Transfers per clock are eight; the rate is told in steps of 100.
unsigned long eightfoldRate(unsigned long clock) {
  const float rate = static_cast<float>(clock) / static_cast<float>(kHertzPerMegahertz) * 8.0F;
  return static_cast<unsigned long>(std::lround(rate / 100.0F)) * 100;
}

}  // namespace

MemoryFeatObj::MemoryFeatObj(const std::shared_ptr<CoreModel>& coreModel) : FeatObj(coreModel) {
  spec_ = model().exec(QueryDdrCapCmd());
}

Stated<unsigned long> MemoryFeatObj::queryTotal() const {
  return fieldOf(model().exec(QueryMemUsageCmd()), &MemoryUsage::total);
}

Stated<unsigned long> MemoryFeatObj::queryUsed() const {
  const Stated<MemoryUsage> usage = model().exec(QueryMemUsageCmd());
  if (!usage.ok()) {
    return usage.state();
  }
  unsigned long regions = 0;
  for (const Stated<unsigned long>& region : usage.value().region) {
    regions += region.ok() ? region.value() : 0;
  }
  const Stated<unsigned long>& own = usage.value().used;
  return std::max(regions, own.ok() ? own.value() : 0);
}

Stated<unsigned long> MemoryFeatObj::querySystemTotal() const {
  return fieldOf(model().exec(QueryMemUsageCmd()), &MemoryUsage::systemTotal);
}

Stated<unsigned long> MemoryFeatObj::queryGuestReserved() const {
  return fieldOf(model().exec(QueryMemUsageCmd()), &MemoryUsage::guestReserved);
}

Stated<unsigned long> MemoryFeatObj::queryClock() const {
  const auto row = std::ranges::find(ids::kMemoryClocks, model().getCuid().arch, &ids::MemoryClock::arch);
  if (row == ids::kMemoryClocks.end()) {
    return KelpReturn::kNotSupported;
  }
  return model().exec(QueryClockCmd(QueryClockParam{.clockId = row->clockId}));
}

Stated<unsigned long> MemoryFeatObj::getMaxClock() const {
  return fieldOf(spec_, &MemorySpec::maxClock);
}

Stated<unsigned int> MemoryFeatObj::getBusWidth() const {
  const Stated<unsigned int> count = fieldOf(spec_, &MemorySpec::channelCount);
  if (!count.ok()) {
    return count;
  }
  const Stated<unsigned int> width = fieldOf(spec_, &MemorySpec::channelWidth);
  if (!width.ok()) {
    return width;
  }
  return count.value() * width.value();
}

Stated<unsigned int> MemoryFeatObj::queryBandwidth() const {
  const Stated<unsigned int> speed = querySpeed();
  if (!speed.ok()) {
    return speed;
  }
  const Stated<unsigned int> busWidth = getBusWidth();
  if (!busWidth.ok()) {
    return busWidth;
  }
  return clamped(static_cast<unsigned long>(speed.value()) * busWidth.value() / kMegabitsPerGigabyte);
}

Stated<unsigned int> MemoryFeatObj::querySpeed() const {
  const Stated<unsigned long> clock = queryClock();
  if (!clock.ok()) {
    return clock.state();
  }
  const bool isWold = model().getCuid().arch == DevArch::kWold;
  return clamped(isWold ? doubleRate(clock.value()) : eightfoldRate(clock.value()));
}

Stated<std::string> MemoryFeatObj::getVendor() const {
  return fieldOf(spec_, &MemorySpec::vendor);
}

Stated<unsigned int> MemoryFeatObj::getMemoryType() const {
  return fieldOf(spec_, &MemorySpec::type);
}

Stated<MemoryEdc> MemoryFeatObj::queryEdcCounters() const {
  return model().exec(QueryMemEdcCmd());
}

Stated<unsigned int> MemoryFeatObj::queryRetiredPages() const {
  const Stated<EccPageRetirementCount> pages = model().exec(QueryEccRetiredPagesCntCmd());
  if (!pages.ok()) {
    return pages.state();
  }
  return pages.value().singleBit + pages.value().doubleBit;
}

}  // namespace kelp
