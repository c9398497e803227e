#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <string_view>

#include "command_factory.h"

namespace tolk {

/// An option. The pair of names is its identity: "-s" alone belongs to three options.
struct OptionSpec {
  std::string_view shortName;     ///< may be empty, but not together with the long name
  std::string_view longName;      ///< may be empty
  std::string_view valuePattern;  ///< empty for an option that takes no value

  /// The name under which a command finds it.
  constexpr std::string_view key() const { return shortName.empty() ? longName : shortName; }
};

/// The options that a row names, in order. They live elsewhere.
class OptionRefs {
 public:
  constexpr OptionRefs(std::same_as<const OptionSpec> auto&... specs)  // implicit, for rows in braces
      : specs_{&specs...}, count_(sizeof...(specs)) {}

  constexpr const OptionSpec* const* begin() const { return specs_.data(); }
  constexpr const OptionSpec* const* end() const { return specs_.data() + count_; }

 private:
  std::array<const OptionSpec*, 9> specs_{};
  std::size_t count_ = 0;
};

/// One row of the grammar: what must be given, what may be given, and the command that this means.
struct CommandRow {
  std::string_view subCommand;  ///< a leading word, empty for none
  OptionRefs mandatory;
  CommandFactory factory;
  OptionRefs optional;
};

}  // namespace tolk
