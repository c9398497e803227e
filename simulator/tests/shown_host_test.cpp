// What programs see of a host.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "simulator_process.h"

namespace {

constexpr int kTierUnusable = 77;

/// A container may forbid a process to supervise another one; that is no fault of the simulator. Every test
/// of a suite asks before it starts, so that either all of them run or ctest tells the whole suite as
/// skipped.
void skipWithoutTier(const std::string& tier) {
  const Outcome outcome = runSimulator({"--tier", tier, "--", "true"});
  if (outcome.status == kTierUnusable) GTEST_SKIP() << outcome.error;
}

class SimHost : public testing::TestWithParam<std::string> {
 protected:
  void SetUp() override { skipWithoutTier(GetParam()); }

  Outcome onHost(const std::string& host, std::vector<std::string> options,
                 std::vector<std::string> command) {
    std::vector<std::string> all{"--tier", GetParam(), "--host", host};
    all.insert(all.end(), options.begin(), options.end());
    all.emplace_back("--");
    all.insert(all.end(), command.begin(), command.end());
    return runSimulator(all);
  }

  const std::string calls = probe("sim_calls_probe");
  const ScratchFolder scratch;
};

TEST_P(SimHost, EveryWayToLookAtFilesSeesTheHost) {
  for (const char* const name : {"sim_files_probe", "sim_files_probe_large", "sim_files_probe_fortified"}) {
    const Outcome outcome = onHost("bare", {}, {probe(name)});
    EXPECT_EQ(outcome.status, 0) << name << "\n" << outcome.out << outcome.error;
  }
}

TEST_P(SimHost, NodesAnswer) {
  const Outcome outcome = onHost("bare", {}, {calls, "status", "ovgpu.1", "67", "0", "20"});
  EXPECT_TRUE(outcome.out.starts_with("ok 0 08 00 00 00")) << outcome.out << outcome.error;
}

TEST_P(SimHost, ForkedProcessesAndDuplicatedDescriptorsAnswer) {
  EXPECT_EQ(onHost("bare", {}, {calls, "fork", "ovgpu.0"}).out, "0 0\n");
}

TEST_P(SimHost, TimeStandsStillWhenTheHostSaysSo) {
  EXPECT_EQ(onHost("bare", {}, {calls, "time"}).out, "1763660412\n");
  const std::string moving = scratch.write("moving.json", R"({"gpus": []})");
  EXPECT_NE(onHost(moving, {}, {calls, "time"}).out, "1763660412\n");
}

TEST_P(SimHost, NodeWithoutDriverCannotBeOpened) {
  EXPECT_EQ(onHost("unloaded", {}, {calls, "open", "/dev/ovgpu.0"}).out, "No such device\n");
  EXPECT_EQ(onHost("unloaded", {}, {calls, "open", "/sys/bus/pci/drivers/ovgpu"}).out,
            "No such file or directory\n");
}

TEST_P(SimHost, DeviceThatVanishedCannotBeOpened) {
  const Outcome outcome = onHost(
      "bare", {"--fault", "ioctl(node=ovgpu.0):gone"},
      {"sh", "-c",
       calls + " status ovgpu.0 67 0 20; " + calls + " open /dev/ovgpu.0; " + calls + " open /dev/ovgpu.1"});
  EXPECT_TRUE(outcome.out.starts_with("No such device")) << outcome.out;
  EXPECT_TRUE(outcome.out.ends_with("\nNo such device\nok\n")) << outcome.out;
}

TEST_P(SimHost, FilesOfTheDescriptionAreThere) {
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

TEST_P(SimHost, ProcessNobodyDescribedIsNotTheMachines) {
  const std::string host = scratch.write(
      "host.json", R"({"gpus": [{"model": "B250A", "processes": [{"pid": 1, "gpu_memory": 1}]}]})");
  EXPECT_EQ(onHost(host, {}, {calls, "open", "/proc/1/cmdline"}).out, "No such file or directory\n");
}

TEST_P(SimHost, VirtualFunctionHasALinkToItsPhysicalOne) {
  const std::string host = scratch.write("host.json", R"({"gpus": [{"model": "B250A", "physfn": true}]})");
  EXPECT_EQ(onHost(host, {}, {"test", "-h", "/sys/bus/pci/drivers/ovgpu/0000:01:00.0/physfn"}).status, 0);
}

constexpr const char* kMpcFunction = "/sys/bus/pci/drivers/ovgpu/0000:41:00.0";

TEST_P(SimHost, NodesComeAndGoWithTheMpcMode) {
  const std::string folder = scratch / "kept";
  const auto run = [&](const std::string& script) {
    return onHost("mpc", {"--state", folder}, {"sh", "-c", script}).out;
  };
  const std::string list = "ls -d /dev/ovgpu.* /dev/dri/* " + std::string(kMpcFunction) + "/misc/* " +
                           std::string(kMpcFunction) +
                           "/drm/* | tr '\\n' ' '; cat /proc/driver/vela/gpu1/devname";
  const std::string function = kMpcFunction;
  EXPECT_EQ(run(list),
            "/dev/dri/card0 /dev/dri/card1 /dev/dri/card2 /dev/dri/renderD128 /dev/dri/renderD129 "
            "/dev/dri/renderD130 /dev/ovgpu.0 /dev/ovgpu.1 /dev/ovgpu.2 /dev/ovgpu.3 " +
                function + "/drm/card1 " + function + "/drm/card2 " + function + "/drm/renderD129 " +
                function + "/drm/renderD130 " + function + "/misc/ovgpu.1 " + function + "/misc/ovgpu.2 " +
                function + "/misc/ovgpu.3 ovgpu.1\n");
  EXPECT_TRUE(run(calls + " status ovgpu.1 12 1 18 0").starts_with("ok 0"));
  EXPECT_EQ(run("ls " + function + "/misc"), "ovgpu.1\novgpu.2\n");
  EXPECT_EQ(run(calls + " open /dev/ovgpu.3"), "No such file or directory\n");
  EXPECT_TRUE(run(calls + " status ovgpu.2 14 1 60").starts_with("ok 0 01 00 33 63"));
  EXPECT_TRUE(run(calls + " status ovgpu.1 12 1 18 1").starts_with("ok 0"));
  EXPECT_EQ(run("ls " + function + "/misc"), "ovgpu.1\novgpu.2\novgpu.3\novgpu.4\n");
  EXPECT_TRUE(run(calls + " status ovgpu.1 15 1 17 0").starts_with("ok 0"));
  EXPECT_EQ(run("ls " + function + "/misc " + function + "/drm"),
            function + "/drm:\ncard4\nrenderD132\n\n" + function + "/misc:\novgpu.1\n");
  EXPECT_EQ(run("cat /proc/driver/vela/gpu1/devname"), "ovgpu.1\n");
}

TEST_P(SimHost, ResetIsRefusedWhileAnotherDeviceIsOpen) {
  const Outcome outcome = onHost("bare", {}, {calls, "reset-beside", "ovgpu.0", "ovgpu.1"});
  EXPECT_EQ(outcome.out, "7 0\n") << "busy, and done once the other one is closed";
  EXPECT_EQ(onHost("bare", {}, {calls, "reset-beside", "ovgpu.0", "dri/renderD128"}).out, "0 0\n")
      << "a node of the device itself";
}

TEST_P(SimHost, TraceTellsWhyAResetWasRefused) {
  const std::string trace = scratch / "trace";
  onHost("bare", {"--trace", trace}, {calls, "reset-beside", "ovgpu.0", "dri/renderD129"});
  EXPECT_EQ(linesOf(readText(trace)),
            (std::vector<std::string>{"open /dev/ovgpu.0 ok", "open /dev/dri/renderD129 ok",
                                      "ioctl ovgpu.0 record 50 1 status=7", "close /dev/dri/renderD129 ok",
                                      "ioctl ovgpu.0 record 50 1 ok"}));
}

TEST_P(SimHost, MemoryIsSharedWithTheDriver) {
  const std::string trace = scratch / "trace";
  const std::string unexpected = scratch / "unexpected";
  const Outcome outcome =
      onHost("legacy", {"--trace", trace, "--unexpected", unexpected}, {calls, "board", "ovgpu.0"});
  EXPECT_EQ(outcome.out,
            "alloc ok\nmap elsewhere Invalid argument\nmap ok\ncommand ok\n"
            "version 1 memory 5 name OVT B230 board\nunmap ok\nfree ok\nmap again Invalid argument\n")
      << outcome.error;
  EXPECT_EQ(linesOf(readText(trace)),
            (std::vector<std::string>{"open /dev/ovgpu.0 ok", "ioctl ovgpu.0 memory 0xc0104d03 - ok",
                                      "mmap /dev/ovgpu.0 EINVAL", "mmap /dev/ovgpu.0 ok",
                                      "ioctl ovgpu.0 smc 57 0x7d ok", "munmap /dev/ovgpu.0 ok",
                                      "ioctl ovgpu.0 memory 0xc0104d04 - ok", "mmap /dev/ovgpu.0 EINVAL"}));
  EXPECT_EQ(readText(unexpected), "");
}

TEST_P(SimHost, BufferBelongsToTheDescriptorAndItsCopies) {
  EXPECT_EQ(
      onHost("legacy", {}, {calls, "buffers", "ovgpu.0"}).out,
      "ok, copy Device or resource busy, other ok, crossed Invalid argument, by the copy ok, reopened ok\n");
}

TEST_P(SimHost, MappingCanFail) {
  const Outcome outcome =
      onHost("legacy", {"--fault", "map(/dev/ovgpu.*)#2:errno=ENOMEM"}, {calls, "board", "ovgpu.0"});
  EXPECT_EQ(outcome.out,
            "alloc ok\nmap elsewhere Invalid argument\nmap Cannot allocate memory\ncommand ok\nfree ok\n"
            "map again Invalid argument\n")
      << outcome.error;
}

TEST_P(SimHost, CallsThatWereNotOfferedAreTold) {
  const std::string trace = scratch / "trace";
  const std::string unexpected = scratch / "unexpected";
  const Outcome outcome = onHost("future-interface", {"--trace", trace, "--unexpected", unexpected},
                                 {calls, "status", "ovgpu.0", "8", "2", "60"});
  EXPECT_TRUE(outcome.out.starts_with("ok 4")) << outcome.out << outcome.error;
  EXPECT_EQ(readText(unexpected), "1 ovgpu.0 record 8 2\n");
  EXPECT_EQ(linesOf(readText(trace)).back(), "ioctl ovgpu.0 record 8 2 status=4 unexpected");
}

TEST_P(SimHost, EventsReachEveryQueueOnce) {
  const Outcome outcome = onHost("bare", {},
                                 {"sh", "-c",
                                  calls + " events 0 2 'ovgpu-sim-raise 0 31 pid=4242 text=mmu; "
                                          "ovgpu-sim-raise 1 8; ovgpu-sim-raise 0 13'"});
  EXPECT_EQ(outcome.out,
            "empty 0\nempty 0\nready 1\n256 31 4242 mmu\n256 13 0 \nempty 0\nready 1\n256 31 4242 mmu\n256 "
            "13 0 \nempty 0\n")
      << outcome.error;
}

TEST_P(SimHost, FullQueueDropsTheOldestEvent) {
  const Outcome outcome = onHost(
      "bare", {},
      {"sh", "-c",
       calls + " events 0 1 'for i in $(seq 1 66); do ovgpu-sim-raise 0 $i; done' | sed -n '3p;66p;67p'"});
  EXPECT_EQ(outcome.out, "256 3 0 \n256 66 0 \nempty 0\n") << outcome.error;
}

TEST_P(SimHost, EventsOfTheDescriptionWaitUntilTheyAreDropped) {
  const std::string host = scratch.write("host.json", R"({"gpus": [{"model": "B250A", "events": [
      {"xid": 5, "time": 100}, {"xid": 6, "time": 101, "pid": 7}]}]})");
  EXPECT_EQ(onHost(host, {}, {calls, "events", "0", "1", ":"}).out, "ready 1\n256 5 0 \n256 6 7 \nempty 0\n");
  EXPECT_EQ(
      onHost(host, {}, {"sh", "-c", calls + " status ovgpu.0 43 1 16 >/dev/null; " + calls + " events 0 1 :"})
          .out,
      "ready 0\nempty 0\n");
}

