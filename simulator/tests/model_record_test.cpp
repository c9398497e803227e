// Every record of protocol 1 with values of its own in every field, at offsets written out here.
#include <gtest/gtest.h>

#include <cerrno>

#include "test_driver.h"

namespace {

std::string tor1With(const std::string& values, const std::string& more = "") {
  return R"({"gpus": [{"model": "B250A", "address": "0001:41:02.3", "misc": 3, "card": 5, "render": 133,)" +
         more + R"("values": {)" + values + "}}]}";
}

class SimRecord1 : public testing::Test {
 protected:
  // The payload of a call that must succeed.
  Record ask(TestDriver& driver, unsigned name, unsigned version, size_t size, Record payload = Record(0)) {
    payload.bytes.resize(size);
    EXPECT_EQ(driver.call("ovgpu.3", name, version, payload), 0) << "interface " << name;
    return payload;
  }
};

TEST_F(SimRecord1, GpuStatus) {
  TestDriver driver(R"({"interfaces": {"2": [2, 3]}, "gpus": [{"model": "B250A", "misc": 3, "values": {
      "utilization": 11, "engine0": 12, "engine1": 13, "engine2": 14, "engine3": 15, "memory_busy": 16,
      "core_max": 17, "core_average": "n/a"}}]})");
  const Record status = ask(driver, 2, 3, 92);
  for (size_t i = 0; i < 7; ++i) EXPECT_EQ(status.get(4 * i, 4), 11 + i);
  EXPECT_EQ(status.get(40, 4), 0xFFFFFFFFu);
  Record older = Record(92, 0xAA);
  older = ask(driver, 2, 2, 92, older);
  EXPECT_EQ(older.get(20, 4), 16u);
  EXPECT_EQ(older.get(24, 4), 0xAAAAAAAAu) << "version 2 does not write the busiest core";
  EXPECT_EQ(older.get(28, 4), 0xAAAAAAAAu) << "what no field holds comes back as it was sent";
}

