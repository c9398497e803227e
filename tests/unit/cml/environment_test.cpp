#include "linux/environment.h"

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <optional>

#include "host_tree.h"
#include "linux/fs_helper.h"

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;

constexpr const char* kModeFile = "/sys/module/ovgpu/parameters/ovgpu_driver_mode";
constexpr const char* kVersionFile = "/proc/driver/vela/version";

class EnvironmentTest : public tolk_test::HostTree {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(HostTree::SetUp());
    formerPath_ = ::getenv("PATH");
    remove("/bin");
    packageTool("dpkg", "exit 127");
    packageTool("rpm", "exit 127");
    ::setenv("PATH", (behind("/bin") + ":" + formerPath_).c_str(), 1);
  }
  void TearDown() override { ::setenv("PATH", formerPath_.c_str(), 1); }

  /// A package manager of the test's own, ahead of the machine's.
  void packageTool(const std::string& name, const std::string& script) const {
    file("/bin/" + name, "#!/bin/sh\n" + script + "\n");
    ASSERT_EQ(::chmod(behind("/bin/" + name).c_str(), 0755), 0);
  }

  void cgroupMount(const std::string& type) const {
    // The reader takes a long line in pieces; the second one must not pass for a line of its own.
    std::string overlay = "overlay / overlay rw,lowerdir=";
    overlay.resize(4095, 'x');
    overlay += "x /sys/fs/cgroup lie rw 0 0\n";
    file("/proc/mounts", "proc /proc proc rw 0 0\n" + overlay + type + " /sys/fs/cgroup " + type +
                             " rw,nosuid 0 0\nlate /sys/fs/cgroup tmpfs rw 0 0\n");
  }

  Environment environment_;
  std::string formerPath_;
};

TEST_F(EnvironmentTest, DriverModeFollowsTheText) {
  const std::pair<const char*, DriverMode> rows[] = {
      {"-1\n", DriverMode::kBareHost}, {"0\n", DriverMode::kVirtualisationHost},
      {" 1\n", DriverMode::kGuest},    {"2\n", DriverMode::kOther},
      {"01\n", DriverMode::kOther},    {"", DriverMode::kOther},
  };
  for (const auto& [text, expected] : rows) {
    file(kModeFile, text);
    const auto mode = environment_.getDriverMode();
    EXPECT_TRUE(mode.ok()) << text;
    EXPECT_EQ(mode.value(), expected) << text;
  }
  EXPECT_TRUE(log_.has(LogLevel::kInfo, std::string(">> get  ") + kModeFile + "  content is   1\n "));
}

TEST_F(EnvironmentTest, DriverModeWithoutItsFileIsAFailedRead) {
  const auto mode = environment_.getDriverMode();
  EXPECT_EQ(mode.state(), KelpReturn::kReadFailed);
  EXPECT_EQ(mode.value(), DriverMode::kOther);
  EXPECT_TRUE(log_.has(LogLevel::kError, std::string(">> read from  ") + kModeFile + "  failed "));
}

TEST_F(EnvironmentTest, GpuEnvironmentIsCompleteWithBothAccelerators) {
  node(0);
  file("/dev/ac_dev");
  file("/dev/npucore");
  const auto type = environment_.getGpuEnvironmentType();
  EXPECT_TRUE(type.ok());
  EXPECT_EQ(type.value(), GpuEnvType::kComplete);
}

TEST_F(EnvironmentTest, GpuEnvironmentIsPartialWithoutAnAccelerator) {
  for (const char* const missing : {"/dev/ac_dev", "/dev/npucore"}) {
    node(0);
    file("/dev/ac_dev");
    file("/dev/npucore");
    remove(missing);
    const auto type = environment_.getGpuEnvironmentType();
    EXPECT_TRUE(type.ok());
    EXPECT_EQ(type.value(), GpuEnvType::kPartial) << missing;
  }
}

TEST_F(EnvironmentTest, GpuEnvironmentLooksAtTheFirstNodeAlone) {
  node(1);
  EXPECT_EQ(environment_.getGpuEnvironmentType().state(), KelpReturn::kDriverNotLoaded);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> No ovgpu device found under  /dev "));
}

TEST_F(EnvironmentTest, UnifiedHierarchyTellsAHostByTheScopeOfItsInit) {
  cgroupMount("cgroup2");
  file("/proc/1/cgroup", "0::/init.scope\n");
  EXPECT_EQ(environment_.getEnvironmentType().value(), EnvironmentType::kHost);
  file("/proc/1/cgroup", "0::/\n");
  const auto type = environment_.getEnvironmentType();
  EXPECT_TRUE(type.ok());
  EXPECT_EQ(type.value(), EnvironmentType::kContainer);
}

