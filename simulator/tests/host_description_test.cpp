#include <gtest/gtest.h>

#include "host_document.h"
#include "host_error.h"
#include "host_reader.h"
#include "scratch_folder.h"
#include "test_driver.h"

namespace {

std::string errorOf(const std::string& json) {
  try {
    hostFromText(json);
  } catch (const HostError& error) {
    return error.what();
  }
  return {};
}

TEST(SimDescription, MistakesNameFileKeyAndExpectation) {
  const struct {
    const char* json;
    const char* message;
  } mistakes[] = {
      {R"({"gpu": []})", "test.json: gpu: unknown key; did you mean \"gpus\"?"},
      {R"({"gpus": {}})", "test.json: gpus: expected an array; found {}"},
      {R"({"gpus": [{}]})", "test.json: gpus[0]: the key \"model\" (or \"device_id\") is missing"},
      {R"({"gpus": [{"model": "B250A", "adress": "x"}]})",
       "test.json: gpus[0].adress: unknown key; did you mean \"address\"?"},
      {R"({"gpus": [{"model": "B250A", "address": "01:00.0"}]})",
       "test.json: gpus[0].address: expected a PCI address such as \"0000:41:00.0\"; found \"01:00.0\""},
      {R"({"gpus": [{"model": "B250A", "link": {"speed": 7}}]})",
       "test.json: gpus[0].link.speed: expected a link speed in GT/s: 2.5, 5, 8, 16, 32 or 64; found 7"},
      {R"({"gpus": [{"model": "B250A", "link": {"witdh": 8}}]})",
       "test.json: gpus[0].link.witdh: unknown key; did you mean \"width\"?"},
      {R"({"gpus": [{"model": "B250A", "values": {"temprature": 3}}]})",
       "test.json: gpus[0].values.temprature: unknown value; did you mean \"temperature\"?"},
      {R"({"gpus": [{"model": "B250A", "values": {"memory_total": "64 gigs"}}]})",
       "test.json: gpus[0].values.memory_total: expected a whole number, or a text such as \"0x1f\" or "
       "\"16GiB\"; "
       "found \"64 gigs\""},
      {R"({"gpus": [{"model": "B250A", "values": {"temperature": {"a": 3}}}]})",
       "test.json: gpus[0].values.temperature.a: the key must be 1 number; found \"a\""},
      {R"({"gpus": [{"model": "B250A", "values": {"fan_speed": {"1": 3}}}]})",
       "test.json: gpus[0].values.fan_speed.1: the key must be 2 numbers with commas between; found \"1\""},
      {R"({"gpus": [{"model": "B250A", "values": {"pstate": {"errno": "EWHAT"}}}]})",
       "test.json: gpus[0].values.pstate.errno: expected the name of an errno, such as \"EIO\"; found "
       "\"EWHAT\""},
      {R"({"gpus": [{"model": "B250A", "values": {"pstate": {"status": 5, "errno": "EIO"}}}]})",
       "test.json: gpus[0].values.pstate: only one of status, errno, steps, cycle and hex can be given"},
      {R"({"gpus": [{"model": "B250A", "values": {"pstate": {"hex": "01"}}}]})",
       "test.json: gpus[0].values.pstate.hex: only a text can be given by its bytes"},
      {R"({"gpus": [{"model": "B250A", "values": {"serial_number": {"hex": "123"}}}]})",
       "test.json: gpus[0].values.serial_number.hex: expected pairs of hexadecimal digits; found \"123\""},
      {R"({"gpus": [{"model": "B250A", "values": {"pstate": []}}]})",
       "test.json: gpus[0].values.pstate: expected at least one step; found []"},
      {R"({"gpus": [{"model": "B250A", "address": "0000:01:00.0"}, {"model": "B250A", "address": "0000:01:00.0"}]})",
       "test.json: gpus[1]: the address 0000:01:00.0 is taken by another GPU"},
      {R"({"gpus": [{"model": "B250A", "misc": 4}, {"model": "B250A", "misc": 4}]})",
       "test.json: gpus[1].misc: the number 4 is taken by another device"},
      {R"({"gpus": [{"model": "B250A", "processes": [{"pid": 3}]}]})",
       "test.json: gpus[0].processes[0]: the key \"gpu_memory\" is missing"},
      {R"({"gpus": [{"model": "B250A", "processes": [{"pid": -3, "gpu_memory": 1}]}]})",
       "test.json: gpus[0].processes[0].pid: expected a whole number from 0 to 4294967295; found -3"},
      {R"({"gpus": [{"model": "B240", "mpc": {"profiles": [], "configurations": [], "current": 3}}]})",
       "test.json: gpus[0].mpc.current: expected the id of one of the configurations; found 3"},
      {R"({"gpus": [{"model": "B240", "mpc": {"profiles": [], "configurations": [], "enabled": false, "current": 3}}]})",
       "test.json: gpus[0].mpc.current: the mode is not enabled, so no configuration is set"},
      {R"({"gpus": [{"model": "B230", "vpu_sessions": [{"core": 4, "instance": 0, "pid": 1, "codec": 0}]}]})",
       "test.json: gpus[0].vpu_sessions[0].core: there is no such core among vpu_cores"},
      {R"({"gpus": [{"model": "B230", "vpu_sessions": [{"core": 3, "instance": 8, "pid": 1, "codec": 0}]}]})",
       "test.json: gpus[0].vpu_sessions[0].instance: the core has 8 instances"},
      {R"({"gpus": [{"model": "B230", "vpu_sessions": [{"core": 3, "instance": 0, "pid": 1, "codec": "AAC"}]}]})",
       "test.json: gpus[0].vpu_sessions[0].codec: expected a number or one of \"AVC\" \"VC1\" \"MPEG2\" "
       "\"MPEG4\" \"H263\" \"DIV3\" \"RV\" \"AVS\" \"RSVD1\" \"THO\" \"VP3\" \"VP8\" \"HEVC\" \"VP9\" "
       "\"AVS2\" \"RSVD2\" \"AV1\"; found \"AAC\""},
      {R"({"gpus": [{"model": "B230", "retired_pages": [{"cause": 2, "address": 1}]}]})",
       "test.json: gpus[0].retired_pages[0].cause: expected a whole number from 0 to 1; found 2"},
      {R"({"gpus": [{"model": "B230", "retired_pages": [{"cause": "single", "adress": 1}]}]})",
       "test.json: gpus[0].retired_pages[0].adress: unknown key; did you mean \"address\"?"},
      {R"({"gpus": [{"model": "B230", "vgpus": [{"uuid": "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71", "type": 3, "id": 1}]}]})",
       "test.json: gpus[0].vgpus[0].type: there is no type 3 among vgpu_types"},
      {R"({"gpus": [{"model": "B230", "vgpus": [{"uuid": "C3", "type": 3, "id": 1}]}]})",
       "test.json: gpus[0].vgpus[0].uuid: expected a uuid of lower-case digits; found \"C3\""},
      {R"({"gpus": [{"model": "B230", "events": [{"xid": 3}]}]})",
       "test.json: gpus[0].events[0]: the key \"time\" is missing"},
      {R"({"gpus": [{"model": "B230"}], "sablink": {"links": [{"gpus": [0, 1]}]}})",
       "test.json: sablink.links[0].gpus[1]: expected a whole number from 0 to 0; found 1"},
      {R"({"gpus": [{"model": "B230", "repeat": 2}], "sablink": {"links": [{"gpus": [0, 1], "count": 30}, {"gpus": [0, 1], "count": 3}]}})",
       "test.json: sablink.links[1]: a GPU has at most 32 links"},
      {R"({"adapters": [{"name": "mlx5_0", "address": "7"}]})",
       "test.json: adapters[0].address: expected a PCI address such as \"0000:41:00.0\"; found \"7\""},
      {R"({"bridges": {"root": {}}})", "test.json: bridges.root: a bridge is named by its PCI address"},
      {R"({"protocol": 2})",
       "test.json: protocol: expected 1, 0, \"none\", or {\"major\": N, \"minor\": N} for what the probe "
       "answers; "
       "found 2"},
      {R"({"time": "yesterday"})",
       "test.json: time: expected seconds since the epoch, or UTC as \"2025-11-20 17:40:12\"; found "
       "\"yesterday\""},
      {R"({"files": {"/home/x": ""}})",
       "test.json: files[\"/home/x\"]: not a path that a host has; those are below /sys, /proc, /dev and "
       "/var/log/ovgpu, and /etc/ovparams"},
      {R"({"processes": {"4242": {"cmd": []}}})",
       "test.json: processes.4242.cmd: unknown key; did you mean \"cmdline\"?"},
      {R"({"packages": {"apt": {}}})", "test.json: packages.apt: unknown key; did you mean \"rpm\"?"},
      {R"({"interfaces": {"56": [1]}})",
       "test.json: interfaces.56: expected a version, or [lowest, highest]; found [1]"},
  };
  for (const auto& row : mistakes) EXPECT_EQ(errorOf(row.json), row.message);
}

TEST(SimDescription, FirmwareIsBusyForSoManyAttempts) {
  EXPECT_EQ(hostFromText(R"({"firmware_busy": 3})").busyAttempts, 3u);
  EXPECT_FALSE(hostFromText(R"({"firmware_busy": 3})").busyAgain);
  const Host again = hostFromText(R"({"firmware_busy": {"attempts": 4, "again": true}})");
  EXPECT_EQ(again.busyAttempts, 4u);
  EXPECT_TRUE(again.busyAgain);
  EXPECT_NE(errorOf(R"({"firmware_busy": {"times": 4}})"), "");
}

TEST(SimDescription, UnknownModelListsTheKnownOnes) {
  const std::string message = errorOf(R"({"gpus": [{"model": "B999"}]})");
  EXPECT_TRUE(message.starts_with("test.json: gpus[0].model: expected one of OVT A11, OVT A13,")) << message;
  EXPECT_TRUE(message.ends_with("OVT B250D, OVT T1; found \"B999\"")) << message;
}

TEST(SimDescription, GpusGetAddressesAndNumbersOfTheirOwn) {
  const Host host = hostFromText(R"({"gpus": [{"model": "B250A", "repeat": 18}]})");
  ASSERT_EQ(host.functions.size(), 18u);
  EXPECT_EQ(host.functions[0].place.address, "0000:01:00.0");
  EXPECT_EQ(host.functions[1].place.address, "0000:11:00.0");
  EXPECT_EQ(host.functions[16].place.address, "0001:01:00.0");
  EXPECT_EQ(host.functions[17].miscIds, std::vector<uint32_t>{17});
  EXPECT_EQ(host.functions[17].renderIds, std::vector<uint32_t>{145});
  EXPECT_EQ(host.functions[1].place.upstream, (std::vector<std::string>{"pci0000:10", "0000:10:01.0"}));
}

TEST(SimDescription, RepeatedAddressCountsItsBusUp) {
  const Host host = hostFromText(R"({"gpus": [{"model": "B250A", "address": "0000:41:00.0", "repeat": 3}]})");
  EXPECT_EQ(host.functions[2].place.address, "0000:43:00.0");
  EXPECT_EQ(host.functions[2].place.upstream.front(), "pci0000:40");
}

TEST(SimDescription, DeviceIdDecidesOnTheFamily) {
  const Host host = hostFromText(R"({"gpus": [{"device_id": "0x010F"}, {"device_id": "0x0599"}]})");
  EXPECT_EQ(host.functions[0].identity.deviceId, 0x010F);
  EXPECT_EQ(host.functions[1].identity.deviceId, 0x0599);
}

TEST(SimDescription, DefaultsOfAllGpusGiveWayToTheEntry) {
  TestDriver driver(R"({"gpu_defaults": {"model": "B250A", "values": {"pstate": 3, "utilization": 4}},
                        "gpus": [{}, {"values": {"pstate": 5}}]})");
  Record payload(0);
  driver.call("ovgpu.0", 67, 0, 20, payload);
  EXPECT_EQ(payload.get(0, 4), 3u);
  driver.call("ovgpu.1", 67, 0, 20, payload);
  EXPECT_EQ(payload.get(0, 4), 5u);
  driver.call("ovgpu.1", 2, 3, 92, payload);
  EXPECT_EQ(payload.get(0, 4), 4u);
}

