// ovgpu-sim itself: its options, its errors, how it ends.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "simulator_process.h"

namespace fs = std::filesystem;

namespace {

class SimRunner : public testing::Test {
 protected:
  const std::string calls = probe("sim_calls_probe");
  const ScratchFolder scratch;
};

TEST_F(SimRunner, StatusIsThatOfTheCommand) {
  EXPECT_EQ(runSimulator({"--", calls, "exit", "0"}).status, 0);
  EXPECT_EQ(runSimulator({"--", calls, "exit", "42"}).status, 42);
  EXPECT_EQ(runSimulator({"--", calls, "kill", std::to_string(SIGKILL)}).status, 128 + SIGKILL);
  EXPECT_EQ(runSimulator({"--", calls, "kill", std::to_string(SIGTERM)}).status, 128 + SIGTERM);
}

TEST_F(SimRunner, CommandIsToldAnotherUser) {
  EXPECT_EQ(runSimulator({"--user", "1000", "--", "id", "-u"}).out, "1000\n");
  EXPECT_EQ(runSimulator({"--", "id", "-u"}).out, std::to_string(geteuid()) + "\n");
}

TEST_F(SimRunner, CommandThatCannotBeStarted) {
  const Outcome absent = runSimulator({"--", "/no/such/program"});
  EXPECT_EQ(absent.status, 127);
  EXPECT_EQ(absent.error, "ovgpu-sim: cannot start /no/such/program: No such file or directory\n");
  const std::string plain = scratch.write("plain", "text");
  EXPECT_EQ(runSimulator({"--", plain}).status, 126);
}

TEST_F(SimRunner, OwnErrorsAreStatusTwoAndSayWhatIsWrong) {
  const struct {
    std::vector<std::string> arguments;
    const char* error;
  } mistakes[] = {
      {{}, "ovgpu-sim: no command; it stands behind \"--\"\n"},
      {{"--"}, "ovgpu-sim: no command; it stands behind \"--\"\n"},
      {{"true"}, "ovgpu-sim: the command must stand behind \"--\"; found \"true\"\n"},
      {{"--hots", "bare", "--", "true"}, "ovgpu-sim: unknown option \"--hots\"; did you mean \"--host\"?\n"},
      {{"--host"}, "ovgpu-sim: --host needs a value\n"},
      {{"--host", "a", "--host", "b", "--", "true"}, "ovgpu-sim: --host is given twice\n"},
      {{"--user", "root", "--", "true"}, "ovgpu-sim: --user needs a number; found \"root\"\n"},
      {{"--tier", "kernel", "--", "true"},
       "ovgpu-sim: --tier must be preload or seccomp; found \"kernel\"\n"},
      {{"--fault", "ioctl:errno=X", "--", "true"},
       "ovgpu-sim: fault \"ioctl:errno=X\": unknown errno \"X\"; one such as EIO is expected\n"},
      {{"--trace", "/no/such/folder/trace", "--", "true"},
       "libovgpu_sim.so: cannot write the trace: /no/such/folder/trace; start the program with ovgpu-sim\n"},
  };
  for (const auto& row : mistakes) {
    const Outcome outcome = runSimulator(row.arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error, row.error);
    EXPECT_EQ(outcome.out, "");
  }
}

TEST_F(SimRunner, BadDescriptionNamesFileKeyAndExpectation) {
  const std::string host = scratch.write("bad.json", R"({"gpus": [{"model": "B250A", "numa_node": "x"}]})");
  const Outcome outcome = runSimulator({"--host", host, "--", "true"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "ovgpu-sim: " + host + ": gpus[0].numa_node: expected a NUMA node, or -1; found \"x\"\n");
}

TEST_F(SimRunner, HostsAndHelpAreListed) {
  const Outcome hosts = runSimulator({"--list-hosts"});
  EXPECT_EQ(hosts.status, 0);
  EXPECT_NE(hosts.out.find("\nbare "), std::string::npos) << hosts.out;
  const Outcome help = runSimulator({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("--fault SPEC"), std::string::npos);
  EXPECT_NE(help.out.find("TARGET[(SELECTION)][#WHEN]:EFFECT"), std::string::npos);
}

TEST_F(SimRunner, HostsOfTheUserComeFirst) {
  scratch.write("bare.json", R"({"description": "mine", "driver_version": "8.8.8", "gpus": []})");
  setenv("OVGPU_SIM_HOSTS", scratch.path.c_str(), 1);
  const Outcome outcome = runSimulator({"--", calls, "cat", "/proc/driver/vela/version"});
  unsetenv("OVGPU_SIM_HOSTS");
  EXPECT_EQ(outcome.out, "package version:8.8.8\n") << outcome.error;
}

// The simulator as it is, but with another library to preload.
void copyWithLibrary(const fs::path& to, const std::string& library) {
  for (const char* const part : {"ovgpu-sim", "ovgpu-sim-launch"}) {
    fs::copy_file(fs::path(SIM_FOLDER) / part, to / part);
  }
  for (const char* const part : {"hosts", "stubs"}) {
    fs::create_directory_symlink(fs::canonical(fs::path(SIM_FOLDER) / part), to / part);
  }
  std::ofstream(to / "libovgpu_sim.so") << library;
}

TEST_F(SimRunner, CommandIsNotStartedWhenTheHostIsNotSeen) {
  copyWithLibrary(scratch.path, "not a library\n");
  const std::string witness = scratch / "witness";
  const Outcome outcome = runSimulator({"--", "touch", witness}, scratch.path.string());
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.error.find("the simulated host is not seen through libovgpu_sim.so"), std::string::npos)
      << outcome.error;
  EXPECT_FALSE(fs::exists(witness));
}

TEST_F(SimRunner, StaticProgramIsRefused) {
  const std::string program = probe("sim_static_probe");
  const Outcome outcome = runSimulator({"--", program});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "ovgpu-sim: " + program + " is linked statically: the simulated host cannot be shown to it\n");
}

TEST_F(SimRunner, PrivateFolderGoesWithTheRun) {
  setenv("TMPDIR", scratch.path.c_str(), 1);
  EXPECT_EQ(runSimulator({"--", calls, "exit", "0"}).status, 0);
  EXPECT_EQ(runSimulator({"--host", "none", "--", calls, "kill", std::to_string(SIGKILL)}).status,
            128 + SIGKILL);
  unsetenv("TMPDIR");
  EXPECT_TRUE(fs::is_empty(scratch.path));
}

TEST_F(SimRunner, TreeMayLieBehindALink) {
  fs::create_directory(scratch.path / "real");
  fs::create_directory_symlink(scratch.path / "real", scratch.path / "link");
  setenv("TMPDIR", (scratch / "link").c_str(), 1);
  const Outcome outcome = runSimulator({"--", probe("sim_files_probe")});
  unsetenv("TMPDIR");
  EXPECT_EQ(outcome.status, 0) << outcome.out;
}

TEST_F(SimRunner, LibraryWithoutARunnerEndsTheProgram) {
  const Outcome outcome =
      runSimulator({"--", "env", "-u", "OVGPU_SIM_ROOT", "cat", "/proc/driver/vela/version"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error, "libovgpu_sim.so: OVGPU_SIM_ROOT is not set; start the program with ovgpu-sim\n");
}

}  // namespace
