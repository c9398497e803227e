#include "linux/pci_access.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "kelp_log.h"
#include "linux/paths.h"
#include "pci_sbdf.h"
#include "rusk/text.h"

namespace kelp::linux_ {
namespace {

/// Enough of a file that holds one number.
constexpr std::size_t kNumberLength = 10;

// Offsets in the configuration space.
constexpr std::size_t kCommand = 4;
constexpr std::size_t kRevisionId = 8;
constexpr std::size_t kHeaderType = 14;
constexpr std::size_t kFirstBar = 16;
constexpr std::size_t kSubsystemVendorId = 44;
constexpr std::size_t kSubsystemDeviceId = 46;

constexpr unsigned kMemoryDecoding = 0x2;
constexpr unsigned kHeaderTypeMask = 0x7F;
constexpr unsigned kCardBusHeader = 2;

// Flags of a base address register.
constexpr std::uint32_t kIoBar = 0x1;
constexpr std::uint32_t kPrefetchable = 0x8;
constexpr std::uint64_t kFlagBits = 0xF;

/// By bits 1 and 2 of a memory register.
struct MemoryType {
  const char* text;
  unsigned short busWidth;
  bool takesNextSlot;
};
constexpr std::array kMemoryTypes{
    MemoryType{"32-bit", 32, false},
    MemoryType{"low-1M", 0, false},
    MemoryType{"64-bit", 64, true},
    MemoryType{"type 3", 0, false},
};

/// Ten times the speed of generations 1 to 6.
constexpr std::array kGenerationSpeeds{25, 50, 80, 160, 320, 640};

bool findGeneration(float speed, Stated<unsigned int>& generation) {
  const float tenfold = speed * 10;
  if (tenfold > kGenerationSpeeds.back()) {
    return false;
  }
  for (unsigned i = 0; i < kGenerationSpeeds.size(); ++i) {
    if (static_cast<int>(tenfold) == kGenerationSpeeds[i]) {
      generation = i + 1;
      return true;
    }
  }
  return false;
}

unsigned int wordAt(std::span<const std::uint8_t> bytes, std::size_t offset) {
  return bytes[offset] | (unsigned{bytes[offset + 1]} << 8);
}

/// Takes one part of the whole: the result of reading it, and what to say when that failed.
bool isRead(bool done, const char* failure) {
  if (!done) {
    KELP_LOG(kError) << failure;
  }
  return done;
}

}  // namespace

int PciAccess::getPciInfo(PcieInfo& info) const {
  const bool done =
      isRead(readId("vendor", info.vendorId) && readId("device", info.deviceId),
             "getPciVendorAndDeviceId error") &&
      isRead(readLinkSpeed("max_link_speed", info.maxLinkSpeed), "getPciMaxLinkSpeed error") &&
      isRead(readLinkSpeed("current_link_speed", info.curLinkSpeed), "getPciCurLinkSpeed error") &&
      isRead(readLinkWidth("max_link_width", info.maxLinkWidth), "getPciMaxLinkWidth error") &&
      isRead(readLinkWidth("current_link_width", info.curLinkWidth), "getPciCurLinkWidth error") &&
      isRead(readSubsystem(info), "getPciSubSysVendorAndDeviceId error") &&
      isRead(readRevision(info), "getPciRevisionId error") &&
      isRead(readBars(info), "getPciBitWidthAndTotalBarMemory error") &&
      isRead(findGeneration(info.maxLinkSpeed.value(), info.maxLinkGen), "getPciGen max error ") &&
      isRead(findGeneration(info.curLinkSpeed.value(), info.curLinkGen), "getPciGen cur error ");
  return done ? 0 : -1;
}

FileDescriptor PciAccess::sysFsInit(const char* name) const {
  std::array<char, 1024> path;
  const int length =
      std::snprintf(path.data(), path.size(), "%s/%04x:%02x:%02x.%d/%s", kPciDevicesFolder, sbdfDomain(sbdf_),
                    sbdfBus(sbdf_), sbdfDevice(sbdf_), static_cast<int>(sbdfFunction(sbdf_)), name);
  if (length < 0 || static_cast<std::size_t>(length) >= path.size()) {
    KELP_LOG(kError) << "sysSetFsObjName error! " << name;
    return FileDescriptor();
  }
  struct stat status {};
  if (::stat(path.data(), &status) != 0) {
    KELP_LOG(kError) << "error, file not exist: " << path.data();
    return FileDescriptor();
  }
  FileDescriptor file = FileDescriptor::openForReading(path.data());
  if (!file.isOpen()) {
    KELP_LOG(kError) << "error, open config";
  }
  return file;
}

std::ptrdiff_t PciAccess::readBytes(const char* name, std::size_t offset, std::span<char> buffer) const {
  const FileDescriptor file = sysFsInit(name);
  if (!file.isOpen()) {
    return -1;
  }
  return ::pread(file.get(), buffer.data(), buffer.size(), static_cast<off_t>(offset));
}

bool PciAccess::readText(const char* name, std::string& text) const {
  text.resize(kNumberLength);
  const std::ptrdiff_t count = readBytes(name, 0, text);
  text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return count >= 0;
}

bool PciAccess::readId(const char* name, Stated<unsigned int>& id) const {
  std::string text;
  unsigned int number = 0;
  if (!readText(name, text) || std::sscanf(text.c_str(), "0x%04x", &number) != 1) {
    return false;
  }
  id = number;
  return true;
}

bool PciAccess::readLinkSpeed(const char* name, Stated<float>& speed) const {
  std::string text;
  if (!readText(name, text)) {
    return false;
  }
  // "8.0 GT/s" ends at its zero and reads as "8."; every speed that there is survives this.
  text.resize(std::min(text.find_first_not_of("123456789."), text.size()));  // sic
  speed = std::strtof(text.c_str(), nullptr);
  return true;
}

bool PciAccess::readLinkWidth(const char* name, Stated<unsigned int>& width) const {
  constexpr float kMostLanes = 65535;
  std::string text;
  if (!readText(name, text)) {
    return false;
  }
  char* end = nullptr;
  const float lanes = std::strtof(text.c_str(), &end);
  if (end == text.c_str() || !(lanes >= 0 && lanes <= kMostLanes)) {
    return false;
  }
  width = static_cast<unsigned int>(lanes);
  return true;
}

bool PciAccess::readConfig(std::size_t offset, Header& header) const {
  const std::span bytes(reinterpret_cast<char*>(header.data()), header.size());
  return readBytes("config", offset, bytes) == std::ssize(bytes);
}

bool PciAccess::readSubsystem(PcieInfo& info) const {
  Header header;
  if (!readConfig(0, header)) {
    return false;
  }
  info.subsystemVendorId = wordAt(header, kSubsystemVendorId);
  info.subsystemDeviceId = wordAt(header, kSubsystemDeviceId);
  return true;
}

bool PciAccess::readRevision(PcieInfo& info) const {
  Header header;
  if (!readConfig(0, header)) {
    return false;
  }
  info.revisionId = unsigned{header[kRevisionId]};
  return true;
}

bool PciAccess::readResource(Bars& bars) const {
  // Lines of start, end and flags; those behind the six registers are of no interest here.
  constexpr std::size_t kLongestLine = 256;
  std::string text(kLongestLine * kBarCount, '\0');
  const std::ptrdiff_t count = readBytes("resource", 0, text);
  if (count < 0) {
    return false;
  }
  text.resize(static_cast<std::size_t>(count));
  std::size_t from = 0;
  for (Bar& bar : bars) {
    const std::size_t end = std::min(text.find('\n', from), text.size());
    if (from >= end) {
      break;
    }
    const auto words = rusk::split(std::string_view(text).substr(from, end - from), ' ');
    from = end + 1;
    std::array<std::uint64_t, 3> numbers{};
    if (words.size() < numbers.size()) {
      return false;
    }
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      const auto number = rusk::parseNumber<std::uint64_t>(words[i], 16);
      if (!number) {
        return false;
      }
      numbers[i] = *number;
    }
    const auto [first, last, flags] = numbers;
    bar.base = first | (flags & kFlagBits);
    bar.size = last > first ? last - first + 1 : 0;
  }
  return true;
}