TEST_P(SimHost, RaisedFaultIsWrittenDownByTheLogDaemon) {
  const Outcome outcome =
      onHost("bare", {},
             {"sh", "-c",
              "ovgpu-sim-raise 1 31; ovgpu-sim-raise 0 32; cd /var/log/ovgpu/event_report; for i in *; do "
              "stat -c %s $i/xid_records; done"});
  EXPECT_EQ(outcome.out, "536\n200\n") << outcome.error;
  EXPECT_EQ(onHost("bare", {}, {"ovgpu-sim-raise", "2", "1"}).status, 2);
}

TEST_P(SimHost, MediatedDevicesAreInSysfs) {
  const std::string uuid = "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71";
  const auto text = [&](const std::string& command) { return onHost("vgpu", {}, {"sh", "-c", command}).out; };
  const std::string type = "/sys/class/mdev_bus/0000:01:00.0/mdev_supported_types/ovgpu-11/";
  EXPECT_EQ(
      text("cat " + type + "name " + type + "device_api " + type + "available_instances " + type +
           "description"),
      "OVT B230-2Q\nvfio-pci\n7\nmax_resolution=4096x2160,max_encode_num=2,max_decode_num=4,framebuffer=2048,"
      "max_instances=8,max_ov_virtual_display=2\n");
  EXPECT_EQ(text("readlink -f /sys/bus/mdev/devices/" + uuid),
            "/sys/devices/pci0000:00/0000:00:01.0/0000:01:00.0/" + uuid + "\n");
  EXPECT_EQ(text("cd /sys/bus/mdev/devices/" + uuid +
                 "; readlink mdev_type; cat ovgpu_vgpu/vgpu_id ovgpu_vgpu/vm_pid"),
            "../mdev_supported_types/ovgpu-11\n7\n5151\n");
  EXPECT_EQ(onHost("bare", {}, {"test", "-e", "/sys/class/mdev_bus"}).status, 1);
}

