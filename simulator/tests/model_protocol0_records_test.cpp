// Records of protocol 0 beyond the readings that every driver has, at offsets written out here.
#include <gtest/gtest.h>

#include <cerrno>

#include "test_driver.h"

namespace {

// Of a call that the driver offers and answers.
Record ask(TestDriver& driver, const std::string& node, uint32_t request, Record record) {
  EXPECT_EQ(driver.ioctl(node, request, record), 0) << std::hex << request;
  EXPECT_EQ(driver.unexpected(), 0u) << std::hex << request;
  return record;
}

int refusal(TestDriver& driver, const std::string& node, uint32_t request, Record record) {
  return driver.ioctl(node, request, record);
}

// ---- MPC

const char* const kDivided = R"({"protocol": 0, "gpus": [{"model": "B240", "mpc": {
    "profiles": [{"id": 3, "name": "1c.16g", "cores": 1, "memory": 16384},
                 {"id": 1, "name": "3c.48g", "cores": 3, "memory": 49152}],
    "configurations": [{"id": 0, "name": "full", "profiles": [1]}, {"id": 2, "name": "pair", "profiles": [3, 3]}],
    "current": 2}}]})";

TEST(SimProtocol0Records, MpcListsHaveNarrowerRows) {
  TestDriver driver(kDivided);
  const Record profiles = ask(driver, "ovgpu.0", 0x86444DB3, Record(1604));
  EXPECT_EQ(profiles.get(0, 4), 2u);
  EXPECT_EQ(profiles.get(4 + 50, 2), 1u);
  EXPECT_EQ(profiles.text(4 + 50 + 2, 32), "3c.48g");
  EXPECT_EQ(profiles.get(4 + 50 + 34, 2), 3u);
  EXPECT_EQ(profiles.get(4 + 50 + 36, 8), 49152u);
  const Record configurations = ask(driver, "ovgpu.0", 0x8CC44DB4, Record(3268));
  EXPECT_EQ(configurations.get(0, 4), 2u);
  EXPECT_EQ(configurations.get(4 + 102, 2), 2u);
  EXPECT_EQ(configurations.text(4 + 102 + 2, 32), "pair");
  EXPECT_EQ(configurations.get(4 + 102 + 34, 4), 2u);
  EXPECT_EQ(configurations.get(4 + 102 + 38 + 2, 2), 3u);
  const Record instances = ask(driver, "ovgpu.0", 0x80464DB5, Record(70));
  EXPECT_EQ(instances.get(0, 2), 2u);
  EXPECT_EQ(instances.get(2 + 4, 2), 2u);
  EXPECT_EQ(instances.get(2 + 4 + 2, 2), 1u);
  EXPECT_EQ(ask(driver, "ovgpu.2", 0x80024DB7, Record(2)).get(0, 2), 0u);
  const Record own = ask(driver, "ovgpu.2", 0x80324DB8, Record(50));
  EXPECT_EQ(own.get(0, 2), 0x0103u);
  EXPECT_EQ(own.text(2, 32), "1c.16g");
  EXPECT_EQ(own.get(34, 2), 1u);
  EXPECT_EQ(own.get(36, 8), 16384u);
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x80024DBA, Record(2)).get(0, 2), 2u);
}

TEST(SimProtocol0Records, MpcModeAndConfigurationCanBeSet) {
  TestDriver driver(kDivided);
  ask(driver, "ovgpu.0", 0x40024DB6, Record(2).put(0, 2, 0));
  EXPECT_TRUE(driver.image()->unsettled);
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x80024DBA, Record(2)).get(0, 2), 0u);
  EXPECT_EQ(refusal(driver, "ovgpu.0", 0x40024DB6, Record(2).put(0, 2, 9)), ENOENT);
  ask(driver, "ovgpu.0", 0x40014DB9, Record(1).put(0, 1, 0));
  EXPECT_EQ(refusal(driver, "ovgpu.0", 0x80024DBA, Record(2)), EOPNOTSUPP) << "no parent any more";
  ask(driver, "ovgpu.0", 0x40014DB9, Record(1).put(0, 1, 1));
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x80464DB5, Record(70)).get(0, 2), 1u);
  driver.othersAreOpen = true;
  EXPECT_EQ(refusal(driver, "ovgpu.0", 0x40014DB9, Record(1)), EBUSY);
}

