#include "affinity_text.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <vector>

#include "kelp_log.h"

namespace lumo {
namespace {

constexpr unsigned kBitsPerWord = 64;

/// The whole text as a number.
template <class Number>
std::optional<Number> toNumber(std::string_view text, int base) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::vector<std::string_view> splitAtCommas(std::string_view text) {
  std::vector<std::string_view> items;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t comma = std::min(text.find(',', start), text.size());
    items.push_back(text.substr(start, comma - start));
    start = comma + 1;
  }
  return items;
}

LumoReturn copyMask(const std::vector<unsigned long long>& mask, unsigned count, unsigned long long* out) {
  if (mask.size() > count) {
    return LUMO_RETURN_INSUFFICIENT_SIZE;
  }
  std::fill(std::copy(mask.begin(), mask.end(), out), out + count, 0ULL);
  return LUMO_RETURN_SUCCESS;
}

}  // namespace

LumoReturn cpuAffinityBitmaskToUnsignedLong(const std::string& text, unsigned count,
                                            unsigned long long* out) {
  if (text.empty()) {
    KELP_LOG(kError) << "affinity bitmask is empty";
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  const std::vector<std::string_view> halves = splitAtCommas(text);
  std::vector<unsigned long long> mask((halves.size() + 1) / 2);
  for (std::size_t i = 0; i < halves.size(); ++i) {
    const std::optional<unsigned int> half = toNumber<unsigned int>(halves[i], 16);
    if (!half) {
      return LUMO_RETURN_UNKNOWN_ERROR;
    }
    // sic: the low half comes first
    mask[i / 2] |= static_cast<unsigned long long>(*half) << (i % 2 == 0 ? 0 : kBitsPerWord / 2);
  }
  return copyMask(mask, count, out);
}

LumoReturn affinityStringToUnsignedLong(const std::string& text, unsigned count, unsigned long long* out) {
  if (text.empty()) {
    KELP_LOG(kError) << "affinity string is empty";
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  KELP_LOG(kInfo) << "processing affinity string is " << text;
  std::vector<unsigned long long> mask;
  for (const std::string_view item : splitAtCommas(text)) {
    const std::size_t hyphen = std::min(item.find('-'), item.size());
    const auto first = toNumber<unsigned int>(item.substr(0, hyphen), 10);
    const auto last = hyphen == item.size() ? first : toNumber<unsigned int>(item.substr(hyphen + 1), 10);
    if (!first || !last || *first > *last) {
      return LUMO_RETURN_UNKNOWN_ERROR;
    }
    // Before anything grows by a number of the file's.
    if (*last / kBitsPerWord >= count) {
      return LUMO_RETURN_INSUFFICIENT_SIZE;
    }
    mask.resize(std::max<std::size_t>(mask.size(), *last / kBitsPerWord + 1));
    for (std::size_t number = *first; number <= *last; ++number) {
      mask[number / kBitsPerWord] |= 1ULL << number % kBitsPerWord;
    }
  }
  return copyMask(mask, count, out);
}

}  // namespace lumo