TEST_F(EnvironmentTest, ContainerWordsTellAContainerOnAnyHierarchy) {
  for (const char* const fsType : {"cgroup2", "cgroup", "tmpfs"}) {
    cgroupMount(fsType);
    for (const char* const word : {"docker", "kubepods", "lxc"}) {
      file("/proc/1/cgroup", std::string("1:name=systemd:/") + word + "/0a1b\n0::/init.scope\n");
      EXPECT_EQ(environment_.getEnvironmentType().value(), EnvironmentType::kContainer) << fsType << word;
    }
  }
}

TEST_F(EnvironmentTest, OldHierarchyWithoutContainerWordsIsAHost) {
  cgroupMount("tmpfs");
  file("/proc/1/cgroup", "12:cpu:/\n");
  const auto type = environment_.getEnvironmentType();
  EXPECT_TRUE(type.ok());
  EXPECT_EQ(type.value(), EnvironmentType::kHost);
}

TEST_F(EnvironmentTest, ControlGroupThatCannotBeReadIsAFailedRead) {
  cgroupMount("cgroup2");
  link("/proc/1/cgroup", "/proc/1/nowhere");
  EXPECT_EQ(environment_.getEnvironmentType().state(), KelpReturn::kReadFailed);
}

TEST_F(EnvironmentTest, FileSystemTypeIsThatOfTheFirstExactMount) {
  cgroupMount("cgroup2");
  EXPECT_EQ(FsHelper::getFileSystemType("/sys/fs/cgroup"), "cgroup2");
  EXPECT_EQ(FsHelper::getFileSystemType("/proc"), "proc");
  EXPECT_TRUE(log_.lines.empty());
  EXPECT_EQ(FsHelper::getFileSystemType("/sys/fs"), "unknown");
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> error: can't find  /sys/fs "));
}

TEST_F(EnvironmentTest, FileSystemTypeWithoutMountsIsUnknown) {
  link("/proc/mounts", "/proc/nowhere");
  EXPECT_EQ(FsHelper::getFileSystemType("/proc"), "unknown");
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> ifstream error! "));
}

TEST_F(EnvironmentTest, ProcessNameIsTheFirstArgumentAsItStands) {
  file("/proc/99999901/cmdline", std::string("/opt/app/worker\0--all\0", 22));
  file("/proc/99999902/cmdline", "no end");
  file("/proc/99999903/cmdline", "");
  EXPECT_EQ(environment_.getProcessName(99999901).value(), "/opt/app/worker");
  EXPECT_EQ(environment_.getProcessName(99999902).value(), "no end");
  const auto kernelThread = environment_.getProcessName(99999903);
  EXPECT_TRUE(kernelThread.ok());
  EXPECT_EQ(kernelThread.value(), "");
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(EnvironmentTest, ProcessNameIsReadWholeUpToOneLongestArgument) {
  const std::string name(100000, 'n');
  file("/proc/99999901/cmdline", name + '\0');
  EXPECT_EQ(environment_.getProcessName(99999901).value(), name);
  file("/proc/99999902/cmdline", std::string(10 << 20, 'n'));
  EXPECT_EQ(environment_.getProcessName(99999902).value().size(), 128U << 10);
}

TEST_F(EnvironmentTest, ProcessThatIsGoneIsNotFound) {
  const auto name = environment_.getProcessName(4294967295);
  EXPECT_EQ(name.state(), KelpReturn::kNotFound);
  EXPECT_EQ(name.value(), "");
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> pid  4294967295  not found "));
}

TEST_F(EnvironmentTest, ProcessThatMayNotBeReadIsNoPermission) {
  file("/proc/99999901/cmdline", "secret");
  ASSERT_EQ(::chmod(behind("/proc/99999901/cmdline").c_str(), 0), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // Without its capabilities root is stopped by file modes like anyone else.
    __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
    __user_cap_data_struct none[2] = {};
    ::syscall(SYS_capset, &header, none);
    const auto name = environment_.getProcessName(99999901);
    const bool logged = log_.has(LogLevel::kWarn, ">> no permission to read  99999901 ");
    ::_exit(logged ? static_cast<int>(name.state()) : 100);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), static_cast<int>(KelpReturn::kNoPermission));
}

TEST_F(EnvironmentTest, VersionFileGivesTheDriverVersion) {
  file(kVersionFile, "package version:2.4.0\n");
  const auto version = environment_.getDriverVersion();
  EXPECT_TRUE(version.ok());
  EXPECT_EQ(version.value(), "2.4.0");
  ASSERT_EQ(log_.lines.size(), 1U);
  EXPECT_TRUE(log_.has(LogLevel::kInfo,
                       ">> driver package version read from file value is  package version:2.4.0\n "));
}

