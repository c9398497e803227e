// What programs see of a host.
#include <gtest/gtest.h>

#include <algorithm>

#include "simulator_process.h"

namespace {

class SimPreload : public testing::Test {
 protected:
  Outcome onHost(const std::string& host, std::vector<std::string> options,
                 std::vector<std::string> command) {
    std::vector<std::string> all{"--host", host};
    all.insert(all.end(), options.begin(), options.end());
    all.emplace_back("--");
    all.insert(all.end(), command.begin(), command.end());
    return runSimulator(all);
  }

  const std::string calls = probe("sim_calls_probe");
  const ScratchFolder scratch;
};

TEST_F(SimPreload, EveryWayToLookAtFilesSeesTheHost) {
  for (const char* const name : {"sim_files_probe", "sim_files_probe_large", "sim_files_probe_fortified"}) {
    const Outcome outcome = onHost("bare", {}, {probe(name)});
    EXPECT_EQ(outcome.status, 0) << name << "\n" << outcome.out << outcome.error;
  }
}

TEST_F(SimPreload, NodesAnswer) {
  const Outcome outcome = onHost("bare", {}, {calls, "status", "ovgpu.1", "67", "0", "20"});
  EXPECT_TRUE(outcome.out.starts_with("ok 0 08 00 00 00")) << outcome.out << outcome.error;
}

TEST_F(SimPreload, ForkedProcessesAndDuplicatedDescriptorsAnswer) {
  EXPECT_EQ(onHost("bare", {}, {calls, "fork", "ovgpu.0"}).out, "0 0\n");
}

TEST_F(SimPreload, TimeStandsStillWhenTheHostSaysSo) {
  EXPECT_EQ(onHost("bare", {}, {calls, "time"}).out, "1763660412\n");
  const std::string moving = scratch.write("moving.json", R"({"gpus": []})");
  EXPECT_NE(onHost(moving, {}, {calls, "time"}).out, "1763660412\n");
}

TEST_F(SimPreload, NodeWithoutDriverCannotBeOpened) {
  EXPECT_EQ(onHost("unloaded", {}, {calls, "open", "/dev/ovgpu.0"}).out, "No such device\n");
  EXPECT_EQ(onHost("unloaded", {}, {calls, "open", "/sys/bus/pci/drivers/ovgpu"}).out,
            "No such file or directory\n");
}

TEST_F(SimPreload, DeviceThatVanishedCannotBeOpened) {
  const Outcome outcome = onHost(
      "bare", {"--fault", "ioctl(node=ovgpu.0):gone"},
      {"sh", "-c",
       calls + " status ovgpu.0 67 0 20; " + calls + " open /dev/ovgpu.0; " + calls + " open /dev/ovgpu.1"});
  EXPECT_TRUE(outcome.out.starts_with("No such device")) << outcome.out;
  EXPECT_TRUE(outcome.out.ends_with("\nNo such device\nok\n")) << outcome.out;
}

TEST_F(SimPreload, FilesOfTheDescriptionAreThere) {
  const std::string host = scratch.write("host.json", R"({
      "gpus": [{"model": "B250A"}],
      "files": {"/etc/ovparams": "envType: 0\n", "/proc/driver/vela/version": null, "/sys/class/mdev_bus/": "",
                "/proc/mounts": null, "/var/log/ovgpu/a/b": {"hex": "414200"},
                "/sys/bus/pci/drivers/ovgpu/0000:01:00.0/numa_node": "7\n"},
      "links": {"/sys/class/mdev_bus/0000:01:00.0": "/sys/bus/pci/devices/0000:01:00.0"}})");
  EXPECT_EQ(onHost(host, {}, {calls, "cat", "/etc/ovparams"}).out, "envType: 0\n");
  EXPECT_EQ(onHost(host, {}, {calls, "open", "/proc/driver/vela/version"}).out,
            "No such file or directory\n");
  EXPECT_EQ(onHost(host, {}, {calls, "open", "/proc/mounts"}).out, "No such file or directory\n");
  EXPECT_EQ(onHost(host, {}, {calls, "cat", "/var/log/ovgpu/a/b"}).out, std::string("AB\0", 3));
  EXPECT_EQ(onHost(host, {}, {calls, "cat", "/sys/bus/pci/devices/0000:01:00.0/numa_node"}).out, "7\n");
  EXPECT_EQ(onHost(host, {}, {calls, "cat", "/sys/class/mdev_bus/0000:01:00.0/vendor"}).out, "0x4f56\n");
}

