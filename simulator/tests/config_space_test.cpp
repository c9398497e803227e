#include "config_space.h"

#include <gtest/gtest.h>

#include "efuse.h"
#include "pci_tree.h"
#include "test_driver.h"

namespace {

uint64_t at(const std::string& bytes, size_t offset, size_t width) {
  uint64_t number = 0;
  for (size_t i = width; i > 0; --i)
    number = number << 8 | static_cast<unsigned char>(bytes.at(offset + i - 1));
  return number;
}

PciFunction functionOf(const std::string& gpu) {
  return hostFromText("{\"gpus\": [" + gpu + "]}").functions.at(0);
}

// Offset of a capability, found by walking the list; 0 when it is not there.
size_t findCapability(const std::string& space, unsigned id) {
  size_t offset = at(space, 52, 1);
  for (int i = 0; i < 64 && offset != 0; ++i) {
    if (at(space, offset, 1) == id) return offset;
    offset = at(space, offset + 1, 1);
  }
  return 0;
}

TEST(SimConfigSpace, CapabilityTellsWidthsAndSpeeds) {
  const std::string space =
      makeConfigSpace(functionOf(R"({"model": "B250A", "link": {"speed": 8, "max_speed": 32, "width": 4}})"));
  ASSERT_EQ(space.size(), 256u);
  const size_t pcie = findCapability(space, 16);
  ASSERT_NE(pcie, 0u);
  EXPECT_EQ(at(space, pcie + 12, 4) & 0xF, 5u);
  EXPECT_EQ(at(space, pcie + 12, 4) >> 4 & 0x3F, 16u);
  EXPECT_EQ(at(space, pcie + 18, 2) & 0xF, 3u);
  EXPECT_EQ(at(space, pcie + 18, 2) >> 4 & 0x3F, 4u);
}

TEST(SimConfigSpace, CapabilityCanBeAbsent) {
  const std::string space = makeConfigSpace(functionOf(R"({"model": "B250A", "pcie_capability": false})"));
  EXPECT_EQ(findCapability(space, 16), 0u);
  EXPECT_NE(findCapability(space, 1), 0u);
}

TEST(SimConfigSpace, HeaderDecodesMemory) {
  const std::string space = makeConfigSpace(functionOf(R"({"model": "B250A", "class": "0x038000"})"));
  EXPECT_EQ(at(space, 0, 2), 0x4F56u);
  EXPECT_EQ(at(space, 2, 2), 0x0410u);
  EXPECT_NE(at(space, 4, 2) & 2, 0u);
  EXPECT_NE(at(space, 6, 2) & 0x10, 0u);
  EXPECT_EQ(at(space, 9, 3), 0x038000u);
}

TEST(SimConfigSpace, BarsAndResourceAgree) {
  const PciFunction function = functionOf(R"({"model": "B250A", "bars": [
      {"size": "256MiB", "prefetchable": true, "bits": 64}, null, {"size": "1MiB", "prefetchable": false}]})");
  const std::string space = makeConfigSpace(function);
  const std::string resource = makeResourceFile(function);
  unsigned long long start = 0;
  unsigned long long end = 0;
  unsigned long long flags = 0;
  ASSERT_EQ(std::sscanf(resource.c_str(), "%llx %llx %llx", &start, &end, &flags), 3);
  EXPECT_EQ(end - start + 1, uint64_t{256} << 20);
  EXPECT_EQ(start % (uint64_t{256} << 20), 0u);
  EXPECT_EQ(at(space, 16, 4) & 0xF, 0xCu) << "64 bits wide and prefetchable";
  EXPECT_EQ(at(space, 16, 8) & ~uint64_t{0xF}, start);
  EXPECT_EQ(at(space, 24, 4) & 0xF, 0u);
  EXPECT_EQ(std::count(resource.begin(), resource.end(), '\n'), 13);
}

TEST(SimEfuse, FirstFamilyKeepsItsKeyInTwoFields) {
  const auto words = makeEfuse(Family::kWold, 0x010F, {0x123456789A, 0xABC, 0x15, 0x0A});
  EXPECT_EQ(words[8], 0x3456789Au);
  EXPECT_EQ(words[9], 0x556AF012u);
  EXPECT_EQ(words[10], 0x70100000u);
  for (size_t i = 0; i < words.size(); ++i) {
    if (i < 8 || i > 10) {
      EXPECT_EQ(words[i], 0u) << i;
    }
  }
}

TEST(SimEfuse, SecondFamilyKeepsItsId) {
  const auto words = makeEfuse(Family::kFen1, 0x0230, {0x123456789A, 0xABC, 0x15, 0x0A});
  EXPECT_EQ(words[7], 0x3456789Au);
  EXPECT_EQ(words[8], 0x556AF012u);
  EXPECT_EQ(words[14], 0x02000030u);
}

TEST(SimEfuse, NewestFamilyHasNoIdentityThere) {
  for (const uint32_t word : makeEfuse(Family::kTor1, 0x0410, {1, 2, 3, 4})) EXPECT_EQ(word, 0u);
}

TEST(SimTree, MaskOfCpusIsInGroupsOf32) {
  EXPECT_EQ(cpuMask("0-31"), "ffffffff");
  EXPECT_EQ(cpuMask("32-63"), "ffffffff,00000000");
  EXPECT_EQ(cpuMask("0,2,33"), "00000002,00000005");
}

}  // namespace