TEST_F(SimRecord1, MemoryUsage) {
  TestDriver driver(tor1With(R"("memory_total": "3GiB", "memory_used": "n/a", "memory_region0": 21,
      "memory_region1": 22, "memory_region2": 23)"));
  const Record memory = ask(driver, 3, 1, 72);
  EXPECT_EQ(memory.get(0, 8), uint64_t{3} << 30);
  EXPECT_EQ(memory.get(8, 8), ~uint64_t{0});
  EXPECT_EQ(memory.get(16, 8), 21u);
  EXPECT_EQ(memory.get(24, 8), 22u);
  EXPECT_EQ(memory.get(32, 8), 23u);
}

TEST_F(SimRecord1, Processes) {
  TestDriver driver(tor1With("", R"("processes": [
      {"pid": 70000, "kind": "graphics", "gpu_memory": "5GiB", "system_memory": 77},
      {"pid": 12, "kind": "compute", "gpu_memory": 33}],)"));
  const Record list = ask(driver, 4, 3, 7384);
  EXPECT_EQ(list.get(0, 4), 2u);
  EXPECT_EQ(list.get(8, 8), uint64_t{5} << 30);
  EXPECT_EQ(list.get(16, 8), 77u);
  EXPECT_EQ(list.get(24, 4), 0u);
  EXPECT_EQ(list.get(28, 4), 70000u);
  EXPECT_EQ(list.get(100, 8), 33u);
  EXPECT_EQ(list.get(116, 4), 1u);
  EXPECT_EQ(list.get(120, 4), 12u);
}

TEST_F(SimRecord1, ProcessesThatDoNotFitAreDropped) {
  std::string rows;
  for (int i = 0; i < 100; ++i) {
    rows += (i ? "," : "") + std::string("{\"gpu_memory\": 1, \"pid\": ") + std::to_string(1000 + i) + "}";
  }
  TestDriver driver(tor1With("", "\"processes\": [" + rows + "],"));
  const Record list = ask(driver, 4, 3, 7384);
  EXPECT_EQ(list.get(0, 4), 80u);
  EXPECT_EQ(list.get(8 + 92 * 79 + 20, 4), 1079u);
}

TEST_F(SimRecord1, ConfigurationSpace) {
  TestDriver driver(tor1With("", R"("subsystem": {"vendor": "0x1234", "device": "0x5678"}, "revision": 9,)"));
  Record space = Record(272, 0xAA);
  space = ask(driver, 6, 1, 272, space);
  EXPECT_EQ(space.get(0, 2), 0x4F56u);
  EXPECT_EQ(space.get(2, 2), 0x0410u);
  EXPECT_EQ(space.get(8, 1), 9u);
  EXPECT_EQ(space.get(44, 2), 0x1234u);
  EXPECT_EQ(space.get(46, 2), 0x5678u);
  EXPECT_NE(space.get(52, 1), 0u);
  EXPECT_EQ(space.get(256, 8), 0u) << "behind the 256 bytes there are zeros";
}

TEST_F(SimRecord1, DeviceDescription) {
  TestDriver driver(tor1With(R"("core_count": 12, "mpc_capable": 1, "sablink_capable": 6, "ion_id": 4)"));
  const Record description = ask(driver, 8, 2, 60);
  EXPECT_EQ(description.get(0, 2), 3u);
  EXPECT_EQ(description.get(2, 2), 12u);
  EXPECT_EQ(description.get(4, 8), 0xFFFu);
  EXPECT_EQ(description.get(16, 4), 0u);
  EXPECT_EQ(description.get(20, 4), 1u);
  EXPECT_EQ(description.get(24, 4), 6u);
  EXPECT_EQ(description.get(28, 2), 5u);
  EXPECT_EQ(description.get(30, 2), 133u);
  EXPECT_EQ(description.get(34, 8), 0x0000000100410203u);
  EXPECT_EQ(description.get(42, 2), 4u);
}

TEST_F(SimRecord1, InfoRomAndName) {
  TestDriver driver(tor1With(R"("serial_number": "S-0815", "brand": "OVT", "name": "OVT B250A")"));
  const Record rom = ask(driver, 32, 1, 256);
  EXPECT_EQ(rom.text(0, 64), "S-0815");
  EXPECT_EQ(rom.text(64, 64), "OVT");
  EXPECT_EQ(ask(driver, 71, 0, 64).text(0, 48), "OVT B250A");
}

TEST_F(SimRecord1, TextOfAnyBytes) {
  TestDriver driver(
      tor1With(R"("serial_number": {"hex": "ff0a80007f"}, "name": {"steps": ["a", {"hex": "c3"}]})"));
  const Record rom = ask(driver, 32, 1, 256);
  for (const auto& [offset, byte] :
       {std::pair{0u, 0xffu}, {1u, 0x0au}, {2u, 0x80u}, {3u, 0u}, {4u, 0x7fu}, {5u, 0u}}) {
    EXPECT_EQ(rom.get(offset, 1), byte) << offset;
  }
  EXPECT_EQ(ask(driver, 71, 0, 64).text(0, 48), "a");
  EXPECT_EQ(ask(driver, 71, 0, 64).text(0, 48), "\xc3");
}

TEST_F(SimRecord1, TextLongerThanItsFieldIsCut) {
  TestDriver driver(tor1With("\"name\": \"" + std::string(60, 'x') + "\""));
  const Record name = ask(driver, 71, 0, 64);
  EXPECT_EQ(name.text(0, 64), std::string(48, 'x'));
}

TEST_F(SimRecord1, EccMode) {
  TestDriver driver(tor1With(R"("ecc_current": 1, "ecc_pending": 0)"));
  const Record mode = ask(driver, 48, 1, 21);
  EXPECT_EQ(mode.get(0, 4), 1u);
  EXPECT_EQ(mode.get(4, 1), 0u);
}

TEST_F(SimRecord1, EccModeThatWasSetIsPending) {
  TestDriver driver(tor1With(R"("ecc_current": 0, "ecc_pending": 0)"));
  ask(driver, 49, 1, 20, Record(20).put(0, 4, 1));
  const Record mode = ask(driver, 48, 1, 21);
  EXPECT_EQ(mode.get(0, 4), 0u);
  EXPECT_EQ(mode.get(4, 1), 1u);
  Record wrong = Record(20).put(0, 4, 2);
  EXPECT_EQ(driver.call("ovgpu.3", 49, 1, wrong), 1);
}

TEST_F(SimRecord1, PowerLimitThatWasSetIsTheRequestedOne) {
  TestDriver driver(tor1With(""));
  ask(driver, 76, 1, 20, Record(20).put(0, 4, 123456));
  EXPECT_EQ(ask(driver, 72, 0, 24, Record(24).put(0, 4, 1)).get(4, 4), 123456u);
  EXPECT_EQ(ask(driver, 72, 0, 24, Record(24).put(0, 4, 3)).get(4, 4), 250000u);
}

TEST_F(SimRecord1, FirmwareVersions) {
  TestDriver driver(tor1With(R"("firmware": ["3.1.2", 20105, "n/a", 7, 8, 9])"));
  const Record versions = ask(driver, 52, 1, 40);
  const uint64_t expected[] = {30102, 20105, 0xFFFFFFFF, 7, 8, 9};
  for (size_t i = 0; i < 6; ++i) EXPECT_EQ(versions.get(4 * i, 4), expected[i]);
}

TEST_F(SimRecord1, TemperatureBySensor) {
  TestDriver driver(tor1With(R"("temperature": {"1000": -1500, "1002": 38000})"));
  EXPECT_EQ(ask(driver, 56, 1, 24, Record(24).put(0, 4, 1000)).getSigned(4, 4), -1500);
  EXPECT_EQ(ask(driver, 56, 1, 24, Record(24).put(0, 4, 1002)).getSigned(4, 4), 38000);
  EXPECT_EQ(ask(driver, 56, 1, 24, Record(24).put(0, 4, 0)).getSigned(4, 4), -1500) << "0 repeats the first";
  Record unknown = Record(24).put(0, 4, 9);
  EXPECT_EQ(driver.call("ovgpu.3", 56, 1, unknown), 12);
  unknown.put(0, 4, 0x103E8);
  EXPECT_EQ(driver.call("ovgpu.3", 56, 1, unknown), 12) << "not cut to 16 bits";
}

TEST_F(SimRecord1, ClockById) {
  TestDriver driver(tor1With(R"("clock": {"1000": 1700000000, "1001": 5000000000})"));
  EXPECT_EQ(ask(driver, 51, 1, 28, Record(28).put(0, 4, 1001)).get(4, 8), 5000000000u);
  EXPECT_EQ(ask(driver, 51, 1, 28, Record(28).put(0, 4, 0)).get(4, 8), 1700000000u);
}

TEST_F(SimRecord1, MemoryProperties) {
  TestDriver driver(tor1With(R"("memory_clock_max": 2000000000, "memory_type": 1, "memory_vendor": 3,
      "channel_count": 16, "channel_width": 32)"));
  const Record spec = ask(driver, 57, 1, 24);
  EXPECT_EQ(spec.get(0, 8), 2000000000u);
  EXPECT_EQ(spec.get(9, 1), 0x31u);
  EXPECT_EQ(spec.get(14, 2), 0x2010u);
}

TEST_F(SimRecord1, GpuProperties) {
  TestDriver driver(R"({"interfaces": {"60": [1, 2]}, "gpus": [{"model": "B250A", "misc": 3, "values": {
      "core_count": 9, "cluster_count": 2, "units_per_core": [4, 5, 6], "core_clock_max": 1900}}]})");
  const Record first = ask(driver, 60, 1, 12);
  EXPECT_EQ(first.get(0, 1), 9u);
  EXPECT_EQ(first.get(1, 1), 2u);
  EXPECT_EQ(first.get(2, 1), 4u);
  EXPECT_EQ(first.get(3, 2), 1900u);
  const Record second = ask(driver, 60, 2, 44);
  EXPECT_EQ(second.get(2, 4), 0x00060504u);
  EXPECT_EQ(second.get(17, 1), 0u);
}