TEST(SimDescription, OneTemperatureStandsForAllSensorsOfTheFamily) {
  TestDriver driver(R"({"gpus": [{"model": "B240", "values": {"temperature": 41000}}]})");
  for (const unsigned sensor : {0u, 9u, 18u, 27u, 36u}) {
    Record payload = Record(24).put(0, 4, sensor);
    EXPECT_EQ(driver.call("ovgpu.0", 56, 1, payload), 0) << sensor;
    EXPECT_EQ(payload.get(4, 4), 41000u);
  }
  Record other = Record(24).put(0, 4, 10);
  EXPECT_EQ(driver.call("ovgpu.0", 56, 1, other), 12);
}

TEST(SimDescription, InstancesDoNotTakeOverWhatTheirParentSaysOfItself) {
  TestDriver driver(R"({"gpus": [{"model": "B240", "values": {"pstate": {"status": 5}}, "mpc": {
      "profiles": [{"id": 3, "name": "p", "cores": 1, "memory": 16}],
      "configurations": [{"id": 0, "name": "c", "profiles": [3]}], "current": 0}}]})");
  Record payload(0);
  EXPECT_EQ(driver.call("ovgpu.0", 67, 0, 20, payload), 5);
  EXPECT_EQ(driver.call("ovgpu.1", 67, 0, 20, payload), 0);
}

