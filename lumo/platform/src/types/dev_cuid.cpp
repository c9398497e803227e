#include "dev_cuid.h"

#include <array>

#include "pci_sbdf.h"

namespace kelp {
namespace {

constexpr std::array<const char*, 5> kArchTags{"UNKN", "WOLD", "FEN1", "FEN2", "TOR1"};
constexpr std::array<const char*, 6> kTypeTags{"UNKN", "PHY", "MPCP", "MPCI", "MDEV", "GDEV"};

template <std::size_t N, class Number>
const char* tagOf(const std::array<const char*, N>& tags, Number number) {
  const auto index = static_cast<std::size_t>(number);
  return index < N ? tags[index] : tags[0];
}

}  // namespace

std::string toText(const DevCuid& cuid) {
  return sbdfText(cuid.sbdf) + "-" + tagOf(kArchTags, cuid.arch) + "-" + tagOf(kTypeTags, cuid.type) + "-int" +
         std::to_string(cuid.intId);
}

}  // namespace kelp