TEST_F(SimRecord1, DisplayInterfaces) {
  TestDriver driver(tor1With("", R"("displays": [
      {"type": "HDMI", "h_res": 3840, "v_res": 2160, "pixel_clock": 5940},
      {"type": 0, "h_res": "n/a", "v_res": 1080, "pixel_clock": 1485}],)"));
  const Record list = ask(driver, 61, 1, 154);
  EXPECT_EQ(list.get(0, 2), 2u);
  EXPECT_EQ(list.get(2, 1), 3u);
  EXPECT_EQ(list.get(3, 4), 3840u);
  EXPECT_EQ(list.get(7, 4), 2160u);
  EXPECT_EQ(list.get(11, 4), 5940u);
  EXPECT_EQ(list.get(19, 1), 0u);
  EXPECT_EQ(list.get(20, 4), 0xFFFFFFFFu);
  EXPECT_EQ(list.get(28, 4), 1485u);
}

TEST_F(SimRecord1, EfuseWindowIsTheChipsNotTheOneAskedFor) {
  TestDriver driver(R"({"gpus": [{"model": "B230", "misc": 3,
      "efuse": ["0x123456789A", "0xABC", "0x15", "0x0A"]}]})");
  const Record efuse = ask(driver, 62, 1, 152, Record(152).put(0, 4, 100).put(4, 4, 32));
  EXPECT_EQ(efuse.get(0, 4), 2048u);
  EXPECT_EQ(efuse.get(4, 4), 1024u);
  EXPECT_EQ(efuse.get(8 + 4 * 7, 4), 0x3456789Au);
  EXPECT_EQ(efuse.get(8 + 4 * 8, 4), 0x556AF012u);
  EXPECT_EQ(efuse.get(8 + 4 * 14, 4), 0x02000030u);
}

