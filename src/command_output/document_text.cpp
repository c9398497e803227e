#include "command_output/document_text.h"

#include <algorithm>
#include <cstddef>

#include "command_output/text_field.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kIndent = 4;
constexpr std::size_t kKeyWidth = 50;
constexpr std::size_t kColonWidth = 3;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isLowerHexDigit(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'f');
}

/// What a PCI address looks like, with an "h" for each hexadecimal digit.
constexpr std::string_view kAddressForm = "hhhhhhhh:hh:hh.h";

void appendLevel(std::string& out, const Json& object, BeginsParagraph beginsParagraph, std::size_t depth) {
  for (const auto& [key, value] : object.items()) {
    const std::string indented = std::string(depth * kIndent, ' ') + key;
    if (beginsParagraph != nullptr && beginsParagraph(indented)) out += '\n';
    appendLeft(out, indented, kKeyWidth);
    if (value.is_object()) {
      out += '\n';
      appendLevel(out, value, beginsParagraph, depth + 1);
    } else {
      appendLeft(out, ":", kColonWidth);
      out.append(value.get_ref<const std::string&>()).append("\n");
    }
  }
}

}  // namespace

void appendDocument(std::string& out, const Json& document, BeginsParagraph beginsParagraph) {
  appendLevel(out, document, beginsParagraph, 0);
}

bool isDeviceKey(std::string_view key) {
  if (key.size() < kAddressForm.size()) return false;
  const auto address = key.substr(key.size() - kAddressForm.size());
  const bool hasAddress = std::ranges::equal(
      address, kAddressForm, [](char c, char form) { return form == 'h' ? isLowerHexDigit(c) : c == form; });
  if (!hasAddress) return false;

  auto name = key.substr(0, key.size() - kAddressForm.size());
  if (!name.ends_with(' ')) return false;
  name.remove_suffix(1);
  const auto digits =
      static_cast<std::size_t>(std::ranges::find_if_not(name.rbegin(), name.rend(), isDigit) - name.rbegin());
  name.remove_suffix(digits);
  return digits > 0 && name.ends_with("GPU");
}

}  // namespace tolk
