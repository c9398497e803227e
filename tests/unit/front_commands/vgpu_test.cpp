#include <sys/resource.h>

#include <nlohmann/json.hpp>

#include "command_access/vgpu_command_access.h"
#include "command_access/vgpu_support_command_access.h"
#include "command_fixture.h"
#include "command_output/vgpu_output.h"

namespace tolk {
namespace {

using testing::Contains;
using testing::Each;
using testing::HasSubstr;
using testing::Not;
using tolk_test::device;
using tolk_test::fakeLumo;

class VgpuTest : public tolk_test::CommandFixture {
 protected:
  void SetUp() override {
    CommandFixture::SetUp();
    fakeLumo().setList("lumoDeviceCountActiveVirtDevices", "lumoDeviceGetActiveVirtDeviceUuids",
                       std::vector<std::string>{"c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71"});
    fakeLumo().set("lumoDeviceInitVirtDevice", device(7));
    fakeLumo().setList(
        "lumoDeviceCountSupportedVirtTypes", "lumoDeviceGetSupportedVirtTypes",
        std::vector<LumoVirtType>{{"11", "vfio-pci", "OVT B230-2Q", 4096, 2160, 2, 4, 2048, 8, 1}});
  }

  /// The command that a form leads to.
  static std::shared_ptr<Step> form(const char* option, ParsedOptions options = {}) {
    options["vgpu"];
    options[option];
    const auto command = VgpuCommandAccess(std::move(options)).work();
    EXPECT_TRUE(command);
    EXPECT_FALSE(std::dynamic_pointer_cast<CommandError>(command));
    return command;
  }
};

constexpr const char* kForms[] = {"-c", "-s", "-es", "-ds", "-u", "-q"};

TEST_F(VgpuTest, NoFormAndSeveralFormsNeverOpenTheLibrary) {
  expectError(VgpuCommandAccess(ParsedOptions{{"vgpu", {}}}).work(), "Error: not support this command",
              ExitCode::kUnsupported);
  for (const auto* one : kForms) {
    for (const auto* other : kForms) {
      if (one == other) continue;
      expectError(VgpuCommandAccess(ParsedOptions{{"vgpu", {}}, {one, {}}, {other, {}}}).work(),
                  "Error: input wrong option combination", ExitCode::kUnsupported);
    }
  }
  EXPECT_TRUE(fakeLumo().calls.empty());
}

TEST_F(VgpuTest, FailuresOfTheStart) {
  for (const auto* option : kForms) {
    fakeLumo().fail("lumoLibraryInit", {LUMO_RETURN_DRIVER_NOT_LOADED});
    expectError(form(option)->work(), "Error: failed to load driver.", ExitCode::kDriverNotLoaded);
    fakeLumo().fail("lumoLibraryInit", {LUMO_RETURN_UNKNOWN_ERROR});
    expectError(form(option)->work(), "Error: failed to initialize orvane-tolk.",
                ExitCode::kLibraryStartFailed);
    fakeLumo().fail("lumoLibraryCountDevice", {LUMO_RETURN_UNKNOWN_ERROR});
    expectError(form(option)->work(), "Error: failed to get the number of GPU device",
                ExitCode::kEnumerationFailed);
    fakeLumo().fail("lumoLibraryInitDeviceByIndex", {LUMO_RETURN_NOT_FOUND});
    expectError(form(option, {{"-i", {"0"}}})->work(),
                "Error: failed to find the specified GPU device, index = 0", ExitCode::kBadArgument);
    fakeLumo().fail("lumoLibraryInitDeviceByIndex", {LUMO_RETURN_NOT_FOUND});
    expectError(form(option)->work(), "Error: the requested operation is not available on target device",
                ExitCode::kUnsupported);
    fakeLumo().fail("lumoDeviceGetProperty", {LUMO_RETURN_UNKNOWN_ERROR});
    expectError(form(option)->work(), "Error: the requested operation is not available on target device",
                ExitCode::kUnsupported);
  }
}

TEST_F(VgpuTest, LibraryHasEndedWhenTheOutputIsThere) {
  for (const auto* option : kForms) {
    const auto command = form(option);
    fakeLumo().calls.clear();
    ASSERT_TRUE(command->work()) << option;
    EXPECT_EQ(fakeLumo().timesCalled("lumoLibraryShutDown"), 1) << option;
  }
}

TEST_F(VgpuTest, VgpuIsAskedNeitherForItsNameNorForItsIndex) {
  for (const auto* option : kForms) ASSERT_TRUE(form(option)->work()) << option;
  EXPECT_THAT(fakeLumo().lines, Contains("lumoGpuGetGuestUtilization(gpu 0)"));
  EXPECT_THAT(fakeLumo().lines, Each(Not(HasSubstr("lumoDeviceGetName("))));
  EXPECT_THAT(fakeLumo().lines, Each(Not(HasSubstr("lumoDeviceGetIndex("))));
}

TEST_F(VgpuTest, MayOpenAsManyFilesAsTheProcessCanAllowItself) {
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  for (const auto* option : kForms) {
    const rlimit low{.rlim_cur = 64, .rlim_max = before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &low), 0);
    form(option)->work();
    rlimit now{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &now), 0);
    EXPECT_EQ(now.rlim_cur, before.rlim_max) << option;
  }
  EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
}

TEST_F(VgpuTest, TypeOfWhichTheMostIsNotKnownHasNoDescription) {
  fakeLumo().fail("lumoDeviceCountMaxVirtDevices", {LUMO_RETURN_NOT_FOUND});
  EXPECT_THAT(printedBy<VgpuSupportCommandAccess>(),
              HasSubstr("        Description                               :  N/A\n"));
  EXPECT_THAT(log_.of('E'), Contains(HasSubstr(">> can not get max instance of vgpu, ret =  7 ")));
}

TEST(VgpuKeys, ParagraphsAreToldByWhatStandsBehindABlank) {
  EXPECT_TRUE(hasVgpuUuid("    UUID c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71"));
  EXPECT_TRUE(hasVgpuUuid("    UUID C3d9zzzz-7f40-4b6c-9d15-2e8a0b4f6c71 and more"));
  EXPECT_FALSE(hasVgpuUuid("c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71"));
  EXPECT_FALSE(hasVgpuUuid("    UUID c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c7"));
  EXPECT_FALSE(hasVgpuUuid("    UUID c3d9a1e2_7f40-4b6c-9d15-2e8a0b4f6c71"));
  EXPECT_TRUE(hasNumber("GPU 0"));
  EXPECT_TRUE(hasNumber("    11"));
  EXPECT_FALSE(hasNumber("11"));
  EXPECT_FALSE(hasNumber("        ID"));
  EXPECT_FALSE(hasNumber(" "));
}

}  // namespace
}  // namespace tolk