TEST_F(SimRecord1, PerformanceState) {
  TestDriver driver(tor1With(R"("pstate": 8)"));
  EXPECT_EQ(ask(driver, 67, 0, 20).get(0, 4), 8u);
}

TEST_F(SimRecord1, BoardReadings) {
  TestDriver driver(tor1With(R"("power": {"0": 85500}, "voltage": {"1": 1250}, "fan_count": 2,
      "fan_speed": {"1,0": 40, "1,1": 1800}, "memory_temperature": 51, "temperature_slowdown": 95000,
      "temperature_shutdown": "n/a", "pcie_replays": 5, "slot_number": 7, "slot_name": "SLOT7")"));
  EXPECT_EQ(ask(driver, 55, 1, 24).get(4, 4), 85500u);
  EXPECT_EQ(ask(driver, 65, 1, 24, Record(24).put(0, 4, 1)).get(4, 4), 1250u);
  EXPECT_EQ(ask(driver, 53, 1, 20).get(0, 4), 2u);
  EXPECT_EQ(ask(driver, 54, 1, 28, Record(28).put(16, 4, 1).put(20, 4, 0)).get(8, 4), 40u);
  EXPECT_EQ(ask(driver, 54, 1, 28, Record(28).put(16, 4, 1).put(20, 4, 1)).get(8, 4), 1800u);
  EXPECT_EQ(ask(driver, 63, 2, 20).get(0, 4), 51u);
  const Record limits = ask(driver, 66, 1, 32);
  EXPECT_EQ(limits.get(8, 4), 95000u);
  EXPECT_EQ(limits.get(12, 4), 0x80000000u);
  EXPECT_EQ(ask(driver, 35, 1, 32).get(0, 8), 5u);
  EXPECT_EQ(ask(driver, 31, 1, 60).get(0, 4), 7u);
  EXPECT_EQ(ask(driver, 31, 1, 60).text(4, 40), "SLOT7");
}

TEST_F(SimRecord1, RetiredPages) {
  TestDriver driver(tor1With(R"("retired_count": {"0": 2, "1": 1},
      "retired_address": {"0,0": 4096, "0,1": 8192, "1,0": 12288}, "retired_timestamp": {"0,1": 17},
      "retired_cause": {"0,1": 0}, "retired_location": {"0,1": 18}, "retired_errors": {"0,1": 19})"));
  const Record counts = ask(driver, 45, 1, 24);
  EXPECT_EQ(counts.get(0, 4), 2u);
  EXPECT_EQ(counts.get(4, 4), 1u);
  const Record page = ask(driver, 46, 1, 56, Record(56).put(24, 4, 0).put(28, 4, 1));
  EXPECT_EQ(page.get(0, 8), 2u);
  EXPECT_EQ(page.get(8, 8), 8192u);
  EXPECT_EQ(page.get(16, 8), 17u);
  EXPECT_EQ(page.get(36, 4), 0u);
  EXPECT_EQ(page.get(40, 8), 18u);
  EXPECT_EQ(page.get(48, 8), 19u);
  EXPECT_EQ(ask(driver, 46, 1, 56, Record(56).put(24, 4, 1)).get(8, 8), 12288u);
  const Record beyond = ask(driver, 46, 1, 56, Record(56, 0xAA).put(24, 4, 1).put(28, 4, 5));
  EXPECT_EQ(beyond.get(0, 8), 1u);
  EXPECT_EQ(beyond.get(8, 8), 0xAAAAAAAAAAAAAAAAu) << "no row behind the last";
}

TEST_F(SimRecord1, Sablink) {
  TestDriver driver(R"({"gpus": [{"model": "B250A", "misc": 9}, {"model": "B250A", "misc": 3, "values": {
      "sablink_capable": 1, "sablink_links": 4, "sablink_speed": 25000,
      "sablink_version": 200, "sablink_state": {"0": 1, "3": {"status": 11}},
      "sablink_capability": {"2,1": 1}, "sablink_errors": {"2,5": 77},
      "sablink_remote_address": {"1": "0x410000"}, "sablink_remote_link": {"1": 6},
      "sablink_remote_misc_id": {"1": 9}, "sablink_layout_count": {"9": 2},
      "sablink_local_port": {"9,0": 0, "9,1": 1}, "sablink_remote_port": {"9,0": 5, "9,1": 6},
      "sablink_path_count": {"9": 1}, "sablink_path_length": {"9,0": 3},
      "sablink_path_devices": {"9,0": [3, 7, 9]}}}]})");
  const Record spec = ask(driver, 17, 2, 28);
  EXPECT_EQ(spec.get(0, 4), 4u);
  EXPECT_EQ(spec.get(4, 4), 25000u);
  EXPECT_EQ(spec.get(8, 4), 200u);
  EXPECT_EQ(ask(driver, 19, 2, 24).get(4, 4), 1u);
  Record state = Record(24).put(0, 4, 3);
  EXPECT_EQ(driver.call("ovgpu.3", 19, 2, state), 11);
  EXPECT_EQ(ask(driver, 18, 2, 28, Record(28).put(0, 4, 2).put(4, 4, 1)).get(8, 4), 1u);
  EXPECT_EQ(ask(driver, 20, 3, 32, Record(32).put(0, 4, 2).put(4, 4, 5)).get(8, 8), 77u);
  const Record remote = ask(driver, 23, 2, 34, Record(34).put(0, 4, 1));
  EXPECT_EQ(remote.get(4, 8), 0x410000u);
  EXPECT_EQ(remote.get(12, 4), 6u);
  EXPECT_EQ(remote.get(16, 2), 9u);
  const Record layout = ask(driver, 22, 2, 406, Record(406).put(4, 2, 9));
  EXPECT_EQ(layout.get(0, 4), 2u);
  EXPECT_EQ(layout.get(14, 4), 1u);
  EXPECT_EQ(layout.get(18, 4), 6u);
  const Record paths = ask(driver, 24, 2, 854, Record(854).put(4, 2, 9));
  EXPECT_EQ(paths.get(0, 4), 1u);
  EXPECT_EQ(paths.get(6, 4), 3u);
  EXPECT_EQ(paths.get(10, 2), 3u);
  EXPECT_EQ(paths.get(12, 2), 7u);
  EXPECT_EQ(paths.get(14, 2), 9u);
}

