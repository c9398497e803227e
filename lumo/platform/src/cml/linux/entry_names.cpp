#include "linux/entry_names.h"

#include <algorithm>

#include "rusk/text.h"

namespace kelp::linux_ {
namespace {

bool isAlphanumeric(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isAddressOf(bool (*isDigit)(char), std::string_view name) {
  constexpr std::string_view kBehindDomain = ":xx:xx.x";
  if (name.size() < 4 + kBehindDomain.size() || name.size() > 8 + kBehindDomain.size()) {
    return false;
  }
  const std::size_t domainLength = name.size() - kBehindDomain.size();
  return std::ranges::all_of(name.substr(0, domainLength), isDigit) &&
         std::ranges::equal(name.substr(domainLength), kBehindDomain,
                            [=](char c, char form) { return form == 'x' ? isDigit(c) : c == form; });
}

}  // namespace

std::optional<std::uint64_t> numberBehind(std::string_view prefix, std::string_view name) {
  if (!name.starts_with(prefix)) {
    return std::nullopt;
  }
  return rusk::parseNumber<std::uint64_t>(name.substr(prefix.size()));
}

bool isPciAddress(std::string_view name) {
  return isAddressOf(isAlphanumeric, name);
}

bool isHexPciAddress(std::string_view name) {
  return isAddressOf(isHexDigit, name);
}

}  // namespace kelp::linux_
