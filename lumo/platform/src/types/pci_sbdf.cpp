#include "pci_sbdf.h"

#include <array>
#include <charconv>
#include <cstdio>

#include "kelp_log.h"

namespace kelp {

std::uint64_t packSbdf(std::uint32_t domain, std::uint32_t bus, std::uint32_t device,
                       std::uint32_t function) {
  return (std::uint64_t{domain} << 32) | (std::uint64_t{bus & 0xFF} << 16) |
         (std::uint64_t{device & 0xFF} << 8) | std::uint64_t{function & 0xFF};
}

std::string sbdfText(std::uint64_t sbdf) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04x:%02x:%02x.%x", sbdfDomain(sbdf), sbdfBus(sbdf),
                sbdfDevice(sbdf), sbdfFunction(sbdf));
  return text.data();
}

std::uint64_t pciSbdfToUint64(std::string_view text) {
  std::array<std::uint32_t, 4> parts{};
  std::size_t from = 0;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const bool last = i + 1 == parts.size();
    const std::size_t to = last ? text.size() : text.find_first_of(":.", from);
    if (to == std::string_view::npos) {
      from = text.size() + 1;
      break;
    }
    const char* end = text.data() + to;
    const auto [stop, error] = std::from_chars(text.data() + from, end, parts[i], 16);
    if (error != std::errc{} || stop != end) {
      from = text.size() + 1;
      break;
    }
    from = last ? to : to + 1;
  }
  if (from != text.size()) {
    KELP_LOG(kError) << "Convert " << text << " to uint64 failed";
    return 0;
  }
  return packSbdf(parts[0], parts[1], parts[2], parts[3]);
}

}  // namespace kelp