TEST_F(SimRecord1, SerdesStatusWantsFourLanes) {
  TestDriver driver(tor1With(R"("sablink_capable": 1, "sablink_links": 2, "serdes_lanes": 4,
      "serdes_state": {"1,0": 2, "1,1": 1, "1,2": 0, "1,3": 2}, "serdes_eye_width": {"1,0": 11, "1,1": 12, "1,2": 13, "1,3": 14},
      "serdes_eye_height": 120, "serdes_bit_errors": {"1,0": 21, "1,1": 22, "1,2": 23, "1,3": 24})"));
  const Record status = ask(driver, 39, 1, 84, Record(84).put(0, 4, 4).put(4, 4, 1));
  EXPECT_EQ(status.get(0, 4), 4u);
  EXPECT_EQ(status.get(4, 4), 2u);
  EXPECT_EQ(status.get(8, 4), 11u);
  EXPECT_EQ(status.get(12, 4), 120u);
  EXPECT_EQ(status.get(16, 4), 21u);
  EXPECT_EQ(status.get(4 + 16 * 3 + 4, 4), 14u);
  EXPECT_EQ(status.get(4 + 16 * 3 + 12, 4), 24u);
  Record wrong = Record(84).put(0, 4, 3).put(4, 4, 1);
  EXPECT_EQ(driver.call("ovgpu.3", 39, 1, wrong), 1);
  wrong.put(0, 4, 4).put(4, 4, 2);
  EXPECT_EQ(driver.call("ovgpu.3", 39, 1, wrong), 12);
}

TEST_F(SimRecord1, P2pStatusByPeerAndCapability) {
  TestDriver driver(R"({"gpus": [{"model": "B250A", "misc": 5}, {"model": "B250A", "misc": 3, "values": {
      "p2p_status": {"5,0": 0, "5,1": 2}}}]})");
  EXPECT_EQ(ask(driver, 7, 1, 28, Record(28).put(0, 4, 5)).get(8, 4), 0u);
  EXPECT_EQ(ask(driver, 7, 1, 28, Record(28).put(0, 4, 5).put(4, 4, 1)).get(8, 4), 2u);
  Record other = Record(28).put(0, 4, 6);
  EXPECT_EQ(driver.call("ovgpu.3", 7, 1, other), 12) << "there is no such device";
}