TEST_P(SimHost, AdaptersAndBridgesAreInSysfs) {
  const std::string host = scratch.write("host.json", R"({"gpus": [{"model": "B250A", "upstream":
      ["pci0000:00", "0000:00:01.0", "0000:02:00.0"], "numa_node": 1, "cpus": "4-7"}],
      "adapters": [{"name": "mlx5_3", "address": "0000:09:00.1", "upstream": ["pci0000:00", "0000:00:01.0"]},
                   {"address": "0000:0a:00.0", "numa_node": -1, "class": "0x020000"}],
      "bridges": {"0000:02:00.0": {"class": "0x060000", "numa_node": 0}}})");
  const auto text = [&](const std::string& command) { return onHost(host, {}, {"sh", "-c", command}).out; };
  EXPECT_EQ(text("readlink -f /sys/class/infiniband/mlx5_3"),
            "/sys/devices/pci0000:00/0000:00:01.0/0000:09:00.1/infiniband/mlx5_3\n");
  EXPECT_EQ(
      text(
          "cd /sys/bus/pci/devices/0000:09:00.1; cat class vendor device local_cpulist local_cpus numa_node"),
      "0x020700\n0x15b3\n0x1017\n0-31\nffffffff\n0\n");
  EXPECT_EQ(text("cd /sys/bus/pci/devices/0000:02:00.0; cat class vendor local_cpulist local_cpus numa_node"),
            "0x060000\n0x1022\n4-7\n000000f0\n0\n");
  EXPECT_EQ(text("cd /sys/bus/pci/devices/0000:0a:00.0; ls; cat numa_node"),
            "class\ndevice\nlocal_cpulist\nlocal_cpus\nnuma_node\nvendor\n-1\n");
}