// ---- Sablink and peers

const char* const kLinked = R"({"protocol": 0,
    "sablink": {"speed": 25000, "version": 200, "links": [{"gpus": [0, 1], "count": 2}]},
    "gpus": [{"model": "B250A", "address": "0000:41:00.0", "values": {"sablink_errors": {"1,0": 10, "1,5": 15,
        "0,0": 3}, "sablink_rx_rate": 4000, "sablink_tx_rate": 6000, "p2p_status": {"1,1": 2},
        "serdes_eye_width": 410}},
      {"model": "B250A", "address": "0000:42:00.0"}, {"model": "B230"}]})";

TEST(SimProtocol0Records, PeerStatus) {
  TestDriver driver(kLinked);
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x80304DAB, Record(48).put(0, 4, 1).put(4, 4, 1)).get(8, 4), 2u);
  EXPECT_EQ(refusal(driver, "ovgpu.0", 0x80304DAB, Record(48).put(0, 4, 77)), ENOENT);
}

TEST(SimProtocol0Records, SablinkReadings) {
  TestDriver driver(kLinked);
  const Record sablink = ask(driver, "ovgpu.0", 0x800C4DC0, Record(12));
  EXPECT_EQ(sablink.get(0, 4), 2u);
  EXPECT_EQ(sablink.get(4, 4), 25000u);
  EXPECT_EQ(sablink.get(8, 4), 200u);
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x800C4DC1, Record(12).put(0, 4, 1)).get(8, 4), 1u);
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x80084DC2, Record(8).put(0, 4, 1)).get(4, 4), 1u);
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x80104DC3, Record(16).put(0, 4, 1).put(4, 4, 5)).get(8, 8), 15u);
  const Record remote = ask(driver, "ovgpu.0", 0x80244DC6, Record(36).put(0, 4, 1));
  EXPECT_EQ(remote.get(4, 8), 0x420000u);
  EXPECT_EQ(remote.get(12, 4), 1u);
  EXPECT_EQ(remote.get(16, 2), 1u);
  EXPECT_EQ(refusal(driver, "ovgpu.0", 0x80084DC2, Record(8).put(0, 4, 2)), ENOENT) << "no such link";
  EXPECT_EQ(refusal(driver, "ovgpu.2", 0x800C4DC0, Record(12)), EOPNOTSUPP);
}

TEST(SimProtocol0Records, SablinkLayoutsAndPaths) {
  TestDriver driver(kLinked);
  const Record layouts = ask(driver, "ovgpu.0", 0x80884DC5, Record(136).put(4, 4, 1));
  EXPECT_EQ(layouts.get(0, 4), 2u);
  EXPECT_EQ(layouts.get(8 + 8, 4), 1u);
  EXPECT_EQ(layouts.get(8 + 8 + 4, 4), 1u);
  const Record paths = ask(driver, "ovgpu.1", 0x84484DC7, Record(1096).put(4, 4, 0));
  EXPECT_EQ(paths.get(0, 4), 1u);
  EXPECT_EQ(paths.get(8, 4), 2u);
  EXPECT_EQ(paths.get(12, 4), 1u);
  EXPECT_EQ(paths.get(16, 4), 0u);
  EXPECT_EQ(refusal(driver, "ovgpu.0", 0x80884DC5, Record(136).put(4, 4, 77)), ENOENT);
}

TEST(SimProtocol0Records, ErrorCountersHaveOneRecordForTwoVersions) {
  for (const char* const version : {"1", "2"}) {
    TestDriver driver(std::string(R"({"protocol": 0, "interfaces": {"20": )") + version +
                      R"(}, "sablink": {"links": [{"gpus": [0, 1]}]}, "gpus": [{"model": "B250A",
                      "values": {"sablink_errors": {"0,2": 12}}}, {"model": "B250A"}]})");
    EXPECT_EQ(ask(driver, "ovgpu.0", 0x80104DC3, Record(16).put(4, 4, 2)).get(8, 8), 12u);
    EXPECT_EQ(driver.last().version, std::stoi(version));
  }
}

