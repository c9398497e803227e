#include "dev_cuid.h"

#include <gtest/gtest.h>

#include <string>
#include <unordered_set>

namespace kelp {
namespace {

constexpr DevCuid kCuid{
    .type = DevType::kMpcInstance, .arch = DevArch::kFen2, .sbdf = 0x1'0041'1F03, .intId = 12};

TEST(DevCuidTest, TheTextNamesAddressFamilyTypeAndInternalId) {
  EXPECT_EQ(toText(kCuid), "0001:41:1f.3-FEN2-MPCI-int12");
  EXPECT_EQ(toText({}), "0000:00:00.0-UNKN-UNKN-int0");
}

TEST(DevCuidTest, EveryFamilyAndEveryTypeHasItsTag) {
  const char* archTags[] = {"UNKN", "WOLD", "FEN1", "FEN2", "TOR1", "UNKN", "UNKN"};
  const char* typeTags[] = {"UNKN", "PHY", "MPCP", "MPCI", "MDEV", "GDEV", "UNKN", "UNKN"};
  for (std::uint32_t arch = 0; arch < std::size(archTags); ++arch) {
    for (std::uint32_t type = 0; type < std::size(typeTags); ++type) {
      const DevCuid cuid{.type = static_cast<DevType>(type), .arch = static_cast<DevArch>(arch)};
      EXPECT_EQ(toText(cuid), std::string("0000:00:00.0-") + archTags[arch] + "-" + typeTags[type] + "-int0");
    }
  }
}

TEST(DevCuidTest, ANumberFarOutOfRangePrintsAsUnknown) {
  const DevCuid cuid{.type = static_cast<DevType>(0xFFFFFFFF), .arch = static_cast<DevArch>(0xFFFFFFFF)};
  EXPECT_EQ(toText(cuid), "0000:00:00.0-UNKN-UNKN-int0");
}

TEST(DevCuidTest, AllFourFieldsMakeTheIdentity) {
  DevCuid type = kCuid;
  DevCuid arch = kCuid;
  DevCuid sbdf = kCuid;
  DevCuid intId = kCuid;
  type.type = DevType::kMpcParent;
  arch.arch = DevArch::kFen1;
  ++sbdf.sbdf;
  ++intId.intId;
  const std::unordered_set<DevCuid> all{kCuid, type, arch, sbdf, intId, kCuid};
  EXPECT_EQ(all.size(), 5U);
}

TEST(DevCuidTest, TheHashIsTheSumOfTheFields) {
  EXPECT_EQ(std::hash<DevCuid>()(kCuid), std::size_t{3 + 3 + 0x1'0041'1F03 + 12});
  DevCuid cuid = kCuid;
  cuid.type = static_cast<DevType>(0xFFFFFFFF);
  cuid.arch = DevArch::kUnknown;
  EXPECT_EQ(std::hash<DevCuid>()(cuid), std::size_t{0x1'0041'1F03 + 12 - 1}) << "with its sign";
}

}  // namespace
}  // namespace kelp