TEST_F(SimPreload, ProcessNobodyDescribedIsNotTheMachines) {
  const std::string host = scratch.write(
      "host.json", R"({"gpus": [{"model": "B250A", "processes": [{"pid": 1, "gpu_memory": 1}]}]})");
  EXPECT_EQ(onHost(host, {}, {calls, "open", "/proc/1/cmdline"}).out, "No such file or directory\n");
}

TEST_F(SimPreload, VirtualFunctionHasALinkToItsPhysicalOne) {
  const std::string host = scratch.write("host.json", R"({"gpus": [{"model": "B250A", "physfn": true}]})");
  EXPECT_EQ(onHost(host, {}, {"test", "-h", "/sys/bus/pci/drivers/ovgpu/0000:01:00.0/physfn"}).status, 0);
}

TEST_F(SimPreload, PackageToolsAnswerAsDescribed) {
  const std::string host = scratch.write("host.json", R"({"packages": {
      "dpkg": {"vela": "1.3.0_beta"}, "rpm": {"vela_all-in-one": {"text": "Version    : 9\n", "status": 3}}}})");
  const Outcome dpkg = onHost(host, {}, {"sh", "-c", "dpkg -s vela 2>/dev/null"});
  EXPECT_EQ(dpkg.status, 0);
  EXPECT_NE(dpkg.out.find("\nVersion: 1.3.0_beta\n"), std::string::npos) << dpkg.out;
  const Outcome rpm = onHost(host, {}, {"rpm", "-qi", "vela_all-in-one"});
  EXPECT_EQ(rpm.out, "Version    : 9\n");
  EXPECT_EQ(rpm.status, 3);
  EXPECT_EQ(onHost(host, {}, {"rpm", "-qi", "vela"}).status, 1);
}

TEST_F(SimPreload, FileFaultsStrike) {
  const std::string version = "/proc/driver/vela/version";
  EXPECT_EQ(onHost("bare", {"--fault", "file(" + version + "):errno=EACCES"}, {calls, "open", version}).out,
            "Permission denied\n");
  EXPECT_EQ(onHost("bare", {"--fault", "file(" + version + "):cut=7"}, {calls, "cat", version}).out,
            "package");
  EXPECT_EQ(
      onHost("bare", {"--fault", "open(" + version + "):text=no colon\\n"}, {calls, "cat", version}).out,
      "no colon\n");
  EXPECT_EQ(
      onHost("bare", {"--fault", "open(/dev/ovgpu.1):errno=EPERM"}, {calls, "open", "/dev/ovgpu.1"}).out,
      "Operation not permitted\n");
  EXPECT_EQ(onHost("bare", {"--fault", "file(" + version + ")#2:errno=EIO"},
                   {"sh", "-c",
                    calls + " open " + version + "; " + calls + " open " + version + "; " + calls + " open " +
                        version})
                .out,
            "ok\nInput/output error\nok\n")
      << "counted over all processes of the run";
}

TEST_F(SimPreload, HangDelaysTheAnswer) {
  const auto before = std::chrono::steady_clock::now();
  EXPECT_TRUE(onHost("bare", {"--fault", "ioctl(interface=67):hang=400"},
                     {calls, "status", "ovgpu.0", "67", "0", "20"})
                  .out.starts_with("ok 0"));
  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(400));
}

TEST_F(SimPreload, TraceHasOneLineForEachAccess) {
  const std::string trace = scratch / "trace";
  onHost("bare", {"--trace", trace, "--fault", "ioctl(node=ovgpu.1):status=7"},
         {"sh", "-c",
          calls + " status ovgpu.0 67 0 20; " + calls + " status ovgpu.1 67 0 20; " + calls +
              " open /sys/none; " + calls + " many ovgpu.0 50 4"});
  const std::vector<std::string> lines = linesOf(readText(trace));
  const auto count = [&](const std::string& line) { return std::count(lines.begin(), lines.end(), line); };
  EXPECT_EQ(lines.size(), 206u) << "and no access of the simulator's own";
  EXPECT_EQ(count("open /dev/ovgpu.0 ok"), 2);
  EXPECT_EQ(count("open /dev/ovgpu.1 ok"), 1);
  EXPECT_EQ(count("open /sys/none ENOENT"), 1);
  EXPECT_EQ(count("ioctl ovgpu.0 record 67 0 ok"), 201);
  EXPECT_EQ(count("ioctl ovgpu.1 record 67 0 status=7"), 1);
}

}  // namespace