TEST(SimDescription, ProcessesThatAreNotDescribedAreUnknown) {
  const Host host = hostFromText(R"({"gpus": [{"model": "B250A", "processes": [
      {"pid": 1, "gpu_memory": 1}, {"pid": 2, "gpu_memory": 1}]}], "processes": {"2": {"cmdline": ["a", "b"]}}})");
  EXPECT_EQ(host.unknownPids, std::vector<uint64_t>{1});
  EXPECT_EQ(host.processes.at(2), std::string("a\0b\0", 4));
}

TEST(SimDescription, LinksAreSeenFromBothSides) {
  TestDriver driver(R"({"gpus": [{"model": "B250A", "repeat": 4}, {"model": "B230"}], "sablink": {
      "speed": 7, "version": 300, "links": [{"gpus": [0, 1], "count": 2}, {"gpus": [1, 2], "state": "downgraded"},
      {"gpus": [2, 3], "state": "down"}]}})");
  const auto ask = [&](const char* node, unsigned name, unsigned version, Record payload) {
    EXPECT_EQ(driver.call(node, name, version, payload), 0) << node << " " << name;
    return payload;
  };
  const Record spec = ask("ovgpu.1", 17, 2, Record(28));
  EXPECT_EQ(spec.get(0, 4), 3u);
  EXPECT_EQ(spec.get(4, 4), 7u);
  EXPECT_EQ(spec.get(8, 4), 300u);
  EXPECT_EQ(ask("ovgpu.1", 19, 2, Record(24).put(0, 4, 2)).get(4, 4), 2u);
  EXPECT_EQ(ask("ovgpu.2", 19, 2, Record(24).put(0, 4, 1)).get(4, 4), 0u);
  const Record remote = ask("ovgpu.2", 23, 2, Record(34).put(0, 4, 0));
  EXPECT_EQ(remote.get(4, 8), 0x110000u);
  EXPECT_EQ(remote.get(12, 4), 2u);
  EXPECT_EQ(remote.get(16, 2), 1u);
  const Record layout = ask("ovgpu.0", 22, 2, Record(406).put(4, 2, 1));
  EXPECT_EQ(layout.get(0, 4), 2u);
  EXPECT_EQ(layout.get(14, 4), 1u);
  EXPECT_EQ(layout.get(18, 4), 1u);
  const Record path = ask("ovgpu.0", 24, 2, Record(854).put(4, 2, 2));
  EXPECT_EQ(path.get(0, 4), 1u);
  EXPECT_EQ(path.get(6, 4), 3u);
  EXPECT_EQ(path.get(10, 2), 0u);
  EXPECT_EQ(path.get(12, 2), 1u);
  EXPECT_EQ(path.get(14, 2), 2u);
  EXPECT_EQ(ask("ovgpu.0", 22, 2, Record(406).put(4, 2, 2)).get(0, 4), 0u) << "no link to it";
  EXPECT_EQ(ask("ovgpu.0", 24, 2, Record(854).put(4, 2, 3)).get(0, 4), 0u) << "a link that is down";
  EXPECT_EQ(ask("ovgpu.0", 24, 2, Record(854).put(4, 2, 4)).get(0, 4), 0u) << "no ports";
  Record absent = Record(24).put(0, 4, 9);
  EXPECT_EQ(driver.call("ovgpu.0", 19, 2, absent), 12);
  Record unlinked = Record(28);
  EXPECT_EQ(driver.call("ovgpu.4", 17, 2, unlinked), 5);
}

