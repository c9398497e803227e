#include "command_access/lumo_access/pci_address_text.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <system_error>

namespace tolk {

void widenPciDomain(char (&sbdf)[LUMO_PCI_SBDF_SIZE]) {
  static constexpr std::array<char, 4> kBehindNumber{':', ':', '.', '\0'};
  std::array<unsigned, 4> numbers{};
  const char* at = sbdf;
  const char* const end = sbdf + ::strnlen(sbdf, sizeof sbdf - 1);
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const auto [rest, error] = std::from_chars(at, end, numbers[i], 16);
    if (error != std::errc() || (rest == end ? '\0' : *rest) != kBehindNumber[i]) return;
    at = rest + (rest != end);
  }
  std::snprintf(sbdf, sizeof sbdf, "%08x:%02x:%02x.%x", numbers[0], numbers[1], numbers[2], numbers[3]);
}

}  // namespace tolk
