// Counters between a start and a stop, and samples of processes.
#include <gtest/gtest.h>

#include <cerrno>

#include "test_driver.h"

namespace {

constexpr int kDone = 0;
constexpr int kBadArgument = 1;
constexpr int kNoSuchObject = 12;

class SimMeasurement : public testing::Test {
 protected:
  static Record ask(TestDriver& driver, unsigned name, unsigned version, Record payload) {
    EXPECT_EQ(driver.call("ovgpu.0", name, version, payload), kDone) << "interface " << name;
    return payload;
  }
  static int refusal(TestDriver& driver, unsigned name, unsigned version, Record payload) {
    return driver.call("ovgpu.0", name, version, payload);
  }
};

TEST_F(SimMeasurement, PcieCounters) {
  TestDriver driver(R"({"gpus": [{"model": "B250A", "values": {"pcie_rx_rate": 4000, "pcie_tx_rate": 6000,
      "pcie_rx_min": 11, "pcie_rx_mean": 12, "pcie_rx_max": 13, "pcie_tx_min": 14, "pcie_tx_mean": 15,
      "pcie_tx_max": "n/a"}}]})");
  const Record started = ask(driver, 26, 2, Record(28).put(0, 4, 500));
  const uint64_t session = started.get(4, 4);
  EXPECT_NE(session, 0u);
  EXPECT_EQ(started.get(8, 4), 500u);
  const Record first = ask(driver, 27, 2, Record(112).put(4, 4, session));
  EXPECT_EQ(first.get(8, 8), 2000u) << "half a second of the rate";
  EXPECT_EQ(first.get(16, 8), 3000u);
  EXPECT_EQ(first.get(24, 8), 4000u);
  EXPECT_EQ(first.get(32, 8), 6000u);
  EXPECT_EQ(first.get(40, 4), 1u);
  for (size_t i = 0; i < 5; ++i) EXPECT_EQ(first.get(52 + 4 * i, 4), 11 + i);
  EXPECT_EQ(first.get(72, 4), 0xFFFFFFFFu);
  EXPECT_EQ(first.get(92, 4), 1u);
  const Record second = ask(driver, 27, 2, Record(112).put(4, 4, session));
  EXPECT_EQ(second.get(8, 8), 4000u);
  EXPECT_EQ(second.get(92, 4), 2u);
  EXPECT_EQ(ask(driver, 28, 1, Record(24).put(0, 4, session)).get(4, 4), 2u);
  EXPECT_EQ(refusal(driver, 27, 2, Record(112).put(4, 4, session)), kNoSuchObject) << "it is stopped";
  EXPECT_EQ(refusal(driver, 28, 1, Record(24).put(0, 4, session)), kNoSuchObject);
}

TEST_F(SimMeasurement, IntervalIsHeldToWhatTheDriverCan) {
  TestDriver driver(R"({"gpus": [{"model": "B250A"}]})");
  EXPECT_EQ(ask(driver, 26, 2, Record(28)).get(8, 4), 10u);
  EXPECT_EQ(ask(driver, 26, 2, Record(28).put(0, 4, 0xFFFFFFFF)).get(8, 4), 60000u);
}

TEST_F(SimMeasurement, SessionsAreOfTheirDeviceAndNumbered) {
  TestDriver driver(R"({"gpus": [{"model": "B250A"}, {"model": "B250A"}]})");
  const uint64_t one = ask(driver, 26, 2, Record(28)).get(4, 4);
  const uint64_t two = ask(driver, 26, 2, Record(28)).get(4, 4);
  EXPECT_NE(one, two);
  Record other = Record(112).put(4, 4, one);
  EXPECT_EQ(driver.call("ovgpu.1", 27, 2, other), kNoSuchObject);
  ask(driver, 50, 1, Record(16));
  EXPECT_EQ(refusal(driver, 27, 2, Record(112).put(4, 4, two)), kNoSuchObject) << "a reset ends them";
  for (size_t i = 0; i < 64; ++i) ask(driver, 26, 2, Record(28));
  EXPECT_EQ(refusal(driver, 26, 2, Record(28)), 8);
}

TEST_F(SimMeasurement, SablinkCounters) {
  TestDriver driver(R"({"gpus": [{"model": "B250A", "values": {"sablink_capable": 1, "sablink_links": 2,
      "sablink_rx_rate": {"1": 3000}, "sablink_tx_rate": {"1": 5000}, "sablink_perf_interval": 200}}]})");
  const Record started = ask(driver, 36, 1, Record(28).put(0, 4, 1));
  const uint64_t session = started.get(4, 4);
  EXPECT_EQ(started.get(8, 4), 200u);
  const Record read = ask(driver, 37, 1, Record(60).put(48, 8, session << 32 | 1));
  EXPECT_EQ(read.get(8, 8), 600u);
  EXPECT_EQ(read.get(16, 8), 1000u);
  EXPECT_EQ(read.get(24, 8), 3000u);
  EXPECT_EQ(read.get(32, 8), 5000u);
  EXPECT_EQ(read.get(40, 4), 1u);
  EXPECT_EQ(refusal(driver, 37, 1, Record(60).put(48, 8, session << 32)), kNoSuchObject) << "another link";
  EXPECT_EQ(refusal(driver, 27, 2, Record(112).put(4, 4, session)), kNoSuchObject) << "not one of PCIe";
  EXPECT_EQ(ask(driver, 38, 1, Record(28).put(16, 8, session << 32 | 1)).get(8, 4), 1u);
  EXPECT_EQ(refusal(driver, 36, 1, Record(28).put(0, 4, 2)), kNoSuchObject);
}