TEST(SimDescription, AllShortestPathsAreTold) {
  TestDriver driver(R"({"gpus": [{"model": "B250A", "repeat": 4}], "sablink": {"links": [
      {"gpus": [0, 1]}, {"gpus": [0, 2]}, {"gpus": [1, 3]}, {"gpus": [2, 3]}]}})");
  Record paths = Record(854).put(4, 2, 3);
  ASSERT_EQ(driver.call("ovgpu.0", 24, 2, paths), 0);
  EXPECT_EQ(paths.get(0, 4), 2u);
  EXPECT_EQ(paths.get(12, 2), 1u);
  EXPECT_EQ(paths.get(6 + 52 + 6, 2), 2u);
}

TEST(SimDescription, UuidsAreThoseOfTheDriver) {
  const Host host = hostFromText(R"({"gpus": [
      {"model": "B240", "efuse": ["0x123456789A", "0xABC", "0x15", "0x0A"]}, {"model": "B250A", "misc": 26},
      {"model": "B230", "efuse": [0, 0, 0, 0]}]})");
  EXPECT_EQ(host.functions[0].uuid, "69a595f8-b61c-1978-3817-019f596bec2d");
  EXPECT_EQ(host.functions[1].uuid, "00000000-0000-0000-0000-00000000001a");
  EXPECT_EQ(host.functions[2].uuid, "00000000-0000-0000-0000-000000000001");
  EXPECT_EQ(hostFromText(R"({"driver_mode": 1, "gpus": [{"model": "B240"}]})").functions[0].uuid, "");
  EXPECT_EQ(hostFromText(R"({"interfaces": {"62": null}, "gpus": [{"model": "B240"}]})").functions[0].uuid,
            "00000000-0000-0000-0000-000000000000");
}

