#include "common/efuse/efuse.h"

#include <algorithm>
#include <array>

#include "kelp_log.h"

namespace kelp {
namespace {

// Fields by what they mean, which the layouts leave open.
enum ChipField : unsigned { kChip0, kChip1, kChip2, kChip3 };
enum WoldField : unsigned { kKeyHigh = 4, kKeyLow = 5 };
enum FenField : unsigned { kFirstLowByte = 6, kSecondLowByte = 7, kSecondIsValid = 8, kArch = 9 };

/// Keys of the first chip line and their device ids.
struct WoldKey {
  unsigned int key;
  unsigned int deviceId;
};
constexpr std::array kWoldKeys{
    WoldKey{5, 0x0105},  WoldKey{8, 0x0108},  WoldKey{9, 0x0109},  WoldKey{12, 0x010C},
    WoldKey{13, 0x010D}, WoldKey{14, 0x010E}, WoldKey{15, 0x010F},
};

std::unique_ptr<const EfuseBase> makeEfuse(DevArch arch, const EfuseData& data) {
  switch (arch) {
    case DevArch::kWold:
      return std::make_unique<WoldEfuse>(data);
    case DevArch::kFen1:
    case DevArch::kFen2:
      return std::make_unique<FenEfuse>(data);
    default:
      return nullptr;
  }
}

}  // namespace

WoldEfuse::WoldEfuse(const EfuseData& data) : EfuseBase(data, std::make_unique<WoldEfuseLayout>()) {}

Stated<unsigned int> WoldEfuse::getDeviceId() const {
  KelpReturn state = KelpReturn::kSuccess;
  const std::uint64_t high = getValue(kKeyHigh, state);
  const std::uint64_t low = getValue(kKeyLow, state);
  if (state != KelpReturn::kSuccess) {
    return state;
  }
  const auto row = std::ranges::find(kWoldKeys, low | (high << 1), &WoldKey::key);
  if (row == kWoldKeys.end()) {
    return KelpReturn::kNotSupported;
  }
  return row->deviceId;
}

FenEfuse::FenEfuse(const EfuseData& data) : EfuseBase(data, std::make_unique<Fen1EfuseLayout>()) {}

Stated<unsigned int> FenEfuse::getDeviceId() const {
  KelpReturn state = KelpReturn::kSuccess;
  const bool second = getValue(kSecondIsValid, state) != 0;
  const std::uint64_t lowByte = getValue(second ? kSecondLowByte : kFirstLowByte, state);
  const std::uint64_t arch = getValue(kArch, state);
  if (state != KelpReturn::kSuccess) {
    return state;
  }
  return static_cast<unsigned int>(lowByte | ((arch >> 3) << 8));
}

Stated<Efuse> decodeEfuse(DevArch arch, const EfuseData& data) {
  const std::unique_ptr<const EfuseBase> bits = makeEfuse(arch, data);
  if (bits == nullptr) {
    KELP_LOG(kError) << "AccessPoint::doExec<QueryEfuseCmd>(): Unsupported arch = " << arch;
    return KelpReturn::kNotSupported;
  }
  Efuse efuse;
  efuse.deviceId = bits->getDeviceId();
  if (!efuse.deviceId.ok() && efuse.deviceId.state() != KelpReturn::kNotSupported) {
    return efuse.deviceId.state();
  }
  KelpReturn state = KelpReturn::kSuccess;
  const std::uint64_t chip1 = bits->getValue(kChip1, state);
  const std::uint64_t chip0 = bits->getValue(kChip0, state);
  const std::uint64_t chip2 = bits->getValue(kChip2, state);
  const std::uint64_t chip3 = bits->getValue(kChip3, state);
  if (state != KelpReturn::kSuccess) {
    return state;
  }
  efuse.chipField1 = static_cast<unsigned int>(chip1);
  efuse.chipField0 = static_cast<unsigned long>(chip0);
  efuse.chipField23 = static_cast<unsigned int>(chip2 | (chip3 << 5));
  return efuse;
}

}  // namespace kelp