TEST_F(EnvironmentTest, VersionIsAllBehindTheFirstColon) {
  file(kVersionFile, "package version:  2.4.0:beta 1 \n");
  EXPECT_EQ(environment_.getDriverVersion().value(), "2.4.0:beta 1");
}

TEST_F(EnvironmentTest, VersionFileWithoutAColonLeadsToThePackages) {
  file(kVersionFile, "2.4.0");
  packageTool("dpkg", "[ \"$*\" = \"-s vela\" ] && echo 'Version: 3.1.0-1'");
  const auto version = environment_.getDriverVersion();
  EXPECT_TRUE(version.ok());
  EXPECT_EQ(version.value(), "3.1.0");
  EXPECT_TRUE(log_.has(LogLevel::kError,
                       ">> Failed to parse version, no colon found in \" 2.4.0 \", the correct format is "
                       "\"package version:x.x.x\" "));
  EXPECT_TRUE(log_.has(LogLevel::kWarn,
                       ">> get driver package version from file failed, use deb/rpm command for a try "));
}

TEST_F(EnvironmentTest, VersionFileWithNothingBehindTheColonLeadsToThePackages) {
  file(kVersionFile, "package version: \n");
  packageTool("dpkg", "echo 'Version: 3.1.0'");
  EXPECT_EQ(environment_.getDriverVersion().value(), "3.1.0");
}

TEST_F(EnvironmentTest, MissingVersionFileLeadsToThePackages) {
  packageTool("rpm", "[ \"$*\" = \"-qi vela\" ] && printf 'Name        : vela\\nVersion     : 1.3.0-8\\n'");
  EXPECT_EQ(environment_.getDriverVersion().value(), "1.3.0");
  EXPECT_TRUE(log_.has(LogLevel::kError, std::string(">> read from  ") + kVersionFile + "  failed "));
}

TEST_F(EnvironmentTest, VersionOfAPackageEndsAtAnUnderscore) {
  packageTool("dpkg", "echo 'Version: 1.3.0_beta'");
  EXPECT_EQ(environment_.getDriverVersion().value(), "1.3.0");
}

TEST_F(EnvironmentTest, PackagesAreAskedInOrderUntilOneAnswers) {
  const std::string asked = behind("/bin/asked");
  packageTool("dpkg", "echo dpkg $* >> " + asked);
  packageTool("rpm", "echo rpm $* >> " + asked +
                         "; [ \"$*\" = \"-qi vela_all-in-one\" ] && echo 'Version     : 4.0.0'");
  EXPECT_EQ(environment_.getDriverVersion().value(), "4.0.0");
  std::string lines;
  EXPECT_GT(FsHelper::read(asked, lines), 0);
  EXPECT_EQ(lines, "dpkg -s vela\nrpm -qi vela\ndpkg -s vela_all-in-one\nrpm -qi vela_all-in-one\n");
}

TEST_F(EnvironmentTest, OnlyALineThatBeginsWithTheKeyIsTheVersion) {
  packageTool("dpkg", "printf 'Config-Version: 9\\n%0199dVersion: 8\\n Version: 7\\nVersion: 6.5.4\\n' 1");
  EXPECT_EQ(environment_.getDriverVersion().value(), "6.5.4");
}

TEST_F(EnvironmentTest, VersionLineIsCutAtItsLastBlank) {
  packageTool("dpkg", "printf 'Version: 1 2.0.0 '");
  EXPECT_EQ(environment_.getDriverVersion().value(), "2.0.0");
}

TEST_F(EnvironmentTest, VersionLineWithoutAWordIsAFailure) {
  packageTool("dpkg", "printf 'Version:  '");
  EXPECT_EQ(environment_.getDriverVersion().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError,
                       ">> syncCall(SystemGetDriverVersion): Fail to parse main string -  Version:   "));
}

TEST_F(EnvironmentTest, VersionLineThatBeginsWithASeparatorIsAFailure) {
  packageTool("dpkg", "echo 'Version: -8'");
  EXPECT_EQ(environment_.getDriverVersion().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError,
                       ">> syncCall(SystemGetDriverVersion): Fail to parse version string -  -8\n "));
}

TEST_F(EnvironmentTest, WithoutAFileAndAPackageThereIsNoVersion) {
  const auto version = environment_.getDriverVersion();
  EXPECT_EQ(version.state(), KelpReturn::kFailure);
  EXPECT_EQ(version.value(), "");
}

}  // namespace
}  // namespace kelp::linux_
