// What stays of a host between commands, and what many processes do to it at once.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>

#include "sim_image.h"
#include "simulator_process.h"

namespace {

class SimState : public testing::Test {
 protected:
  // The pending ECC mode of GPU 1, which host "bare" has off.
  std::string pendingEcc(const std::vector<std::string>& options) {
    std::vector<std::string> all = options;
    for (const char* const word : {"--", "", "status", "ovgpu.1", "48", "1", "21"}) all.emplace_back(word);
    all[options.size() + 1] = calls;
    const Outcome outcome = runSimulator(all);
    return outcome.out.substr(0, 19) + outcome.error;
  }

  uint64_t callsIn(const std::string& folder) {
    const std::string bytes = readText(folder + "/image");
    SimImage image{};
    std::memcpy(&image, bytes.data(), std::min(bytes.size(), sizeof image));
    return image.calls;
  }

  const std::string calls = probe("sim_calls_probe");
  const ScratchFolder scratch;
};

TEST_F(SimState, IsKeptBetweenCommandsInAFolder) {
  const std::string folder = scratch / "kept";
  EXPECT_EQ(runSimulator({"--state", folder, "--", calls, "set-ecc", "ovgpu.1", "1"}).status, 0);
  EXPECT_EQ(pendingEcc({"--state", folder}), "ok 0 00 00 00 00 01");
  EXPECT_EQ(pendingEcc({"--state", folder, "--fault", "ioctl(interface=67):gone"}), "ok 0 00 00 00 00 01")
      << "with faults, which are of one run alone";
  EXPECT_EQ(pendingEcc({"--state", folder}), "ok 0 00 00 00 00 01");
}

TEST_F(SimState, CallsThatWereNotOfferedAreKeptToo) {
  const std::string folder = scratch / "kept";
  const std::string file = scratch / "unexpected";
  const std::vector<std::string> run{"--state", folder,    "--unexpected", file, "--", calls,
                                     "status",  "ovgpu.1", "998",          "1",  "20"};
  runSimulator(run);
  EXPECT_EQ(readText(file), "1 ovgpu.1 record 998 1\n");
  runSimulator(run);
  EXPECT_EQ(readText(file), "2 ovgpu.1 record 998 1\n");
}

TEST_F(SimState, CommandsThatRunAtTheSameTimeShareIt) {
  const std::string folder = scratch / "kept";
  // What a running command has mapped must be what the next one uses.
  const auto file = [&] {
    struct stat status {};
    EXPECT_EQ(stat((folder + "/image").c_str(), &status), 0);
    return status.st_ino;
  };
  EXPECT_EQ(runSimulator({"--state", folder, "--", calls, "exit", "0"}).status, 0);
  const ino_t first = file();
  EXPECT_EQ(runSimulator({"--state", folder, "--", calls, "set-ecc", "ovgpu.1", "1"}).status, 0);
  EXPECT_EQ(pendingEcc({"--state", folder}), "ok 0 00 00 00 00 01");
  EXPECT_EQ(file(), first);
}

TEST_F(SimState, IsFreshWithoutAFolder) {
  EXPECT_EQ(runSimulator({"--", calls, "set-ecc", "ovgpu.1", "1"}).status, 0);
  EXPECT_EQ(pendingEcc({}), "ok 0 00 00 00 00 00");
}

TEST_F(SimState, FolderOfAnotherHostIsRefused) {
  const std::string folder = scratch / "kept";
  EXPECT_EQ(runSimulator({"--state", folder, "--", calls, "exit", "0"}).status, 0);
  const Outcome outcome = runSimulator({"--host", "server", "--state", folder, "--", calls, "exit", "0"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.error.find("holds another host than"), std::string::npos) << outcome.error;
}

TEST_F(SimState, FolderWithOtherThingsIsRefused) {
  scratch.write("diary", "mine");
  const Outcome outcome = runSimulator({"--state", scratch.path.string(), "--", calls, "exit", "0"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.error.find("is not empty and holds no host"), std::string::npos) << outcome.error;
}

TEST_F(SimState, SixteenProcessesLoseNoCall) {
  const std::string folder = scratch / "kept";
  const std::string trace = scratch / "trace";
  const Outcome outcome = runSimulator(
      {"--state", folder, "--trace", trace, "--fault", "ioctl#3200:errno=EIO", "--fault",
       "ioctl#3201+:errno=EPERM", "--", "sh", "-c",
       "for i in 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16; do " + calls + " many ovgpu.0 100 2 & done; wait"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(callsIn(folder), 3200u);
  int failures = 0;
  for (const std::string& line : linesOf(outcome.out)) failures += std::stoi(line);
  EXPECT_EQ(failures, 1) << "the 3200th call alone failed";
  const std::vector<std::string> lines = linesOf(readText(trace));
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "ioctl ovgpu.0 record 67 0 ok"), 3199);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "ioctl ovgpu.0 record 67 0 EIO"), 1);
}

TEST_F(SimState, StepsGoOnInTheNextCommand) {
  const std::string host =
      scratch.write("host.json", R"({"gpus": [{"model": "B250A", "values": {"pstate": [1, 2, 3]}}]})");
  const std::string folder = scratch / "kept";
  for (const char* const expected : {"ok 0 01", "ok 0 02", "ok 0 03", "ok 0 03"}) {
    const Outcome outcome =
        runSimulator({"--host", host, "--state", folder, "--", calls, "status", "ovgpu.0", "67", "0", "20"});
    EXPECT_EQ(outcome.out.substr(0, 7), expected) << outcome.error;
  }
}

}  // namespace
