#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <span>
#include <string>
#include <type_traits>

namespace tolk_fuzz {

/// The bytes of one input, taken off its front. Behind its end all numbers are 0 and all spans empty.
class FuzzInput {
 public:
  FuzzInput(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

  template <class Number>
  Number take() {
    static_assert(std::is_trivially_copyable_v<Number>);
    Number number{};
    const auto bytes = takeBytes(sizeof number);
    if (!bytes.empty()) std::memcpy(&number, bytes.data(), bytes.size());
    if (taken) taken(&number, sizeof number);
    return number;
  }

  /// Up to `most` bytes.
  std::span<const std::uint8_t> takeBytes(std::size_t most) {
    const auto bytes = rest_.first(std::min(most, rest_.size()));
    rest_ = rest_.subspan(bytes.size());
    return bytes;
  }

  /// All that is left, as a text.
  std::string takeText() {
    const auto bytes = takeBytes(rest_.size());
    return {bytes.begin(), bytes.end()};
  }

  bool atEnd() const { return rest_.empty(); }

  /// Told of every number; for who writes inputs.
  std::function<void(const void* number, std::size_t size)> taken;

 private:
  std::span<const std::uint8_t> rest_;
};

}  // namespace tolk_fuzz
