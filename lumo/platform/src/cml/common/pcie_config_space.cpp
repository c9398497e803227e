#include "common/pcie_config_space.h"

#include <algorithm>

#include "kelp_log.h"

namespace kelp {
namespace {

constexpr std::size_t kVendorId = 0;
constexpr std::size_t kDeviceId = 2;
constexpr std::size_t kRevisionId = 8;
constexpr std::size_t kSubsystemVendorId = 44;
constexpr std::size_t kSubsystemDeviceId = 46;
constexpr std::size_t kCapabilityPointer = 52;

constexpr unsigned kExpressCapabilityId = 16;
constexpr std::size_t kLinkCapabilities = 12;
constexpr std::size_t kLinkStatus = 18;
constexpr std::size_t kExpressCapabilityEnd = kLinkStatus + 2;

/// More entries than fit in a configuration space; a list that is longer leads back into itself.
constexpr int kMostCapabilities = 64;

constexpr std::array kWidths{1U, 2U, 4U, 8U, 16U};

/// By speed code less 1.
constexpr std::array kSpeeds{2.5F, 5.0F, 8.0F, 16.0F, 32.0F, 64.0F};
constexpr unsigned kHighestGen = 7;

// The link capabilities begin with the same two fields as the link status.
unsigned speedCode(unsigned link) {
  return link & 0xF;
}
unsigned widthCode(unsigned link) {
  return (link >> 4) & 0x3F;
}

}  // namespace

unsigned int bitValueToWidth(unsigned int value) {
  if (std::ranges::find(kWidths, value) == kWidths.end()) {
    KELP_LOG(kError) << "PcieConfigSpace paser width, not support case: " << value;  // sic
    return 0;
  }
  return value;
}

unsigned int bitValueToGen(unsigned int value) {
  if (value < 1 || value > kHighestGen) {
    KELP_LOG(kError) << "PcieConfigSpace paser gen bit Value err: " << value;  // sic
    return 0;
  }
  return value;
}

float bitValueToSpeed(unsigned int value) {
  if (value == kHighestGen) {
    KELP_LOG(kError) << "PcieConfigSpace paser speed, not support case: " << value;  // sic
    return 0;
  }
  if (value < 1 || value > kSpeeds.size()) {
    KELP_LOG(kError) << "PcieConfigSpace paser speed, paser bit Value err: " << value;  // sic
    return 0;
  }
  return kSpeeds[value - 1];
}

PcieConfigSpace::PcieConfigSpace(std::span<const std::uint8_t> bytes) {
  std::ranges::copy(bytes.first(std::min(bytes.size(), kSize)), bytes_.begin());
}

PcieInfo PcieConfigSpace::decode() const {
  PcieInfo info;
  info.vendorId = getWord(kVendorId);
  info.deviceId = getWord(kDeviceId);
  info.revisionId = unsigned{bytes_[kRevisionId]};
  info.subsystemVendorId = getWord(kSubsystemVendorId);
  info.subsystemDeviceId = getWord(kSubsystemDeviceId);
  info.maxLinkSpeed = 0.0F;
  info.curLinkSpeed = 0.0F;
  if (const std::size_t express = findExpressCapability(); express != 0) {
    const unsigned max = getWord(express + kLinkCapabilities);
    info.maxLinkSpeed = bitValueToSpeed(speedCode(max));
    info.maxLinkGen = bitValueToGen(speedCode(max));
    info.maxLinkWidth = bitValueToWidth(widthCode(max));
    const unsigned cur = getWord(express + kLinkStatus);
    info.curLinkSpeed = bitValueToSpeed(speedCode(cur));
    info.curLinkGen = bitValueToGen(speedCode(cur));
    info.curLinkWidth = bitValueToWidth(widthCode(cur));
  }
  return info;
}

std::size_t PcieConfigSpace::findExpressCapability() const {
  std::size_t entry = bytes_[kCapabilityPointer];
  for (int i = 0; i < kMostCapabilities && entry != 0; ++i) {
    if (bytes_[entry] == kExpressCapabilityId) {
      // One whose registers lie past the copy cannot be read.
      return entry + kExpressCapabilityEnd <= kSize ? entry : 0;
    }
    entry = bytes_[entry + 1];
  }
  return 0;
}

}  // namespace kelp
