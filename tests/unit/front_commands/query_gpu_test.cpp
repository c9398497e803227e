#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "command_access/query_gpu_command_access.h"
#include "command_error.h"
#include "command_output/query_gpu_output.h"
#include "fake_lumo.h"
#include "front_log_capture.h"
#include "query_gpu_fields.h"
#include "unit/front/thread_refusal.h"

namespace tolk {
namespace {

using Json = nlohmann::ordered_json;
using testing::Contains;
using testing::MatchesRegex;
using tolk_test::fakeLumo;
using tolk_test::FrontLogCapture;

class QueryGpuTest : public testing::Test {
 protected:
  void SetUp() override { fakeLumo() = {}; }

  static std::shared_ptr<Step> run(const std::string& fields, ParsedOptions options = {}) {
    options["--query-gpu"] = {fields};
    options["--format"] = {"noheader"};
    QueryGpuCommandAccess command(std::move(options));
    return command.work();
  }

  /// What a run prints, without a header.
  static std::string printed(const std::string& fields, ParsedOptions options = {}) {
    const auto output = run(fields, std::move(options));
    EXPECT_TRUE(std::dynamic_pointer_cast<QueryGpuOutput>(output));
    if (!output) return {};
    std::ostringstream text;
    auto* const old = std::cout.rdbuf(text.rdbuf());
    EXPECT_EQ(output->work(), nullptr);
    std::cout.rdbuf(old);
    return text.str();
  }

  static void expectError(const std::shared_ptr<Step>& step, const std::string& message, ExitCode code) {
    const auto error = std::dynamic_pointer_cast<CommandError>(step);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->message, message);
    EXPECT_EQ(error->code, code);
  }

  /// Devices that tell their index.
  static void setDevices(unsigned count) {
    fakeLumo().set("lumoLibraryCountDevice", count);
    for (unsigned index = 0; index < count; ++index) {
      const auto number = std::to_string(index);
      fakeLumo().set("lumoLibraryInitDeviceByIndex(library 0, " + number + ")", tolk_test::device(index));
      fakeLumo().set("lumoDeviceGetIndex(device " + number + ")", index);
    }
  }