TEST_F(SimRecord1, MemoryTemperatureTellsWhatWasMeasured) {
  TestDriver driver(R"({"interfaces": {"63": [1, 2]}, "gpus": [{"model": "B250A", "misc": 3, "values": {
      "memory_temperature": 51, "memory_channel_mask": "0x8000000000000001"}}]})");
  const Record first = ask(driver, 63, 1, 212);
  EXPECT_EQ(first.get(0, 4), 51u);
  EXPECT_EQ(first.get(8, 8), 0x8000000000000001u);
}

TEST_F(SimRecord1, EdcCountersByChannelAndInTotal) {
  TestDriver driver(R"({"interfaces": {"64": [1, 2]}, "gpus": [{"model": "B250A", "misc": 3, "values": {
      "edc_channels": 2, "edc_read_errors": {"0": 1, "1": 5}, "edc_write_errors": {"0": 2, "1": 6},
      "edc_read_retries": {"0": 3, "1": 7}, "edc_write_retries": {"0": 4, "1": 8},
      "edc_total": [11, 12, 13, 14]}}]})");
  const Record channels = ask(driver, 64, 1, 404);
  EXPECT_EQ(channels.get(0, 4), 2u);
  for (size_t i = 0; i < 8; ++i) EXPECT_EQ(channels.get(4 + 4 * i, 4), i + 1);
  const Record total = ask(driver, 64, 2, 32);
  for (size_t i = 0; i < 4; ++i) EXPECT_EQ(total.get(4 * i, 4), 11 + i);
}