TEST(SimDescription, FaultRecordsAreFiledByUuid) {
  const Host host = hostFromText(R"({"gpus": [{"model": "B250A", "misc": 3, "xid_records": [
      {"xid": 31, "scope": "engine", "severity": "error", "time": "2025-11-20 17:40:00", "pid": 4242, "text": "mmu"},
      {"xid": 1, "attributes": 7, "time": 5, "version": 2}]}],
      "xid_records": {"gone": [{"xid": 9, "time": 6}]}})");
  const std::string& file = host.faultRecords.at("00000000-0000-0000-0000-000000000003");
  ASSERT_EQ(file.size(), 32u + 2 * 168);
  EXPECT_EQ(file.substr(0, 10), std::string("OVXIDREC\1\0", 10));
  Record record(168);
  std::copy(file.begin() + 32, file.begin() + 200, record.bytes.begin());
  EXPECT_EQ(record.get(0, 4), 1u);
  EXPECT_EQ(record.get(4, 4), 31u);
  EXPECT_EQ(record.get(8, 8), 17u);
  EXPECT_EQ(record.get(16, 8), 1763660400u);
  EXPECT_EQ(record.get(32, 8), 4242u);
  EXPECT_EQ(record.text(40, 128), "mmu");
  EXPECT_EQ(static_cast<unsigned char>(file[200]), 2);
  EXPECT_EQ(host.faultRecords.at("gone").size(), 200u);
}

