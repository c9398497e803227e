#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "kelp_return.h"

namespace kelp {

enum class DevBrand : std::uint32_t { kUnknown = 0, kOvt = 1 };

struct DeviceInfoRom {
  std::string serialNumber;
  std::string brand;
};

/// Version per firmware component; a version a.b.c is a * 10000 + b * 100 + c.
using FirmwareVersions = std::map<std::string, Stated<unsigned int>>;

struct QueryEfuseDataParam {
  unsigned int startBit = 0;
  unsigned int bitCount = 0;
};

enum class PowerLimitType : std::uint32_t {
  kRequested = 1,
  kEnforced = 2,
  kDefault = 3,
  kMinimum = 4,
  kMaximum = 5,
};

struct SetPowerLimitParam {
  unsigned int limit = 0;   ///< milliwatts
  bool persistent = false;  ///< kept over a boot
};

struct QueryPowerUsageParam {
  unsigned int domain = 0;  ///< 0 board, 1 GPU, 2 memory
};

enum class FanUnit : std::uint32_t { kPercent = 0, kRpm = 1 };

struct QueryFanSpeedParam {
  unsigned int fanIndex = 0;
  FanUnit unit = FanUnit::kPercent;
};

/// Raw bits of the one-time-programmable field: bit n is bit n % 32 of word n / 32.
struct EfuseData {
  unsigned int startBit = 0;
  unsigned int bitCount = 0;
  std::vector<std::uint32_t> words;
};

/// The identity burnt into a chip.
struct Efuse {
  Stated<unsigned int> deviceId;
  Stated<unsigned int> chipField23;  ///< field 2 OR field 3 shifted left by 5
  Stated<unsigned int> chipField1;
  Stated<unsigned long> chipField0;
};

}  // namespace kelp