TEST_F(SimRecord1, Bar2MemoryAndThermalSlowdown) {
  TestDriver driver(tor1With(R"("bar2_total": 21, "bar2_used": 22, "bar2_free": 23, "slowdown_count": 24,
      "slowdown_time": 25)"));
  const Record memory = ask(driver, 74, 0, 56);
  EXPECT_EQ(memory.get(0, 8), 21u);
  EXPECT_EQ(memory.get(8, 8), 22u);
  EXPECT_EQ(memory.get(16, 8), 23u);
  const Record slowdown = ask(driver, 73, 0, 24);
  EXPECT_EQ(slowdown.get(0, 4), 24u);
  EXPECT_EQ(slowdown.get(4, 4), 25u);
}

TEST_F(SimRecord1, FansOfAList) {
  TestDriver driver(
      tor1With("", R"("fans": [{"percent": 40, "rpm": 1800}, {"percent": "n/a", "rpm": 2000}],)"));
  EXPECT_EQ(ask(driver, 53, 1, 20).get(0, 4), 2u);
  EXPECT_EQ(ask(driver, 54, 1, 28, Record(28).put(16, 4, 1).put(20, 4, 1)).get(8, 4), 2000u);
  EXPECT_EQ(ask(driver, 54, 1, 28, Record(28).put(16, 4, 1)).get(8, 4), 0xFFFFFFFFu);
  Record absent = Record(28).put(16, 4, 2);
  EXPECT_EQ(driver.call("ovgpu.3", 54, 1, absent), 12);
}

TEST_F(SimRecord1, EfuseBitsAreAtMostAThousand) {
  TestDriver driver(tor1With(""));
  Record wanted = Record(152).put(4, 4, 1025);
  EXPECT_EQ(driver.call("ovgpu.3", 62, 1, wanted), 1);
  const Record efuse = ask(driver, 62, 1, 152, Record(152).put(4, 4, 1024));
  for (size_t i = 0; i < 32; ++i) EXPECT_EQ(efuse.get(8 + 4 * i, 4), 0u) << "no identity on this family";
}

TEST_F(SimRecord1, GuestsOfAList) {
  TestDriver driver(tor1With("", R"("vgpu_types": [{"id": 11, "name": "t", "framebuffer": 2048}],
      "vgpus": [{"uuid": "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71", "type": 11, "id": 7, "utilization": 12,
                 "memory_used": "n/a", "overcommit": 1, "overcommit_memory": 512}],)"));
  EXPECT_EQ(ask(driver, 33, 1, 24, Record(24).put(0, 4, 7)).get(4, 4), 12u);
  const Record memory = ask(driver, 34, 1, 36, Record(36).put(0, 4, 7));
  EXPECT_EQ(memory.get(4, 8), uint64_t{2048} << 20) << "as large as the type's";
  EXPECT_EQ(memory.get(12, 8), ~uint64_t{0});
  const Record lent = ask(driver, 75, 0, 44, Record(44).put(0, 4, 7));
  EXPECT_EQ(lent.get(4, 4), 1u);
  EXPECT_EQ(lent.get(8, 4), 512u);
}

TEST_F(SimRecord1, SablinkNeedsPorts) {
  TestDriver driver(
      tor1With(R"("sablink_capable": 0, "sablink_links": 4, "sablink_speed": 1, "sablink_version": 1)"));
  Record payload(0);
  EXPECT_EQ(driver.call("ovgpu.3", 17, 2, 28, payload), 5);
}

TEST_F(SimRecord1, VgpuOfAnotherGpuIsNotSupported) {
  TestDriver driver(tor1With(R"("vgpu_utilization": {"7": 12}, "vgpu_memory_total": {"7": 100},
      "vgpu_memory_used": {"7": 50}, "overcommit": {"7": 0}, "overcommit_memory": {"7": 3})"));
  EXPECT_EQ(ask(driver, 33, 1, 24, Record(24).put(0, 4, 7)).get(4, 4), 12u);
  const Record memory = ask(driver, 34, 1, 36, Record(36).put(0, 4, 7));
  EXPECT_EQ(memory.get(4, 8), 100u);
  EXPECT_EQ(memory.get(12, 8), 50u);
  EXPECT_EQ(ask(driver, 75, 0, 44, Record(44).put(0, 4, 7)).get(8, 4), 3u);
  Record other = Record(24).put(0, 4, 8);
  EXPECT_EQ(driver.call("ovgpu.3", 33, 1, other), 5);
}

TEST_F(SimRecord1, MpcNodesAnswerWhatTheyAre) {
  TestDriver driver(R"({"gpus": [{"model": "B240", "misc": 3, "mpc": {
      "profiles": [{"id": 3, "name": "1c.16g", "cores": 1, "memory": 16384},
                   {"id": 1, "name": "3c.48g", "cores": 3, "memory": 49152}],
      "configurations": [{"id": 0, "name": "full", "profiles": [1]}, {"id": 2, "name": "pair", "profiles": [3, 3]}],
      "current": 2, "instances": [{"misc": 6}, {"misc": 8}]}}]})");
  const Record profiles = ask(driver, 9, 1, 1940);
  EXPECT_EQ(profiles.get(0, 4), 2u);
  EXPECT_EQ(profiles.get(64, 2), 1u);
  EXPECT_EQ(profiles.text(66, 32), "3c.48g");
  EXPECT_EQ(profiles.get(98, 2), 3u);
  EXPECT_EQ(profiles.get(100, 8), 49152u);
  const Record configurations = ask(driver, 10, 1, 3796);
  EXPECT_EQ(configurations.get(0, 4), 2u);
  EXPECT_EQ(configurations.get(122, 2), 2u);
  EXPECT_EQ(configurations.text(124, 32), "pair");
  EXPECT_EQ(configurations.get(156, 4), 2u);
  EXPECT_EQ(configurations.get(160, 2), 3u);
  EXPECT_EQ(configurations.get(162, 2), 3u);
  const Record instances = ask(driver, 11, 1, 86);
  EXPECT_EQ(instances.get(0, 2), 2u);
  EXPECT_EQ(instances.get(6, 2), 8u);
  EXPECT_EQ(instances.get(8, 2), 1u);
  const Record current = ask(driver, 16, 1, 118);
  EXPECT_EQ(current.get(0, 2), 2u);
  EXPECT_EQ(current.text(2, 32), "pair");

  Record payload(0);
  EXPECT_EQ(driver.call("ovgpu.3", 8, 2, 60, payload), 0);
  EXPECT_EQ(payload.get(16, 4), 1u);
  EXPECT_EQ(payload.get(20, 4), 1u);
  EXPECT_EQ(payload.get(28, 2), 0xFFFFu) << "a parent has no graphics node";
  EXPECT_EQ(driver.call("ovgpu.3", 14, 1, 60, payload), 5);
  EXPECT_EQ(driver.call("ovgpu.8", 9, 1, 1940, payload), 5);
  EXPECT_EQ(driver.call("ovgpu.8", 8, 2, 60, payload), 0);
  EXPECT_EQ(payload.get(16, 4), 2u);
  EXPECT_EQ(payload.get(24, 4), 0u);
  EXPECT_EQ(payload.get(32, 2), 3u);
  EXPECT_EQ(driver.call("ovgpu.8", 13, 1, 18, payload), 0);
  EXPECT_EQ(payload.get(0, 2), 3u);
  EXPECT_EQ(driver.call("ovgpu.8", 14, 1, 60, payload), 0);
  EXPECT_EQ(payload.get(0, 2), 0x0103u);
  EXPECT_EQ(payload.text(2, 32), "1c.16g");
  EXPECT_EQ(payload.get(34, 2), 1u);
  EXPECT_EQ(payload.get(36, 8), 16384u);
  EXPECT_EQ(driver.call("ovgpu.8", 3, 1, 72, payload), 0);
  EXPECT_EQ(payload.get(0, 8), uint64_t{16384} << 20) << "memory is the profile's";
}