TEST(SimProtocol0Records, ResetOfALinkClearsItsCounters) {
  TestDriver driver(kLinked);
  ask(driver, "ovgpu.0", 0x40044DC4, Record(4).put(0, 4, 1));
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x80104DC3, Record(16).put(0, 4, 1).put(4, 4, 5)).get(8, 8), 0u);
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x80104DC3, Record(16)).get(8, 8), 3u) << "another link";
}

TEST(SimProtocol0Records, SerdesOverwritesTheLink) {
  TestDriver driver(kLinked);
  const Record serdes = ask(driver, "ovgpu.0", 0xC0444DCB, Record(68).put(0, 4, 4).put(4, 4, 1));
  EXPECT_EQ(serdes.get(0, 4), 4u);
  EXPECT_EQ(serdes.get(4 + 16 * 3 + 4, 4), 410u);
  EXPECT_EQ(refusal(driver, "ovgpu.0", 0xC0444DCB, Record(68).put(4, 4, 1)), EINVAL) << "not four lanes";
}

TEST(SimProtocol0Records, SablinkCounters) {
  TestDriver driver(kLinked);
  const Record started = ask(driver, "ovgpu.0", 0xC00C4DC8, Record(12).put(0, 4, 1));
  const uint64_t session = started.get(4, 4);
  EXPECT_NE(session, 0u);
  EXPECT_EQ(started.get(8, 4), 100u);
  const uint64_t selector = 1 | session << 32;
  const Record read = ask(driver, "ovgpu.0", 0xC0304DC9, Record(48).put(0, 8, selector));
  EXPECT_EQ(read.get(8, 8), 400u);
  EXPECT_EQ(read.get(16, 8), 600u);
  EXPECT_EQ(read.get(24, 8), 4000u);
  EXPECT_EQ(read.get(32, 8), 6000u);
  EXPECT_EQ(read.get(40, 4), 1u);
  EXPECT_EQ(ask(driver, "ovgpu.0", 0xC00C4DCA, Record(12).put(0, 8, selector)).get(8, 4), 1u);
  EXPECT_EQ(refusal(driver, "ovgpu.0", 0xC0304DC9, Record(48).put(0, 8, selector)), ENOENT);
}

// ---- PCIe counters

const char* const kCounters = R"({"protocol": 0, "interfaces": {"26": [0, 1], "27": [0, 1]}, "gpus": [{
    "model": "B230", "values": {"pcie_rx_rate": 4000, "pcie_tx_rate": 6000, "pcie_rx_min": 11,
    "pcie_rx_mean": 12, "pcie_rx_max": 13, "pcie_tx_min": 14, "pcie_tx_mean": 15, "pcie_tx_max": 16,
    "pcie_replays": 17}}]})";

TEST(SimProtocol0Records, FirstPcieCountersEndEarly) {
  TestDriver driver(kCounters);
  const Record started = ask(driver, "ovgpu.0", 0xC0084DC0, Record(8).put(0, 4, 500));
  const uint64_t session = started.get(4, 4);
  ASSERT_NE(session, 0u);
  const Record read = ask(driver, "ovgpu.0", 0xC0404DC1, Record(64).put(4, 4, session));
  EXPECT_EQ(read.get(8, 8), 2000u);
  EXPECT_EQ(read.get(16, 8), 3000u);
  EXPECT_EQ(read.get(24, 8), 4000u);
  EXPECT_EQ(read.get(32, 8), 6000u);
  EXPECT_EQ(read.get(40, 4), 1u);
  for (size_t i = 0; i < 3; ++i) EXPECT_EQ(read.get(52 + 4 * i, 4), 11 + i);
  EXPECT_EQ(ask(driver, "ovgpu.0", 0xC0084DC2, Record(8).put(0, 4, session)).get(4, 4), 1u);
}