  FrontLogCapture log_;
};

TEST_F(QueryGpuTest, UnknownFieldEndsTheCommandBeforeAnyDeviceIsTouched) {
  expectError(run("name,foo,bar"), "Field \"foo\" is not a valid field to query.", ExitCode::kUnsupported);
  EXPECT_EQ(fakeLumo().timesCalled("lumoLibraryInit"), 1);
  EXPECT_EQ(fakeLumo().timesCalled("lumoLibraryCountDevice"), 0);
  EXPECT_EQ(fakeLumo().timesCalled("lumoLibraryInitDeviceByIndex"), 0);
}

TEST_F(QueryGpuTest, LongUnknownFieldIsNotCut) {
  const std::string name(3000, 'x');
  expectError(run(name), "Field \"" + name + "\" is not a valid field to query.", ExitCode::kUnsupported);
}

TEST_F(QueryGpuTest, RepeatedNamesAreReadOnce) {
  setDevices(2);
  EXPECT_EQ(printed("name,name,index"), "OVT B240, 0\nOVT B240, 1\n");
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceGetName"), 2);
}

TEST_F(QueryGpuTest, DevicesThatCannotBeCountedAreNone) {
  fakeLumo().fail("lumoLibraryCountDevice", {LUMO_RETURN_UNKNOWN_ERROR});
  expectError(run("index"), "Error: no devices were found.", ExitCode::kNoDevice);
  EXPECT_THAT(log_.of('E'), Contains("getTargetDevices >> lumoLibraryCountDevice() failed, ret =  999 "));
}

TEST_F(QueryGpuTest, DeviceWithoutAnAdaptorIsLeftOut) {
  setDevices(3);
  fakeLumo().fail("lumoDeviceInitVpu(device 1)", {LUMO_RETURN_UNKNOWN_ERROR});
  EXPECT_EQ(printed("index,count"), "0, 3\n2, 3\n");
  EXPECT_THAT(log_.of('E'), Contains("getTargetDevices >> devicee index  1  get gandle failed "));
}

TEST_F(QueryGpuTest, DevicesWithoutAnyAdaptorAreNone) {
  fakeLumo().fail("lumoLibraryInitDeviceByIndex", {LUMO_RETURN_NOT_FOUND});
  expectError(run("index"), "Error: no devices were found.", ExitCode::kNoDevice);
}

TEST_F(QueryGpuTest, IndicesThatAreNotThereAreIgnored) {
  setDevices(2);
  EXPECT_EQ(printed("index", {{"-i", {"0,99"}}}), "0\n");
  expectError(run("index", {{"-i", {"99"}}}), "Error: no devices were found.", ExitCode::kNoDevice);
}

TEST_F(QueryGpuTest, IndicesAreReadInAscendingOrder) {
  setDevices(3);
  EXPECT_EQ(printed("index", {{"-i", {"2,0,2"}}}), "0\n2\n");
}

TEST_F(QueryGpuTest, IndexBeyond32BitsIsRefused) {
  setDevices(1);
  for (const char* index : {"4294967296", "0,4294967296", "99999999999999999999", "x", ""}) {
    expectError(run("index", {{"-i", {index}}}), "stol", ExitCode::kBadArgument);
  }
  expectError(run("index", {{"-i", {"4294967295"}}}), "Error: no devices were found.", ExitCode::kNoDevice);
}

TEST_F(QueryGpuTest, CommandThatHasReadItsDevicesKeepsNoneOpen) {
  QueryGpuCommandAccess command(ParsedOptions{{"--query-gpu", {"index"}}});
  for (int runs = 1; runs <= 3; ++runs) {
    EXPECT_TRUE(std::dynamic_pointer_cast<QueryGpuOutput>(command.work()));
    EXPECT_EQ(fakeLumo().timesCalled("lumoLibraryInit"), runs);
    EXPECT_EQ(fakeLumo().timesCalled("lumoLibraryShutDown"), runs);
  }
}

TEST_F(QueryGpuTest, WithoutThreadsTheDevicesAreReadInTurn) {
  setDevices(3);
  const tolk_test::ThreadRefusal refusal;
  EXPECT_EQ(printed("index,name"), "0, OVT B240\n1, OVT B240\n2, OVT B240\n");
}

TEST_F(QueryGpuTest, EachDeviceIsReadOnAThreadOfItsOwn) {
  setDevices(2);
  fakeLumo().fail("lumoDeviceGetPowerUsage", {LUMO_RETURN_BUSY, LUMO_RETURN_BUSY, LUMO_RETURN_BUSY});
  printed("power.draw");
  std::vector<std::string> lines;
  for (const auto& line : log_.of('E')) {
    if (line.find(" get current power failed") != std::string::npos) lines.push_back(line);
  }
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_NE(lines[0], lines[1]) << "the thread's number stands in the line";
}

struct FailureRow {
  const char* field;
  const char* call;
  const char* words;
};

TEST_F(QueryGpuTest, ValueThatCannotBeReadIsNoneAndIsLogged) {
  constexpr FailureRow kRows[] = {
      {"driver_version", "lumoSystemGetDriverVersion", "get driver version failed, errorcode is  11"},
      {"name", "lumoDeviceGetName", "get device name failed, errorcode is  11"},
      {"uuid", "lumoDeviceGetUUID", "get device uuid failed, errorcode is  11"},
      {"index", "lumoDeviceGetIndex", "get device index failed, errorcode is  11"},
      {"memory.total", "lumoMemoryGetTotal", "get total memory failed, errorcode is  11"},
      {"memory.used", "lumoMemoryGetUsed", "get used memory failed, errorcode is  11"},
      {"memory.free", "lumoMemoryGetTotal", "get total memory error code  11  used memory error code  0"},
      {"memory.free", "lumoMemoryGetUsed", "get total memory error code  0  used memory error code  11"},
      {"utilization.gpu", "lumoGpuGetUtilization", "get gpu utilization failed, errorcode is  11"},
      {"utilization.memory", "lumoMemoryGetUtilization", "get memory utilization failed, errorcode is  11"},
      {"temperature.gpu", "lumoGpuGetTemperature", "get gpu temperature failed, errorcode is  11"},
      {"power.draw", "lumoDeviceGetPowerUsage", "get current power failed, errorcode is  11"},
      {"clocks.current.gpu", "lumoGpuGetClock", "get gpu clock failed, errorcode is  11"},
      {"clocks.current.memory", "lumoMemoryGetClock", "get memory clock failed, errorcode is  11"},
      {"clocks.current.vpu", "lumoVpuGetClock", "get vpu clock failed, errorcode is  11"},
  };
  for (const auto& row : kRows) {
    fakeLumo() = {};
    log_.lines.clear();
    fakeLumo().fail(row.call, {LUMO_RETURN_BUSY});
    EXPECT_EQ(printed(row.field), "N/A\n") << row.field;
    EXPECT_THAT(log_.of('E'),
                Contains(MatchesRegex(std::string("\\w+ >> thread  [0-9]+  ") + row.words + " ")))
        << row.field;
  }
}

TEST_F(QueryGpuTest, DriverVersionThatCannotBeReadIsLoggedByItsCallToo) {
  fakeLumo().fail("lumoSystemGetDriverVersion", {LUMO_RETURN_BUSY});
  EXPECT_EQ(printed("driver_version"), "N/A\n");
  EXPECT_THAT(log_.of('E'), Contains("getDriverVersion >> lumoSystemGetDriverVersion() failed, ret =  11 "));
}

TEST_F(QueryGpuTest, ValuesHaveTheirUnits) {
  constexpr unsigned long long kMibytes = 1ull << 20;
  fakeLumo().set("lumoMemoryGetTotal", 4096 * kMibytes);
  fakeLumo().set("lumoMemoryGetUsed", 97 * kMibytes - 1);
  fakeLumo().set("lumoGpuGetUtilization", 7u);
  fakeLumo().set("lumoMemoryGetUtilization", 8u);
  fakeLumo().set("lumoGpuGetTemperature", -9);
  fakeLumo().set("lumoDeviceGetPowerUsage", 42127u);
  fakeLumo().set("lumoGpuGetClock", 1u);
  fakeLumo().set("lumoMemoryGetClock", 2u);
  fakeLumo().set("lumoVpuGetClock", 4294967295u);
  EXPECT_EQ(
      printed("memory.total,memory.used,memory.free,utilization.gpu,utilization.memory,temperature.gpu,"
              "power.draw,clocks.current.gpu,clocks.current.memory,clocks.current.vpu"),
      "4096 [MiB], 96 [MiB], 3999 [MiB], 7 [%], 8 [%], -9, 42.13 [W], 1 [MHz], 2 [MHz], 4294967295 [MHz]\n");
}

TEST_F(QueryGpuTest, NothingIsFreeWhereMoreIsUsedThanThereIs) {
  fakeLumo().set("lumoMemoryGetTotal", 1ull << 30);
  fakeLumo().set("lumoMemoryGetUsed", 1ull << 31);
  EXPECT_EQ(printed("memory.free"), "0 [MiB]\n");
}

TEST_F(QueryGpuTest, TimestampHasMilliseconds) {
  EXPECT_THAT(printed("timestamp"),
              MatchesRegex("[0-9]{4}/[0-9]{2}/[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}\n"));
}

TEST(QueryGpuOutput, ColumnNamesHaveTheUnitOfTheFirstPartThatFits) {
  EXPECT_EQ(QueryGpuOutput::headerText({"index", "memory.total", "utilization.memory", "power.draw",
                                        "clocks.current.memory", "temperature.gpu"}),
            "index, memory.total [MiB], utilization.memory [%], power.draw [W], clocks.current.memory [MHz], "
            "temperature.gpu\n");
  EXPECT_EQ(QueryGpuOutput::headerText({"clocks.memory.power.", "power.utilization.", "memory"}),
            "clocks.memory.power. [MiB], power.utilization. [%], memory\n");
}

TEST(QueryGpuOutput, ColumnNamesArePrintedOnceInAProcess) {
  const auto printed = [](bool withHeader) {
    std::ostringstream text;
    auto* const old = std::cout.rdbuf(text.rdbuf());
    QueryGpuOutput(Json::parse(R"([{"index": "0"}, {"index": "1"}])"), {"index"}, withHeader).work();
    std::cout.rdbuf(old);
    return text.str();
  };
  EXPECT_EQ(printed(false), "0\n1\n");
  EXPECT_EQ(printed(true), "index\n0\n1\n");
  EXPECT_EQ(printed(true), "0\n1\n");
}

TEST(QueryGpuOutput, MemberThatIsNoTextIsAFault) {
  EXPECT_THROW(QueryGpuOutput(Json::parse(R"([{"index": 0}])"), {"index"}, false).work(),
               nlohmann::json::type_error);
}

TEST(QueryGpuFields, AreFoundByTheirWholeName) {
  for (const auto& field : queryGpuFields()) EXPECT_EQ(findQueryGpuField(field.name), &field);
  EXPECT_EQ(queryGpuFields().size(), 16u);
  for (const char* name : {"", "memory", "Name", "name ", "index.gpu"}) {
    EXPECT_EQ(findQueryGpuField(name), nullptr) << name;
  }
}

}  // namespace
}  // namespace tolk