TEST_F(SimRecord1, NoConfigurationIsTold) {
  TestDriver driver(R"({"gpus": [{"model": "B240", "misc": 3, "mpc": {
      "profiles": [], "configurations": [], "current": null}}]})");
  EXPECT_EQ(ask(driver, 16, 1, 118).get(0, 2), 65535u);
}

TEST_F(SimRecord1, ValueThatRefusesRefusesTheCall) {
  TestDriver driver(
      tor1With(R"("temperature": {"status": 5}, "pstate": {"errno": "EIO"}, "ecc_current": null)"));
  Record payload = Record(24).put(0, 4, 1000);
  EXPECT_EQ(driver.call("ovgpu.3", 56, 1, payload), 5);
  EXPECT_EQ(driver.call("ovgpu.3", 67, 0, 20, payload), -EIO);
  EXPECT_EQ(driver.call("ovgpu.3", 48, 1, 21, payload), 5) << "a value that the device does not have";
}

TEST_F(SimRecord1, StepsFollowOneAnotherAndTheLastStays) {
  TestDriver driver(tor1With(R"("pstate": [0, 5, {"status": 7}, 9], "utilization": {"cycle": [1, 2]})"));
  Record payload(0);
  EXPECT_EQ(ask(driver, 67, 0, 20).get(0, 4), 0u);
  EXPECT_EQ(ask(driver, 67, 0, 20).get(0, 4), 5u);
  EXPECT_EQ(driver.call("ovgpu.3", 67, 0, 20, payload), 7);
  EXPECT_EQ(ask(driver, 67, 0, 20).get(0, 4), 9u);
  EXPECT_EQ(ask(driver, 67, 0, 20).get(0, 4), 9u);
  for (const uint64_t expected : {1u, 2u, 1u, 2u}) EXPECT_EQ(ask(driver, 2, 3, 92).get(0, 4), expected);
}

}  // namespace