TEST(SimProtocol0Records, LaterPcieCountersAreWhole) {
  TestDriver driver(kCounters);
  const Record started = ask(driver, "ovgpu.0", 0xC00C4DC0, Record(12).put(0, 4, 5));
  EXPECT_EQ(started.get(8, 4), 10u);
  const Record read = ask(driver, "ovgpu.0", 0xC0684DC1, Record(104).put(4, 4, started.get(4, 4)));
  for (size_t i = 0; i < 6; ++i) EXPECT_EQ(read.get(52 + 4 * i, 4), 11 + i);
  EXPECT_EQ(read.get(92, 4), 1u);
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x80204DE0, Record(32)).get(0, 8), 17u);
}

// ---- samples of processes

TEST(SimProtocol0Records, SamplesOfProcessesAreAskedForAndFetched) {
  TestDriver driver(R"({"protocol": 0, "gpus": [{"model": "B230", "values": {"sample_asks": 2}, "processes": [
      {"pid": 7, "gpu_memory": 1, "container_pid": 70,
       "utilization": {"gpu": 48, "memory": 31, "encoder": 15, "decoder": 4, "timestamp": 100}},
      {"pid": 8, "gpu_memory": 1, "kind": "graphics", "utilization": {"gpu": 5, "timestamp": 200}}]}]})");
  constexpr uint32_t kRequest = 0x8CB04DBC;
  Record asked = ask(driver, "ovgpu.0", kRequest, Record(3248));
  EXPECT_EQ(asked.get(32, 4), 0u);
  asked = ask(driver, "ovgpu.0", kRequest, Record(3248).put(4, 4, 1));
  EXPECT_EQ(asked.get(32, 4), 1u);
  EXPECT_EQ(asked.get(36, 4), 0u);
  const Record fetched = ask(driver, "ovgpu.0", kRequest, Record(3248).put(0, 4, 2).put(4, 4, 1));
  EXPECT_EQ(fetched.get(0, 8), 1000000000u);
  EXPECT_EQ(fetched.get(8, 8), 2000000000u);
  EXPECT_EQ(fetched.get(16, 8), 166666667u);
  EXPECT_EQ(fetched.get(36, 4), 2u);
  EXPECT_EQ(fetched.get(48, 4), 7u) << "host pids alone";
  EXPECT_EQ(fetched.get(48 + 4, 4), 1u);
  EXPECT_EQ(fetched.get(48 + 8, 8), 100u);
  const uint64_t shares[] = {48, 31, 15, 4};
  for (size_t i = 0; i < 4; ++i) EXPECT_EQ(fetched.get(48 + 16 + 4 * i, 4), shares[i]);
  EXPECT_EQ(fetched.get(48 + 40, 4), 8u);
  EXPECT_EQ(fetched.get(48 + 40 + 4, 4), 0u);
  EXPECT_EQ(fetched.get(48 + 80, 8), 0u);
}

// ---- board, guests, pages

TEST(SimProtocol0Records, SlotAndGuests) {
  TestDriver driver(R"({"protocol": 0, "gpus": [{"model": "B230", "values": {"slot_number": 5,
      "slot_name": "SLOT5"}, "vgpu_types": [{"id": 1, "name": "t", "framebuffer": 1}], "vgpus": [
      {"uuid": "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71", "type": 1, "id": 7, "utilization": 12,
       "memory_total": 900, "memory_used": 30}]}]})");
  const Record slot = ask(driver, "ovgpu.0", 0x80404DAA, Record(64));
  EXPECT_EQ(slot.get(0, 4), 5u);
  EXPECT_EQ(slot.text(4, 40), "SLOT5");
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x80084DD0, Record(8).put(0, 4, 7)).get(4, 4), 12u);
  const Record memory = ask(driver, "ovgpu.0", 0x80144DD1, Record(20).put(0, 4, 7));
  EXPECT_EQ(memory.get(4, 8), 900u);
  EXPECT_EQ(memory.get(12, 8), 30u);
  EXPECT_EQ(refusal(driver, "ovgpu.0", 0x80084DD0, Record(8).put(0, 4, 8)), EOPNOTSUPP);
}