TEST_P(SimHost, GuestIsToldItsShare) {
  const std::string file = "/sys/bus/pci/devices/0000:00:05.0/ovgpu_vgpu/vgpu_device_info";
  EXPECT_EQ(onHost("guest", {}, {calls, "cat", file}).out,
            "type_id=7717,name=OVT B240-8Q,framebuffer=8192\n");
  EXPECT_EQ(onHost("guest", {}, {calls, "cat", "/sys/bus/pci/devices/0000:00:05.0/subsystem_device"}).out,
            "0x1e25\n");
}

TEST_P(SimHost, PackageToolsAnswerAsDescribed) {
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

TEST_P(SimHost, FileFaultsStrike) {
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

TEST_P(SimHost, WhatIsTakenIsGoneFromThenOn) {
  const std::string uuid = "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71";
  const std::string link = "/sys/bus/mdev/devices/" + uuid;
  const std::string folder = "/sys/bus/pci/devices/0000:01:00.0/" + uuid;
  const std::string id = link + "/ovgpu_vgpu/vgpu_id";
  const std::string open = calls + " open " + id + "; ";
  const std::string list = "ls /sys/bus/mdev/devices; ";
  EXPECT_EQ(
      onHost("vgpu", {"--fault", "file(" + id + ")#2:take=" + folder}, {"sh", "-c", open + open + list}).out,
      "ok\nNo such file or directory\n" + uuid + "\n")
      << "a folder with all in it, and no more";
  EXPECT_EQ(
      onHost("vgpu", {"--fault", "open(" + id + "):take=" + link}, {"sh", "-c", open + open + list}).out,
      "No such file or directory\nNo such file or directory\n");
  const std::string cmdline = "/proc/5151/cmdline";
  EXPECT_EQ(onHost("vgpu", {"--fault", "file(" + id + "):take=" + cmdline},
                   {"sh", "-c", open + calls + " open " + cmdline})
                .out,
            "ok\nNo such file or directory\n")
      << "nor is a process of the machine found there";
}

constexpr int kKilled = 128 + 9;

TEST_P(SimHost, KilledProcessHasDoneNothing) {
  const std::string folder = scratch / "kept";
  const std::string trace = scratch / "trace";
  const std::string version = "/proc/driver/vela/version";
  const auto run = [&](const std::string& fault, const std::string& command) {
    return onHost("bare", {"--state", folder, "--trace", trace, "--fault", fault},
                  {"sh", "-c", "exec " + calls + " " + command})
        .status;
  };
  EXPECT_EQ(run("ioctl(interface=49):kill", "set-ecc ovgpu.1 1"), kKilled);
  EXPECT_EQ(run("file(" + version + "):kill", "cat " + version), kKilled);
  EXPECT_EQ(run("open(/dev/ovgpu.*)#1:kill", "open /dev/ovgpu.0"), kKilled);
  EXPECT_EQ(run("open(/dev/ovgpu.*)#2:kill", "open /dev/ovgpu.0"), 0);
  EXPECT_EQ(linesOf(readText(trace)),
            (std::vector<std::string>{"open /dev/ovgpu.1 ok", "ioctl ovgpu.1 record 49 1 killed",
                                      "open " + version + " killed", "open /dev/ovgpu.0 killed",
                                      "open /dev/ovgpu.0 ok"}));
  EXPECT_TRUE(onHost("bare", {"--state", folder}, {calls, "status", "ovgpu.1", "48", "1", "21"})
                  .out.starts_with("ok 0 00 00 00 00 00"))
      << "and whoever comes next gets the lock that it held";
}

TEST_P(SimHost, MappingCanKill) {
  EXPECT_EQ(onHost("legacy", {"--fault", "map(/dev/ovgpu.*)#2:kill"}, {calls, "board", "ovgpu.0"}).status,
            kKilled);
}

TEST_P(SimHost, SwitchThatWasKilledIsBroughtToAnEnd) {
  const std::string look = "ls -d /dev/ovgpu.* /dev/dri/* " + std::string(kMpcFunction) + "/misc/* " +
                           std::string(kMpcFunction) + "/drm/*; " + calls + " status ovgpu.1 8 2 60";
  struct Switch {
    const char* what;
    std::string call;
  };
  const Switch switches[] = {{"more instances", calls + " status ovgpu.1 12 1 18 1"},
                             {"other instances", calls + " status ovgpu.1 12 1 18 0"},
                             {"no instances", calls + " status ovgpu.1 15 1 17 0"}};
  for (const Switch& one : switches) {
    const std::string expected = onHost("mpc", {}, {"sh", "-c", one.call + " >/dev/null; " + look}).out;
    ASSERT_NE(expected, onHost("mpc", {}, {"sh", "-c", look}).out) << one.what;
    int moves = 0;
    for (int status = kKilled; status == kKilled; ++moves) {
      const std::string kill = "move#" + std::to_string(moves + 1) + ":kill";
      const Outcome outcome =
          onHost("mpc", {"--fault", kill},
                 {"sh", "-c", "(" + one.call + ") >/dev/null 2>&1; was=$?; " + look + "; exit $was"});
      status = outcome.status;
      EXPECT_EQ(outcome.out, expected) << one.what << ", " << kill;
    }
    EXPECT_GE(moves, 3) << one.what;
    const std::string folder = scratch / one.what;
    EXPECT_EQ(onHost("mpc", {"--state", folder, "--fault", "move#2:kill"}, {"sh", "-c", one.call}).status,
              kKilled);
    EXPECT_EQ(onHost("mpc", {"--state", folder}, {"sh", "-c", look}).out, expected)
        << one.what << ", looked at by the next run";
  }
}

TEST_P(SimHost, HangDelaysTheAnswer) {
  const auto before = std::chrono::steady_clock::now();
  EXPECT_TRUE(onHost("bare", {"--fault", "ioctl(interface=67):hang=400"},
                     {calls, "status", "ovgpu.0", "67", "0", "20"})
                  .out.starts_with("ok 0"));
  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(400));
}

TEST_P(SimHost, TraceHasOneLineForEachAccess) {
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

TEST_P(SimHost, WhoIsDelayedDelaysNobodyElse) {
  const auto before = std::chrono::steady_clock::now();
  const std::string ask = calls + " status ovgpu.0 67 0 20 & ";
  const Outcome outcome = onHost("bare", {"--fault", "ioctl(interface=67):hang=400"},
                                 {"sh", "-c", ask + ask + ask + ask + "wait"});
  EXPECT_EQ(linesOf(outcome.out).size(), 4u) << outcome.error;
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(1200));
}

TEST_P(SimHost, EveryProgramIsToldTheTime) {
  const std::string script = scratch.write("script", "date -u +%s\n");
  std::filesystem::permissions(script, std::filesystem::perms::owner_all);
  EXPECT_EQ(
      onHost("bare", {}, {"sh", "-c", script + "; nothing-of-this-name; (date -u +%s); exec date -u +%s"})
          .out,
      "1763660412\n1763660412\n1763660412\n");
}

TEST_P(SimHost, UserIsToldToEveryProgram) {
  EXPECT_EQ(onHost("bare", {"--user", "1000"}, {"id", "-u"}).out, "1000\n");
}

TEST_P(SimHost, ProcessesAndThreadsLoseNoCall) {
  const std::string folder = scratch / "kept";
  const std::string many = calls + " many ovgpu.0 100 4 & ";
  const Outcome outcome = onHost("bare", {"--state", folder, "--fault", "ioctl#1600:errno=EIO"},
                                 {"sh", "-c", many + many + many + many + "wait"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  int failures = 0;
  for (const std::string& line : linesOf(outcome.out)) failures += std::stoi(line);
  EXPECT_EQ(failures, 1) << "the last of 1600 calls alone failed";
}

TEST_P(SimHost, TraceThatCannotBeWrittenIsAnError) {
  const Outcome outcome = onHost("bare", {"--trace", "/no/such/folder/trace"}, {"true"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.error.find("cannot write the trace: /no/such/folder/trace"), std::string::npos)
      << outcome.error;
}

// ---- what the kernel alone can show

class SimSeccomp : public testing::Test {
 protected:
  Outcome run(std::vector<std::string> command) {
    std::vector<std::string> all{"--tier", "seccomp", "--"};
    all.insert(all.end(), command.begin(), command.end());
    return runSimulator(all);
  }

  void SetUp() override { skipWithoutTier("seccomp"); }
};

TEST_F(SimSeccomp, FolderIsWhereTheOtherTierLeftIt) {
  const std::string calls = probe("sim_calls_probe");
  const std::pair<std::string, std::string> orders[] = {{"preload", "seccomp"}, {"seccomp", "preload"}};
  for (const auto& [first, second] : orders) {
    const ScratchFolder scratch;
    const std::string folder = scratch / "kept";
    EXPECT_EQ(
        runSimulator({"--tier", first, "--state", folder, "--", calls, "set-ecc", "ovgpu.1", "1"}).status, 0);
    const Outcome outcome = runSimulator(
        {"--tier", second, "--state", folder, "--", calls, "status", "ovgpu.1", "48", "1", "21"});
    EXPECT_TRUE(outcome.out.starts_with("ok 0 00 00 00 00 01")) << second << outcome.out << outcome.error;
  }
}

TEST_F(SimSeccomp, StaticProgramsSeeTheHost) {
  for (const char* const name : {"sim_files_probe_static", "sim_static_probe"}) {
    const Outcome outcome = run({probe(name)});
    EXPECT_EQ(outcome.status, 0) << name << "\n" << outcome.out << outcome.error;
  }
}

TEST_F(SimSeccomp, TierThatCannotBeUsedSaysWhy) {
  // The kernel lets a process have one supervisor.
  const Outcome outcome = run({std::string(SIM_FOLDER) + "/ovgpu-sim", "--tier", "seccomp", "--", "true"});
  EXPECT_EQ(outcome.status, kTierUnusable);
  EXPECT_EQ(
      outcome.error,
      "ovgpu-sim: the tier \"seccomp\" cannot be used here: the kernel has no seccomp user notification "
      "for it: Device or resource busy\n");
}

// Each tier is a test of ctest by itself.
INSTANTIATE_TEST_SUITE_P(Preload, SimHost, testing::Values("preload"));
INSTANTIATE_TEST_SUITE_P(Seccomp, SimHost, testing::Values("seccomp"));

}  // namespace
