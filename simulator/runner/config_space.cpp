#include "config_space.h"

#include <array>
#include <cstdio>

namespace {

constexpr size_t kConfigSize = 256;
constexpr size_t kPowerCapability = 0x40;
constexpr size_t kPcieCapability = 0x60;

void put(std::string& bytes, size_t offset, unsigned width, uint64_t number) {
  for (unsigned i = 0; i < width; ++i) bytes[offset + i] = static_cast<char>(number >> (8 * i));
}

// Type bits of a BAR: 64 bits wide, prefetchable.
uint32_t barFlags(const Bar& bar) {
  return (bar.is64 ? 0x4u : 0u) | (bar.prefetchable ? 0x8u : 0u);
}

void putBars(std::string& bytes, const PciFunction& function) {
  for (size_t i = 0; i < function.bars.size(); ++i) {
    if (!function.bars[i]) continue;
    const Bar& bar = *function.bars[i];
    const size_t offset = 16 + 4 * i;
    put(bytes, offset, 4, (bar.base & 0xFFFFFFF0u) | barFlags(bar));
    if (bar.is64 && i + 1 < function.bars.size()) put(bytes, offset + 4, 4, bar.base >> 32);
  }
}

unsigned speedCode(double speed) {
  return linkSpeedCode(speed).value_or(0);
}

void putPcieCapability(std::string& bytes, const PciFunction& function) {
  put(bytes, kPcieCapability, 1, 0x10);
  put(bytes, kPcieCapability + 1, 1, 0);
  put(bytes, kPcieCapability + 2, 2, 0x0002);  // an endpoint, version 2 of the capability
  put(bytes, kPcieCapability + 12, 4, speedCode(function.highest.speed) | function.highest.width << 4);
  put(bytes, kPcieCapability + 18, 2, speedCode(function.current.speed) | function.current.width << 4);
}

}  // namespace

std::optional<unsigned> linkSpeedCode(double speed) {
  static constexpr std::array kSpeeds{2.5, 5.0, 8.0, 16.0, 32.0, 64.0};
  for (unsigned i = 0; i < kSpeeds.size(); ++i) {
    if (kSpeeds[i] == speed) return i + 1;
  }
  return std::nullopt;
}

std::string linkSpeedText(double speed) {
  char text[40];
  std::snprintf(text, sizeof text, "%.1f GT/s PCIe", speed);
  return text;
}

std::string makeConfigSpace(const PciFunction& function) {
  std::string bytes(kConfigSize, '\0');
  put(bytes, 0, 2, function.identity.vendorId);
  put(bytes, 2, 2, function.identity.deviceId);
  put(bytes, 4, 2, 0x0006);  // memory decoding, bus master
  put(bytes, 6, 2, 0x0010);  // has a capability list
  put(bytes, 8, 1, function.revision);
  put(bytes, 9, 3, function.identity.classCode);
  putBars(bytes, function);
  put(bytes, 44, 2, function.subsystemVendorId);
  put(bytes, 46, 2, function.subsystemDeviceId);
  put(bytes, 52, 1, kPowerCapability);
  put(bytes, kPowerCapability, 1, 0x01);
  put(bytes, kPowerCapability + 1, 1, function.hasPcieCapability ? kPcieCapability : 0);
  put(bytes, kPowerCapability + 2, 2, 0x0003);
  if (function.hasPcieCapability) putPcieCapability(bytes, function);
  return bytes;
}

std::string makeResourceFile(const PciFunction& function) {
  // As the kernel counts: memory, prefetchable, 64 bits wide, and the low bits as the BAR has them.
  constexpr uint64_t kMemory = 0x00000200;
  constexpr uint64_t kSizeAlign = 0x00040000;
  constexpr uint64_t kPrefetch = 0x00002000;
  constexpr uint64_t kWide = 0x00100000;
  constexpr size_t kLines = 13;
  std::string text;
  for (size_t i = 0; i < kLines; ++i) {
    uint64_t start = 0;
    uint64_t end = 0;
    uint64_t flags = 0;
    if (i < function.bars.size() && function.bars[i]) {
      const Bar& bar = *function.bars[i];
      start = bar.base;
      end = bar.base + bar.size - 1;
      flags =
          kMemory | kSizeAlign | (bar.prefetchable ? kPrefetch : 0) | (bar.is64 ? kWide : 0) | barFlags(bar);
    }
    char line[80];
    std::snprintf(line, sizeof line, "0x%016llx 0x%016llx 0x%016llx\n",
                  static_cast<unsigned long long>(start), static_cast<unsigned long long>(end),
                  static_cast<unsigned long long>(flags));
    text += line;
  }
  return text;
}

void placeBars(PciFunction& function, size_t index) {
  uint64_t wide = 0x20'0000'0000 + static_cast<uint64_t>(index) * 0x40'0000'0000;
  uint64_t narrow = 0x8000'0000 + static_cast<uint64_t>(index) * 0x0200'0000;
  for (auto& bar : function.bars) {
    if (!bar || bar->size == 0) continue;
    uint64_t& next = bar->is64 ? wide : narrow;
    next = (next + bar->size - 1) / bar->size * bar->size;
    bar->base = next;
    next += bar->size;
  }
}
