#include "linux/mdev/mdev_type.h"

#include <algorithm>
#include <array>
#include <optional>

#include "kelp_log.h"
#include "rusk/text.h"

namespace kelp::linux_ {
namespace {

/// A number of a description: one that an int holds, and no negative one.
std::optional<unsigned int> parseAmount(std::string_view text) {
  const auto number = rusk::parseNumber<int>(text);
  if (!number || *number < 0) {
    return std::nullopt;
  }
  return static_cast<unsigned int>(*number);
}

template <auto Field>
bool setNumber(MdevTypeInfo& info, std::string_view value) {
  const auto number = parseAmount(value);
  if (number) {
    info.*Field = *number;
  }
  return number.has_value();
}

bool setResolution(MdevTypeInfo& info, std::string_view value) {
  info.maxResolution = std::string(value);
  return true;
}

/// An option of a description, what the log says in front of its value, and who takes the value.
struct Option {
  std::string_view key;
  const char* line;
  bool (*set)(MdevTypeInfo& info, std::string_view value);
};
constexpr std::array kOptions{
    Option{"max_resolution", "max resolution is ", setResolution},
    Option{"max_encode_num", "max encode number is ", setNumber<&MdevTypeInfo::maxEncodeNum>},
    Option{"max_decode_num", "max decode number is ", setNumber<&MdevTypeInfo::maxDecodeNum>},
    Option{"framebuffer", "frame buffer is ", setNumber<&MdevTypeInfo::framebuffer>},
    Option{"max_instances", "max instance is ", setNumber<&MdevTypeInfo::maxInstances>},
    Option{"max_ov_virtual_display", "max virtual display is ", setNumber<&MdevTypeInfo::maxVirtualDisplay>},
};

/// Takes one option; false for one that does not fit.
bool takeOption(MdevTypeInfo& info, std::string_view option) {
  const std::size_t sign = option.find('=');
  if (sign == std::string_view::npos) {
    return false;
  }
  const auto row = std::ranges::find(kOptions, option.substr(0, sign), &Option::key);
  const std::string_view value = rusk::trim(option.substr(sign + 1));
  if (row == kOptions.end() || !row->set(info, value)) {
    return false;
  }
  KELP_LOG(kInfo) << row->line << value;
  return true;
}

template <class Number>
Stated<unsigned long> widen(const Stated<Number>& number) {
  if (!number.ok()) {
    return number.state();
  }
  return static_cast<unsigned long>(number.value());
}

/// One side of a resolution, which has two of them around an "x".
Stated<unsigned long> readSide(const Stated<std::string>& resolution, bool isHeight) {
  if (!resolution.ok()) {
    return resolution.state();
  }
  const std::string_view text = resolution.value();
  const std::size_t middle = text.find('x');
  if (middle == std::string_view::npos) {
    return KelpReturn::kNotSupported;
  }
  const auto side = parseAmount(isHeight ? text.substr(middle + 1) : text.substr(0, middle));
  if (!side) {
    return KelpReturn::kNotSupported;
  }
  return static_cast<unsigned long>(*side);
}

}  // namespace

std::string_view MdevType::getId() const {
  const std::string_view name = getName();
  const std::size_t dash = name.rfind('-');
  return dash == std::string_view::npos ? std::string_view() : name.substr(dash + 1);
}

Stated<unsigned int> MdevType::readAvailableInstances() const {
  return readNumber("/available_instances", "Failed to read available instances from ");
}

Stated<MdevTypeInfo> MdevType::readInfo() const {
  const Stated<std::string> description = readText("/description");
  if (!description.ok()) {
    return description.state();
  }
  return decode(description.value());
}

MdevVirtType MdevType::readVirtType() const {
  MdevVirtType type;
  type.id = getId();
  type.className = readDeviceApi().take();
  type.name = readName().take();
  const Stated<MdevTypeInfo> read = readInfo();
  MdevTypeInfo info = read.value();
  if (!read.ok()) {
    info = {read.state(), read.state(), read.state(), read.state(), read.state(), read.state()};
  }
  type.maxWidth = readSide(info.maxResolution, false);
  type.maxHeight = readSide(info.maxResolution, true);
  type.maxEncodeNum = widen(info.maxEncodeNum);
  type.maxDecodeNum = widen(info.maxDecodeNum);
  type.framebuffer = info.framebuffer;
  type.maxInstances = widen(info.maxInstances);
  type.maxVirtualDisplay = widen(info.maxVirtualDisplay);
  return type;
}

MdevTypeInfo MdevType::decode(std::string_view description) {
  MdevTypeInfo info;
  if (description.empty()) {
    KELP_LOG(kError) << "regex result is null";
    return info;
  }
  for (const std::string& option : rusk::split(description, ',')) {
    if (!takeOption(info, option)) {
      KELP_LOG(kWarn) << "mismatch. Current description option is " << option;
    }
  }
  return info;
}

}  // namespace kelp::linux_