const char* const kBusyGpu = R"({"interfaces": {"30": [1, 2]}, "gpus": [{"model": "B250A", "processes": [
    {"pid": 4242, "gpu_memory": 1, "kind": "graphics", "container_pid": 7,
     "utilization": {"gpu": 12, "memory": 3, "encoder": 4, "decoder": 5, "timestamp": 1000}},
    {"pid": 4300, "gpu_memory": 1},
    {"pid": 4400, "gpu_memory": 1, "utilization": {"gpu": 13, "timestamp": 3000}}],
    "values": {"sample_asks": 3, "sample_window_start": 21, "sample_window_end": 22, "sample_period": 23}}]})";

TEST_F(SimMeasurement, SampleIsReadyAfterSoManyTimesOfAsking) {
  TestDriver driver(kBusyGpu);
  const Record early = ask(driver, 30, 2, Record(4856).put(0, 4, 2));
  EXPECT_EQ(early.get(32, 4), 0u);
  EXPECT_EQ(early.get(36, 4), 0u);
  for (const uint64_t ready : {0u, 0u, 1u}) {
    const Record asked = ask(driver, 30, 2, Record(4856).put(24, 8, 77));
    EXPECT_EQ(asked.get(32, 4), ready);
    EXPECT_EQ(asked.get(36, 4), 0u);
    EXPECT_EQ(asked.get(24, 8), 77u) << "what was sent stays";
  }
  const Record sample = ask(driver, 30, 2, Record(4856).put(0, 4, 2));
  EXPECT_EQ(sample.get(0, 8), 21u);
  EXPECT_EQ(sample.get(8, 8), 22u);
  EXPECT_EQ(sample.get(16, 8), 23u);
  EXPECT_EQ(sample.get(32, 4), 1u);
  ASSERT_EQ(sample.get(36, 4), 2u);
  EXPECT_EQ(sample.get(40, 4), 4242u);
  EXPECT_EQ(sample.get(44, 4), 0u);
  EXPECT_EQ(sample.get(48, 8), 1000u);
  EXPECT_EQ(sample.get(56, 4), 12u);
  EXPECT_EQ(sample.get(60, 4), 3u);
  EXPECT_EQ(sample.get(64, 4), 4u);
  EXPECT_EQ(sample.get(68, 4), 5u);
  EXPECT_EQ(sample.get(100, 4), 4400u);
  EXPECT_EQ(sample.get(104, 4), 1u);
  EXPECT_EQ(sample.get(116, 4), 13u);
  EXPECT_EQ(ask(driver, 30, 2, Record(4856).put(0, 4, 2)).get(32, 4), 0u) << "it is fetched once";
}

TEST_F(SimMeasurement, SampleHoldsProcessesThatWereActiveSince) {
  TestDriver driver(kBusyGpu);
  for (int i = 0; i < 3; ++i) ask(driver, 30, 2, Record(4856));
  const Record sample = ask(driver, 30, 2, Record(4856).put(0, 4, 2).put(24, 8, 1000));
  ASSERT_EQ(sample.get(36, 4), 1u);
  EXPECT_EQ(sample.get(40, 4), 4400u);
  EXPECT_EQ(sample.get(100, 4), 0u);
}

TEST_F(SimMeasurement, ContainerGetsItsOwnPidsFromVersionTwo) {
  TestDriver driver(kBusyGpu);
  for (int i = 0; i < 3; ++i) ask(driver, 30, 2, Record(4856).put(4, 4, 1));
  const Record sample = ask(driver, 30, 2, Record(4856).put(0, 4, 2).put(4, 4, 1));
  EXPECT_EQ(sample.get(40, 4), 7u);
  EXPECT_EQ(sample.get(100, 4), 4400u);
  for (int i = 0; i < 3; ++i) ask(driver, 30, 1, Record(4856).put(4, 4, 1));
  EXPECT_EQ(ask(driver, 30, 1, Record(4856).put(0, 4, 2).put(4, 4, 1)).get(40, 4), 4242u);
  EXPECT_EQ(refusal(driver, 30, 2, Record(4856).put(4, 4, 2)), kBadArgument);
  EXPECT_EQ(refusal(driver, 30, 2, Record(4856).put(0, 4, 1)), kBadArgument);
}

TEST_F(SimMeasurement, SampleOfMoreProcessesThanFitIsCut) {
  std::string rows;
  for (int i = 0; i < 100; ++i) {
    rows += (i ? "," : "") + std::string(R"({"gpu_memory": 1, "utilization": {}, "pid": )") +
            std::to_string(1000 + i) + "}";
  }
  TestDriver driver(R"({"gpus": [{"model": "B250A", "processes": [)" + rows + "]}]}");
  EXPECT_EQ(ask(driver, 30, 2, Record(4856)).get(32, 4), 1u);
  const Record sample = ask(driver, 30, 2, Record(4856).put(0, 4, 2));
  EXPECT_EQ(sample.get(36, 4), 80u);
  EXPECT_EQ(sample.get(40 + 60 * 79, 4), 1079u);
}

}  // namespace