const char* const kPages = R"({"protocol": 0, "gpus": [{"model": "B250A", "retired_pages": [
    {"cause": "single", "address": 4096, "time": 100, "errors": 12, "location": 77},
    {"cause": "double", "address": 8192, "time": 200, "errors": 1}],
    "pending_pages": [{"cause": "double", "address": 12288, "time": 300, "last_error": 301, "errors": 2,
                       "location": 78}],
    "values": {"ecc_current": 1, "ecc_pending": 1, "pcie_replays": 9, "pstate": 3}}]})";

TEST(SimProtocol0Records, Pages) {
  TestDriver driver(kPages);
  const Record counts = ask(driver, "ovgpu.0", 0x80084DE2, Record(8));
  EXPECT_EQ(counts.get(0, 4), 1u);
  EXPECT_EQ(counts.get(4, 4), 1u);
  const Record retired = ask(driver, "ovgpu.0", 0x80384DE3, Record(56));
  EXPECT_EQ(retired.get(0, 8), 1u);
  EXPECT_EQ(retired.get(8, 8), 4096u);
  EXPECT_EQ(retired.get(16, 8), 100u);
  EXPECT_EQ(retired.get(36, 4), 0u);
  EXPECT_EQ(retired.get(40, 8), 77u);
  EXPECT_EQ(retired.get(48, 8), 12u);
  const Record pending = ask(driver, "ovgpu.0", 0x80384DE4, Record(56));
  EXPECT_EQ(pending.get(0, 8), 1u);
  EXPECT_EQ(pending.get(8, 8), 12288u);
  EXPECT_EQ(pending.get(16, 8), 300u);
  EXPECT_EQ(pending.get(28, 4), 1u);
  EXPECT_EQ(pending.get(32, 8), 78u);
  EXPECT_EQ(pending.get(40, 8), 2u);
  EXPECT_EQ(pending.get(48, 8), 301u);
}

TEST(SimProtocol0Records, EccModeChangesWithTheResetOfTheDevice) {
  TestDriver driver(kPages);
  ask(driver, "ovgpu.0", 0x40044DE6, Record(4).put(0, 4, 0));
  Record mode = ask(driver, "ovgpu.0", 0x80054DE5, Record(5));
  EXPECT_EQ(mode.get(0, 4), 1u);
  EXPECT_EQ(mode.get(4, 1), 0u);
  ask(driver, "ovgpu.0", 0x40044DEA, Record(4));
  mode = ask(driver, "ovgpu.0", 0x80054DE5, Record(5));
  EXPECT_EQ(mode.get(0, 4), 0u);
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x80384DE4, Record(56)).get(0, 8), 0u) << "the page is retired";
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x80084DE2, Record(8)).get(4, 4), 2u);
  EXPECT_EQ(refusal(driver, "ovgpu.0", 0x40044DE6, Record(4).put(0, 4, 2)), EINVAL);
  driver.othersAreOpen = true;
  EXPECT_EQ(refusal(driver, "ovgpu.0", 0x40044DEA, Record(4)), EBUSY);
}

TEST(SimProtocol0Records, ResetsOfGpuCountersAndEvents) {
  TestDriver driver(kPages);
  const Record started = ask(driver, "ovgpu.0", 0xC00C4DC0, Record(12));
  ask(driver, "ovgpu.0", 0x40044DBB, Record(4));
  EXPECT_EQ(refusal(driver, "ovgpu.0", 0xC0684DC1, Record(104).put(4, 4, started.get(4, 4))), ENOENT)
      << "a reset ends measurements";
  ask(driver, "ovgpu.0", 0x40084DBD, Record(8).put(0, 8, 2));
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x80204DE0, Record(32)).get(0, 8), 9u) << "the bit of another group";
  ask(driver, "ovgpu.0", 0x40084DBD, Record(8).put(0, 8, ~uint64_t{0}));
  EXPECT_EQ(ask(driver, "ovgpu.0", 0x80204DE0, Record(32)).get(0, 8), 0u);
  ask(driver, "ovgpu.0", 0x40104DE1, Record(16));
  EXPECT_TRUE(driver.last().dropsEvents);
}

}  // namespace