bool PciAccess::readBars(PcieInfo& info) const {
  Bars bars;
  Header header;
  if (!readResource(bars) || !readConfig(0, header)) {
    return false;
  }
  // The header of a CardBus bridge is twice as long.
  if (Header rest;
      (header[kHeaderType] & kHeaderTypeMask) == kCardBusHeader && !readConfig(kHeaderSize, rest)) {
    return false;
  }
  const bool decodesMemory = (header[kCommand] & kMemoryDecoding) != 0;
  unsigned short busWidth = 0;
  unsigned long memory = 0;
  for (std::size_t i = 0; i < bars.size(); ++i) {
    const Bar& bar = bars[i];
    const std::size_t offset = kFirstBar + 4 * i;
    std::uint32_t flags = wordAt(header, offset) | (wordAt(header, offset + 2) << 16);
    if (flags == 0xFFFFFFFF) {
      flags = 0;
    }
    if (bar.base == 0 && bar.size == 0 && flags == 0) {
      continue;
    }
    // The registers of a virtual function read as 0; the kernel knows better.
    const bool isFromSysfs = flags == 0 && bar.base != 0;
    if (isFromSysfs) {
      flags = static_cast<std::uint32_t>(bar.base);
    }
    if ((flags & kIoBar) != 0) {
      continue;
    }
    const MemoryType& type = kMemoryTypes[(flags >> 1) & 3];
    if (type.takesNextSlot) {
      ++i;
    }
    const std::string text =
        std::string(" (") + type.text + ", " + ((flags & kPrefetchable) != 0 ? "" : "non-") + "prefetchable)";
    if (!decodesMemory && !isFromSysfs) {
      continue;
    }
    // What counts is the text and not the bit. // sic
    if (text.find("non-") == std::string::npos) {
      busWidth = static_cast<unsigned short>(busWidth + type.busWidth);
      memory += bar.size;
    }
  }
  info.busWidth = busWidth;
  info.barMemory = memory;
  return true;
}

Stated<PcieInfo> readPcieInfoFromSysfs(const std::string& sbdf) {
  const std::uint64_t packed = pciSbdfToUint64(sbdf);
  PcieInfo info;
  if (packed == 0 || PciAccess(packed).getPciInfo(info) != 0) {
    return KelpReturn::kFailure;
  }
  return info;
}

}  // namespace kelp::linux_
