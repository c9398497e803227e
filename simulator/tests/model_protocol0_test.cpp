// Records of protocol 0, at offsets written out here.
#include <gtest/gtest.h>

#include <cerrno>

#include "test_driver.h"

namespace {

const char* const kLegacy = R"({"protocol": 0, "interfaces": {"2": [0, 1], "4": [0, 2]}, "gpus": [
  {"model": "B230", "address": "0000:41:00.0", "card": 2, "render": 130,
   "processes": [{"pid": 7, "gpu_memory": 70, "system_memory": 71, "kind": "graphics"},
                 {"pid": 8, "gpu_memory": 80, "kind": "compute"}],
   "values": {"utilization": 31, "core_average": 38, "core_max": 39, "memory_total": 1000, "memory_used": 900,
              "memory_region0": 1, "memory_region1": 2, "memory_region2": 3, "memory_region3": 4,
              "system_total": 5, "guest_reserved": "n/a", "serial_number": "X1"}}]})";

TEST(SimProtocol0, StatusHasTwoRecords) {
  TestDriver driver(kLegacy);
  Record v0(72, 0xAA);
  ASSERT_EQ(driver.ioctl("ovgpu.0", 0xC0484D05, v0), 0);
  EXPECT_EQ(v0.get(0, 4), 31u);
  EXPECT_EQ(v0.get(24, 4), 0xAAAAAAAAu);
  EXPECT_EQ(v0.get(40, 4), 38u);
  Record v1(88);
  ASSERT_EQ(driver.ioctl("ovgpu.0", 0xC0584D05, v1), 0);
  EXPECT_EQ(v1.get(24, 4), 39u);
}

TEST(SimProtocol0, MemoryHasMoreThanProtocolOne) {
  TestDriver driver(kLegacy);
  Record memory(160);
  ASSERT_EQ(driver.ioctl("ovgpu.0", 0xC0A04DA6, memory), 0);
  const uint64_t expected[] = {1000, 900, 1, 2, 3, 4, 5, ~uint64_t{0}};
  for (size_t i = 0; i < 8; ++i) EXPECT_EQ(memory.get(8 * i, 8), expected[i]);
}

TEST(SimProtocol0, ProcessesHaveThreeRecords) {
  const struct {
    uint32_t request;
    size_t size;
    size_t first;
    size_t stride;
  } forms[] = {{0xB9884DA7, 14728, 8, 184}, {0xBC084DA7, 15368, 8, 192}, {0xA3104DA7, 8976, 16, 112}};
  for (const auto& form : forms) {
    TestDriver driver(kLegacy);
    Record list(form.size);
    ASSERT_EQ(driver.ioctl("ovgpu.0", form.request, list), 0);
    EXPECT_EQ(list.get(0, 4), 2u);
    EXPECT_EQ(list.get(form.first, 8), 70u);
    EXPECT_EQ(list.get(form.first + 8, 8), 71u);
    EXPECT_EQ(list.get(form.first + 16, 4), 0u);
    EXPECT_EQ(list.get(form.first + form.stride + 20, 4), 8u);
  }
}

TEST(SimProtocol0, ConfigurationSpaceAndDescription) {
  TestDriver driver(kLegacy);
  Record space(264);
  ASSERT_EQ(driver.ioctl("ovgpu.0", 0x81084DA9, space), 0);
  EXPECT_EQ(space.get(0, 4), 0x02304F56u);
  Record description(42);
  ASSERT_EQ(driver.ioctl("ovgpu.0", 0x802A4DB2, description), 0);
  EXPECT_EQ(description.get(28, 2), 2u);
  EXPECT_EQ(description.get(30, 2), 130u);
  EXPECT_EQ(description.get(34, 8), 0x410000u);
  Record rom(128);
  ASSERT_EQ(driver.ioctl("ovgpu.0", 0x80804DAD, rom), 0);
  EXPECT_EQ(rom.text(0, 64), "X1");
}

TEST(SimProtocol0, RecordThatIsNotListedIsUnknown) {
  TestDriver driver(R"({"protocol": 0, "interfaces": {"2": 1}, "gpus": [{"model": "B230"}]})");
  Record v0(72);
  EXPECT_EQ(driver.ioctl("ovgpu.0", 0xC0484D05, v0), ENOTTY);
  Record otherSize(80);
  EXPECT_EQ(driver.ioctl("ovgpu.0", 0xC0504D05, otherSize), ENOTTY);
}

TEST(SimProtocol0, RefusalIsAnErrno) {
  TestDriver driver(
      R"({"protocol": 0, "gpus": [{"model": "B230", "values": {"serial_number": {"status": 11}}}]})");
  Record rom(128);
  EXPECT_EQ(driver.ioctl("ovgpu.0", 0x80804DAD, rom), EIO);
  Record parent(2);
  EXPECT_EQ(driver.ioctl("ovgpu.0", 0x80024DB7, parent), EOPNOTSUPP);
}

TEST(SimProtocol0, DriverOfProtocolOneHasNoSuchRecords) {
  TestDriver driver(R"({"gpus": [{"model": "B230"}]})");
  Record v0(72);
  EXPECT_EQ(driver.ioctl("ovgpu.0", 0xC0484D05, v0), ENOTTY);
}

}  // namespace