TEST(SimDescription, InstancesOfOtherConfigurationsAreNumberedLast) {
  const Host host = hostFromText(R"({"gpus": [{"model": "B240", "mpc": {
      "profiles": [{"id": 3, "name": "p", "cores": 1, "memory": 16}],
      "configurations": [{"id": 0, "name": "one", "profiles": [3]}, {"id": 1, "name": "two", "profiles": [3, 3]}],
      "current": 0}}, {"model": "B250A"}]})");
  EXPECT_EQ(host.functions[0].miscIds, (std::vector<uint32_t>{0, 1}));
  EXPECT_EQ(host.functions[1].miscIds, std::vector<uint32_t>{2});
  uint32_t waiting = 0;
  for (const Node& node : host.nodes) {
    if (!node.present && node.kind == SIM_NODE_INSTANCE) waiting = node.number;
  }
  EXPECT_EQ(waiting, 3u);
}

class SimLibraryOfHosts : public testing::Test {
 protected:
  void write(const std::string& name, const std::string& text) { folder.write(name, text); }

  Host load(const std::string& name) { return readHost(HostLibrary({folder.path}).load(name)); }

  std::string errorOfLoading(const std::string& name) {
    try {
      load(name);
    } catch (const HostError& error) {
      return error.what();
    }
    return {};
  }

  const ScratchFolder folder;
};

TEST_F(SimLibraryOfHosts, HostThatExtendsAnotherPatchesItsGpus) {
  write("base.json",
        R"({"time": 5, "gpus": [{"model": "B250A", "values": {"pstate": 3}}, {"model": "B250A"}]})");
  write("more.json", R"({"extends": "base", "driver_mode": 0,
                         "gpus": {"0": {"values": {"utilization": 9}}, "1": {"model": "B230"}}})");
  const Host host = load("more");
  EXPECT_EQ(host.time, 5);
  EXPECT_EQ(host.driverMode, "0");
  EXPECT_EQ(host.functions[1].identity.deviceId, 0x0230);
  EXPECT_EQ(host.nodes[0].cells.at({SIM_PSTATE, 0}).number, 3u);
  EXPECT_EQ(host.nodes[0].cells.at({SIM_UTILIZATION, 0}).number, 9u);
}

TEST_F(SimLibraryOfHosts, MistakesAreNamed) {
  write("circle.json", R"({"extends": "circle"})");
  write("broken.json", "{\n \"gpus\": [,]\n}");
  write("place.json", R"({"extends": "one", "gpus": {"7": {}}})");
  write("one.json", R"({"gpus": [{"model": "B250A"}]})");
  const std::string in = folder / "";
  EXPECT_EQ(errorOfLoading("circle"), in + "circle.json: extends: the host extends itself");
  EXPECT_EQ(errorOfLoading("place"),
            in + "place.json: gpus.7: expected the place of a GPU entry of the extended host, 0 to 0");
  EXPECT_EQ(errorOfLoading("on"), "no host \"on\"; did you mean \"one\"? (broken, circle, one, place)");
  EXPECT_EQ(errorOfLoading("./absent.json"), "./absent.json: the host description cannot be opened");
  EXPECT_TRUE(errorOfLoading("broken").starts_with(in + "broken.json: parse error at line 2, column 11"))
      << errorOfLoading("broken");
}

TEST_F(SimLibraryOfHosts, NumberThatNothingHoldsIsNamedWithItsFile) {
  write("huge.json", "-277e754");
  EXPECT_EQ(errorOfLoading("huge"), folder / "" + "huge.json: number overflow parsing '-277e754'");
}

}  // namespace
