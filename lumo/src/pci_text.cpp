#include "pci_text.h"

#include <algorithm>

#include "kelp_log.h"

namespace lumo {
namespace {

bool isHex(std::string_view text) {
  return std::ranges::all_of(text, [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
  });
}

}  // namespace

bool checkSbdfFormat(std::string_view text) {
  constexpr std::size_t kTailLength = 8;  // ":41:00.0"
  constexpr std::size_t kMinDomain = 4;
  constexpr std::size_t kMaxDomain = 8;
  if (text.size() < kMinDomain + kTailLength || text.size() > kMaxDomain + kTailLength) {
    return false;
  }
  const std::string_view domain = text.substr(0, text.size() - kTailLength);
  const std::string_view tail = text.substr(domain.size());
  // sic: callers separate the function by other characters than a point, and always could.
  const bool separated = tail[6] != '\n' && tail[6] != '\r';
  return isHex(domain) && tail[0] == ':' && isHex(tail.substr(1, 2)) && tail[3] == ':' &&
         isHex(tail.substr(4, 2)) && separated && isHex(tail.substr(7, 1));
}

std::string formatOutputPciStr(const std::string& text) {
  if (checkSbdfFormat(text)) {
    return text;
  }
  KELP_LOG(kError) << "Check pci sbdf" << text << " format failed";
  return {};
}

}  // namespace lumo
