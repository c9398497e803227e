#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <sstream>

#include "command_access/query_command_access.h"
#include "command_error.h"
#include "command_output/query_output.h"
#include "driver_mode.h"
#include "fake_lumo.h"
#include "front_log_capture.h"

namespace tolk {
namespace {

using Json = nlohmann::ordered_json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using tolk_test::fakeLumo;
using tolk_test::FrontLogCapture;

constexpr const char* kNotAvailableText = "Error: the requested operation is not available on target device";
constexpr unsigned kFen2 = 0x0330;
constexpr unsigned kTor1 = 0x0410;
constexpr unsigned kWold = 0x010e;

/// A device that answers everything with 0 unless a test says otherwise.
class QueryCommandTest : public testing::Test {
 protected:
  void SetUp() override {
    fakeLumo() = {};
    setDriverMode(DriverMode::kBareHost);
    setDevice(kFen2);
  }
  void TearDown() override { setDriverMode(DriverMode::kOther); }

  static LumoPciInfo pciInfo(unsigned deviceId) {
    LumoPciInfo info{};
    std::strcpy(info.sbdf, "0000:01:00.0");
    info.deviceId = deviceId;
    return info;
  }

  static void setDevice(unsigned deviceId) { fakeLumo().set("lumoDeviceGetPciInfo", pciInfo(deviceId)); }

  static void failAlways(const std::string& call, LumoReturn ret = LUMO_RETURN_NOT_FOUND) {
    fakeLumo().fail(call, std::deque<LumoReturn>(64, ret));
  }

  static std::shared_ptr<Step> run(const std::string& sections, ParsedOptions options = {}) {
    options["-q"] = {};
    options["--json"] = {};
    if (!sections.empty()) options["-d"] = {sections};
    QueryCommandAccess command(std::move(options));
    return command.work();
  }

  static Json reportOf(const std::shared_ptr<Step>& output) {
    EXPECT_TRUE(std::dynamic_pointer_cast<QueryOutput>(output));
    if (!output) return {};
    std::ostringstream text;
    auto* const old = std::cout.rdbuf(text.rdbuf());
    EXPECT_EQ(output->work(), nullptr);
    std::cout.rdbuf(old);
    return Json::parse(text.str());
  }

  /// The one device's part of a report.
  static Json deviceOf(const std::string& sections) {
    // By its index, so that nothing asks for its type but the sections.
    const Json report = reportOf(run(sections, {{"-i", {"0"}}}));
    return report.contains("GPU") ? report.at("GPU").at(0) : Json();
  }

  static std::string row(const std::string& section, const std::string& path) {
    return deviceOf(section).at(Json::json_pointer("/" + path)).get<std::string>();
  }

  static void expectError(const std::shared_ptr<Step>& step, const std::string& message, ExitCode code) {
    const auto error = std::dynamic_pointer_cast<CommandError>(step);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->message, message);
    EXPECT_EQ(error->code, code);
  }

  FrontLogCapture log_;
};

// ---- Rows ----------------------------------------------------------------------------------------------

struct FailingRow {
  const char* section;
  const char* call;
  std::vector<const char*> paths;
  const char* line;  ///< null for a row that says nothing
  unsigned deviceId = kFen2;
};

// One row each.
// clang-format off
const FailingRow kFailingRows[] = {
    {"STATIC", "lumoDeviceGetName", {"Product Name"}, "can not get device name! error code[ 7 ] "},
    {"STATIC", "lumoDeviceGetUUID", {"GPU UUID"}, "can not get device uuid! error code[ 7 ] "},
    {"STATIC", "lumoDeviceGetSerialNumber", {"Serial Number"}, "can not get device serial number! error code[ 7 ] "},
    {"STATIC", "lumoDeviceGetProperty", {"DeviceType", "MPC Capable"}, nullptr},
    {"STATIC", "lumoDeviceGetOvBiosVersion", {"OVBios Version"}, "can not get OvBios version! error code[ 7 ] "},
    {"STATIC", "lumoDeviceGetPcieSlotInfo", {"PCI/Slot ID(Name)"}, "can not get device slot Info! error code[ 7 ] "},
    {"MEMORY", "lumoMemoryGetType", {"FB Memory Spec/Type"}, "failed to get memory type! error code[ 7 ] "},
    {"MEMORY", "lumoMemoryGetVendor", {"FB Memory Spec/Vendor"}, "failed to get memory vendor! error code[ 7 ] "},
    {"MEMORY", "lumoMemoryGetSpeed", {"FB Memory Spec/Speed", "FB Memory Spec/Transfer Rates"}, "failed to get memory speed! error code[ 7 ] "},
    {"MEMORY", "lumoMemoryGetBandwidth", {"FB Memory Spec/Bandwidth"}, "failed to get memory bandwidth! error code[ 7 ] "},
    {"MEMORY", "lumoMemoryGetBandwidth", {"FB Memory Spec/Bandwidth"}, "failed to get memory bandwidth! ", kTor1},
    {"MEMORY", "lumoMemoryGetBusWidth", {"FB Memory Spec/Bus Width"}, "failed to get memory bus width! error code[ 7 ] "},
    {"MEMORY", "lumoMemoryGetTotal", {"FB Memory Usage/Total", "FB Memory Usage/Used", "FB Memory Usage/Free"}, nullptr},
    {"MEMORY", "lumoMemoryGetUsed", {"FB Memory Usage/Total", "FB Memory Usage/Used", "FB Memory Usage/Free"}, nullptr},
    {"DISPLAY", "lumoDeviceCountDisplayInterface", {"Display Interface"}, "failed to get display interface count "},
    {"UTILIZATION", "lumoGpuGetUtilization", {"Utilization/Gpu"}, "can not get gpu utilization! error code[ 7 ] "},
    {"UTILIZATION", "lumoMemoryGetUtilization", {"Utilization/Memory"}, "can not get memory utilization! error code[ 7 ] "},
    {"UTILIZATION", "lumoVpuGetUtilization", {"Utilization/Encoder", "Utilization/Decoder"}, "can not get vpu utilization! error code[ 7 ] "},
    {"TEMPERATURE", "lumoGpuGetTemperature", {"Temperature/GPU Current Temp"}, "can not get gpu temperature! error code[ 7 ] "},
    {"POWER", "lumoDeviceGetPowerUsage", {"Power Readings/Power Draw "}, nullptr},
    {"POWER", "lumoDeviceGetEnforcedPowerLimit", {"Power Readings/Current Power Limit"}, nullptr},
    {"POWER", "lumoDeviceGetPowerLimit", {"Power Readings/Requested Power Limit"}, nullptr},
    {"POWER", "lumoDeviceGetDefaultPowerLimit", {"Power Readings/Default Power Limit"}, nullptr},
    {"POWER", "lumoDeviceGetPowerLimitConstraints", {"Power Readings/Min Power Limit", "Power Readings/Max Power Limit"}, nullptr},
    {"FAN", "lumoDeviceCountFan", {"Fan/Channel"}, nullptr},
    {"CLOCK", "lumoGpuGetClock", {"Clocks/Graphics"}, "can not get gpu clock! error code[ 7 ] "},
    {"CLOCK", "lumoMemoryGetClock", {"Clocks/Memory"}, "can not get memmory clock! error code[ 7 ] "},
    {"CLOCK", "lumoVpuGetClock", {"Clocks/Video"}, "can not get vpu clock! error code[ 7 ] "},
    {"CLOCK", "lumoGpuGetMaxClock", {"Max Clocks/Graphics"}, "can not get gpu max clock! error code[ 7 ] "},
    {"CLOCK", "lumoMemoryGetMaxClock", {"Max Clocks/Memory"}, "can not get memory max clock! error code[ 7 ] "},
    {"CLOCK", "lumoVpuGetMaxClock", {"Max Clocks/Video"}, "can not get vpu max clock! error code[ 7 ] "},
    {"VIDEO", "lumoVpuGetEncoderSessionStates", {"Encoder Stats/Active Sessions", "Encoder Stats/Average FPS"}, nullptr},
    {"VIDEO", "lumoVpuGetDecoderSessionStates", {"Decoder Stats/Active Sessions", "Decoder Stats/Average FPS"}, nullptr},
    {"PERFORMANCE", "lumoDeviceGetPerformanceState", {"Performance State"}, nullptr},
    {"THERMAL_SLOWDOWN_STATS", "lumoGpuGetThermalSlowdownStatistics", {"Thermal Slowdown Stats/Count"}, nullptr},
};
// clang-format on

std::vector<std::string> keysOf(const Json& object) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : object.items()) keys.push_back(key);
  return keys;
}

/// The paths of all rows that read "N/A".
void collectMissing(const Json& object, const std::string& path, std::vector<std::string>& missing) {
  for (const auto& [key, value] : object.items()) {
    const std::string here = path.empty() ? key : path + "/" + key;
    if (value.is_object()) {
      collectMissing(value, here, missing);
    } else if (value == "N/A" && !here.starts_with("PCI/GPU Link Info")) {
      missing.push_back(here);
    }
  }
}

TEST_F(QueryCommandTest, AValueThatCannotBeReadTakesItsOwnRowsAndNoOthers) {
  for (const auto& failing : kFailingRows) {
    SCOPED_TRACE(std::string(failing.section) + " " + failing.call);
    fakeLumo() = {};
    setDevice(failing.deviceId);
    fakeLumo().set("lumoDeviceCountDisplayInterface", 1u);
    failAlways(failing.call);
    log_.lines.clear();

    std::vector<std::string> missing;
    collectMissing(deviceOf(failing.section), "", missing);
    EXPECT_EQ(missing, std::vector<std::string>(failing.paths.begin(), failing.paths.end()));
    std::vector<std::string> told;
    for (const auto& line : log_.of('E')) {
      const bool isOfTheAdaptor = line.find("() failed, ret = ") != std::string::npos;
      const bool isOfNoFailure = line.find("device arch number is") != std::string::npos;
      if (!isOfTheAdaptor && !isOfNoFailure) told.push_back(line.substr(line.find(" >> ") + 4));
    }
    EXPECT_EQ(told,
              failing.line == nullptr ? std::vector<std::string>() : std::vector<std::string>{failing.line});
  }
}

TEST_F(QueryCommandTest, AFanWithoutASpeedKeepsItsRow) {
  fakeLumo().set("lumoDeviceCountFan", 2u);
  fakeLumo().set("lumoDeviceGetFanSpeed(device 0, 1)", 55u);
  fakeLumo().fail("lumoDeviceGetFanSpeed(device 0, 0)", {LUMO_RETURN_NOT_SUPPORTED});
  EXPECT_EQ(deviceOf("FAN").at("Fan"),
            Json({{"Channel", "2"}, {"Speed", {{"Fan0", "N/A"}, {"Fan1", "55%"}}}}));
}

TEST_F(QueryCommandTest, NoFansAreACountAlone) {
  EXPECT_EQ(deviceOf("FAN").at("Fan"), Json({{"Channel", "0"}}));
}

TEST_F(QueryCommandTest, ADisplayThatCannotBeReadKeepsItsRows) {
  fakeLumo().set("lumoDeviceCountDisplayInterface", 2u);
  fakeLumo().set("lumoDeviceGetDisplayInterfaceSpec", LumoDispIntfSpec{3, 1920, 1080, 1485, 59.94f});
  fakeLumo().fail("lumoDeviceGetDisplayInterfaceSpec(device 0, 0)", {LUMO_RETURN_NOT_FOUND});
  EXPECT_EQ(deviceOf("DISPLAY").at("Display Interface"),
            Json({{"Interface 0 Type", "N/A"},
                  {"Interface 0 Max Resolution", "N/A"},
                  {"Interface 1 Type", "HDMI"},
                  {"Interface 1 Max Resolution", "1920x1080@59.94Hz"}}));
  EXPECT_THAT(log_.of('E'),
              Contains("queryIntfInfo >> failed to get display  0 's interface specification "));
}

TEST_F(QueryCommandTest, ADeviceWithoutDisplaysHasAPlainRow) {
  EXPECT_EQ(deviceOf("DISPLAY").at("Display Interface"), "N/A");
  EXPECT_THAT(log_.of('E'), ElementsAre("queryIntfInfo >> no display interface "));
}

TEST_F(QueryCommandTest, ALinkSpeedOf25IsGeneration5AndOneOf4IsNone) {
  auto info = pciInfo(kFen2);
  info.maxSpeed = 25.0f;
  info.curSpeed = 4.0f;
  fakeLumo().set("lumoDeviceGetPciInfo", info);
  EXPECT_EQ(deviceOf("STATIC").at(Json::json_pointer("/PCI/GPU Link Info/PCIe Generation")),
            Json({{"Max", "5"}, {"Current", "N/A"}}));
}

TEST_F(QueryCommandTest, ASlotNameMayFillItsField) {
  LumoPciSlotInfo slot{7, {}};
  std::memset(slot.name, 'x', sizeof slot.name);
  fakeLumo().set("lumoDeviceGetPcieSlotInfo", slot);
  EXPECT_EQ(row("STATIC", "PCI/Slot ID(Name)"), "7(" + std::string(sizeof slot.name, 'x') + ")");
}

TEST_F(QueryCommandTest, Architecture4HasOneRowOfMemoryAndNoMaxClocks) {
  setDevice(kTor1);
  const Json device = deviceOf("MEMORY,CLOCK");
  EXPECT_EQ(device.at("FB Memory Spec"), Json({{"Bandwidth", "0GBps"}}));
  EXPECT_FALSE(device.contains("Max Clocks"));
  EXPECT_THAT(log_.of('E'), ElementsAre("queryMemorySpec >> device arch number is  4 "));
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceGetName"), 0);
}

TEST_F(QueryCommandTest, ALaterArchitectureTellsItsMemoryAndHasEcc) {
  setDevice(0x0510);
  const Json device = deviceOf("MEMORY,CLOCK,ECC");
  EXPECT_EQ(device.at("FB Memory Spec").size(), 6u);
  EXPECT_FALSE(device.contains("Max Clocks"));
  EXPECT_EQ(device.at("ECC Mode").at("EDC"), "ON");
}

TEST_F(QueryCommandTest, SomeModelsShowNoMaxClocks) {
  for (const auto* name : {"B230E", "OVT B230E", "E315", "OVT B230", "B230"}) {
    fakeLumo().set("lumoDeviceGetName", std::string(name));
    log_.lines.clear();
    EXPECT_FALSE(deviceOf("CLOCK").contains("Max Clocks")) << name;
    EXPECT_THAT(log_.of('E'),
                ElementsAre("showsMaxClocks >> " + std::string(name) + "  do not show max clocks "));
  }
  for (const auto* name : {"OVT E315", "OVT B230EX", "", "B240"}) {
    fakeLumo().set("lumoDeviceGetName", std::string(name));
    EXPECT_TRUE(deviceOf("CLOCK").contains("Max Clocks")) << name;
  }
}

TEST_F(QueryCommandTest, EccOfAnEarlierArchitectureIsNotAsked) {
  fakeLumo().set("lumoMemoryGetEccMode", 1u, 1u);
  std::vector<std::string> missing;
  collectMissing(deviceOf("ECC"), "", missing);
  EXPECT_EQ(missing.size(), 8u);
  EXPECT_EQ(fakeLumo().timesCalled("lumoMemoryGetEccMode"), 0);
}

TEST_F(QueryCommandTest, EccCountersStandInTheirOrder) {
  setDevice(kTor1);
  fakeLumo().set("lumoMemoryGetEccMode", 1u, 0u);
  fakeLumo().set("lumoMemoryGetEccErrorCounter(memory 0, 0, 1, 0)", 1ull);
  fakeLumo().set("lumoMemoryGetEccErrorCounter(memory 0, 1, 1, 0)", 2ull);
  fakeLumo().set("lumoMemoryGetEccErrorCounter(memory 0, 0, 1, 1)", 3ull);
  fakeLumo().set("lumoMemoryGetEccErrorCounter(memory 0, 1, 1, 1)", ~0ull);
  const Json device = deviceOf("ECC");
  EXPECT_EQ(device.at("ECC Mode"),
            Json({{"EDC", "ON"}, {"On-die", "ON"}, {"Inline", {{"Current", "ON"}, {"Pending", "OFF"}}}}));
  EXPECT_EQ(
      device.at(Json::json_pointer("/ECC Errors/Inline")),
      Json({{"Volatile", {{"DRAM Correctable", "1"}, {"DRAM Uncorrectable", "2"}}},
            {"Aggregate", {{"DRAM Correctable", "3"}, {"DRAM Uncorrectable", "18446744073709551615"}}}}));
}

TEST_F(QueryCommandTest, EccCountersNeedAModeThatIsOnAndAllOfThem) {
  setDevice(kTor1);
  const auto allMissing = [] {
    std::vector<std::string> missing;
    collectMissing(deviceOf("ECC").at("ECC Errors"), "", missing);
    return missing.size() == 4;
  };
  fakeLumo().set("lumoMemoryGetEccMode", 0u, 1u);
  EXPECT_TRUE(allMissing());
  EXPECT_EQ(fakeLumo().timesCalled("lumoMemoryGetEccErrorCounter"), 0);

  fakeLumo().set("lumoMemoryGetEccMode", 1u, 1u);
  EXPECT_FALSE(allMissing());
  failAlways("lumoMemoryGetEccErrorCounter(memory 0, 1, 1, 1)");
  EXPECT_TRUE(allMissing());
  fakeLumo().failures.clear();
  failAlways("lumoMemoryGetEccMode");
  EXPECT_TRUE(allMissing());
  EXPECT_EQ(row("ECC", "ECC Mode/Inline/Current"), "N/A");
  EXPECT_EQ(row("ECC", "ECC Mode/EDC"), "ON");
}

TEST_F(QueryCommandTest, RetiredPagesNeedEccThatIsOn) {
  const auto pages = [] {
    return deviceOf("PAGE_RETIREMENT").at(Json::json_pointer("/Retired Pages/Inline"));
  };
  const auto rows = [](const char* singleBit, const char* doubleBit, const char* pending) {
    return Json(
        {{"Single Bit ECC", singleBit}, {"Double Bit ECC", doubleBit}, {"Pending Page Blacklist", pending}});
  };
  fakeLumo().set("lumoMemoryGetRetiredPagesCount", 3u, 4u);
  fakeLumo().set("lumoMemoryGetRetiredPagesPendingStatus", 1u);
  EXPECT_EQ(pages(), rows("N/A", "N/A", "N/A"));
  EXPECT_EQ(fakeLumo().timesCalled("lumoMemoryGetRetiredPagesCount"), 0);

  fakeLumo().set("lumoMemoryGetEccMode", 1u, 1u);
  EXPECT_EQ(pages(), rows("3", "4", "YES"));
  fakeLumo().set("lumoMemoryGetRetiredPagesPendingStatus", 0u);
  EXPECT_EQ(pages(), rows("3", "4", "NO"));
  failAlways("lumoMemoryGetRetiredPagesPendingStatus");
  EXPECT_EQ(pages(), rows("3", "4", "N/A"));
  fakeLumo().failures.clear();
  failAlways("lumoMemoryGetRetiredPagesCount");
  EXPECT_EQ(pages(), rows("N/A", "N/A", "N/A"));
  fakeLumo().failures.clear();
  failAlways("lumoMemoryGetEccMode");
  EXPECT_EQ(pages(), rows("N/A", "N/A", "N/A"));
}

std::vector<unsigned> sessionStates(std::vector<unsigned> states) {
  states.resize(576, LUMO_NOT_AVAILABLE);
  return states;
}

TEST_F(QueryCommandTest, AverageRateIsOfActiveSessionsAndCut) {
  LumoVpuSessionMetrics metrics{};
  fakeLumo().set("lumoVpuGetEncoderSessionStates", sessionStates({1, 0, 1, 2}));
  metrics.fps = 0xffffffff;
  fakeLumo().set("lumoVpuGetEncoderSessionMetrics(vpu 0, 0)", metrics);
  metrics.fps = 0xfffffffe;
  fakeLumo().set("lumoVpuGetEncoderSessionMetrics(vpu 0, 2)", metrics);
  const Json device = deviceOf("VIDEO");
  EXPECT_EQ(device.at("Encoder Stats"), Json({{"Active Sessions", "2"}, {"Average FPS", "4294967294"}}));
  EXPECT_EQ(device.at("Decoder Stats"), Json({{"Active Sessions", "0"}, {"Average FPS", "0"}}));
  EXPECT_EQ(fakeLumo().timesCalled("lumoVpuGetEncoderSessionMetrics"), 2);
}

TEST_F(QueryCommandTest, ASessionWhoseRateCannotBeReadCountsWithNone) {
  LumoVpuSessionMetrics metrics{};
  metrics.fps = 60;
  fakeLumo().set("lumoVpuGetDecoderSessionStates", sessionStates({1, 1}));
  fakeLumo().set("lumoVpuGetDecoderSessionMetrics", metrics);
  fakeLumo().fail("lumoVpuGetDecoderSessionMetrics(vpu 0, 1)", {LUMO_RETURN_NOT_FOUND});
  EXPECT_EQ(deviceOf("VIDEO").at("Decoder Stats"), Json({{"Active Sessions", "2"}, {"Average FPS", "30"}}));
}

TEST_F(QueryCommandTest, SessionsOfAVirtualisationHostAreNotAsked) {
  setDriverMode(DriverMode::kVirtualisationHost);
  const Json missing = {{"Active Sessions", "N/A"}, {"Average FPS", "N/A"}};
  const Json device = deviceOf("VIDEO");
  EXPECT_EQ(device.at("Encoder Stats"), missing);
  EXPECT_EQ(device.at("Decoder Stats"), missing);
  EXPECT_EQ(fakeLumo().timesCalled("lumoVpuGetEncoderSessionStates"), 0);
  EXPECT_EQ(fakeLumo().timesCalled("lumoVpuGetDecoderSessionStates"), 0);
}

TEST_F(QueryCommandTest, MoreMemoryInUseThanThereIsWrapsAround) {
  fakeLumo().set("lumoMemoryGetTotal", 1ull << 20);
  fakeLumo().set("lumoMemoryGetUsed", 2ull << 20);
  EXPECT_EQ(row("MEMORY", "FB Memory Usage/Free"), "17592186044415MiB");
}

TEST_F(QueryCommandTest, OneCallServesTwoRows) {
  fakeLumo().set("lumoVpuGetUtilization", LumoVpuUtilization{7, 10, 20});
  fakeLumo().set("lumoMemoryGetSpeed", 16000u);
  fakeLumo().set("lumoDeviceGetPowerLimitConstraints", 100000u, 300500u);
  const Json device = deviceOf("UTILIZATION,MEMORY,POWER");
  EXPECT_EQ(device.at("Utilization").at("Encoder"), "10%");
  EXPECT_EQ(device.at("Utilization").at("Decoder"), "20%");
  EXPECT_EQ(device.at("FB Memory Spec").at("Speed"), "16000Mbps");
  EXPECT_EQ(device.at("FB Memory Spec").at("Transfer Rates"), "16000MT/s");
  EXPECT_EQ(device.at("Power Readings").at("Min Power Limit"), "100.00W");
  EXPECT_EQ(device.at("Power Readings").at("Max Power Limit"), "300.50W");
  for (const auto* call :
       {"lumoVpuGetUtilization", "lumoMemoryGetSpeed", "lumoDeviceGetPowerLimitConstraints"}) {
    EXPECT_EQ(fakeLumo().timesCalled(call), 1) << call;
  }
}

TEST_F(QueryCommandTest, EverySectionAsksForIndexAndPciRecordOnce) {
  EXPECT_TRUE(run(""));
  // Memory is two sections under one name.
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceGetIndex"), 14);
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceGetPciInfo"), 14);
}

// ---- Sections ------------------------------------------------------------------------------------------

TEST_F(QueryCommandTest, SectionsStandInTheirOrder) {
  setDevice(kWold);
  EXPECT_THAT(keysOf(deviceOf("")),
              ElementsAre("Index", "Product Name", "Product Brand", "GPU UUID", "Serial Number", "DeviceType",
                          "MPC Capable", "OVBios Version", "PCI", "FB Memory Spec", "FB Memory Usage",
                          "Display Interface", "Utilization", "Temperature", "Power Readings", "Fan",
                          "Clocks", "Max Clocks", "Encoder Stats", "Decoder Stats", "ECC Mode", "ECC Errors",
                          "Retired Pages", "Performance State", "Thermal Slowdown Stats"));
}

TEST_F(QueryCommandTest, AGuestHasThreeSections) {
  setDriverMode(DriverMode::kGuest);
  EXPECT_THAT(keysOf(deviceOf("")), ElementsAre("Index", "Product Name", "Product Brand", "DeviceType", "PCI",
                                                "FB Memory Usage", "Utilization"));
}

TEST_F(QueryCommandTest, AGuestHidesTheRowsOfTheBoardThoughTheyAreAskedFor) {
  setDriverMode(DriverMode::kGuest);
  const Json device = deviceOf("MEMORY,STATIC");
  for (const auto* key : {"GPU UUID", "Serial Number", "MPC Capable", "OVBios Version", "FB Memory Spec"}) {
    EXPECT_FALSE(device.contains(key)) << key;
  }
  EXPECT_FALSE(device.at("PCI").contains("Slot ID(Name)"));
  EXPECT_TRUE(device.contains("FB Memory Usage"));
  for (const auto* call : {"lumoDeviceGetUUID", "lumoDeviceGetSerialNumber", "lumoDeviceGetOvBiosVersion",
                           "lumoDeviceGetPcieSlotInfo", "lumoMemoryGetBandwidth"}) {
    EXPECT_EQ(fakeLumo().timesCalled(call), 0) << call;
  }
}

TEST_F(QueryCommandTest, ADeviceThatCannotBeNamedEndsEachSectionButMemory) {
  for (const auto* call : {"lumoDeviceGetIndex", "lumoDeviceGetPciInfo"}) {
    for (const auto* section : {"STATIC", "DISPLAY", "UTILIZATION", "TEMPERATURE", "POWER", "FAN", "CLOCK",
                                "VIDEO", "ECC", "PAGE_RETIREMENT", "PERFORMANCE", "THERMAL_SLOWDOWN_STATS"}) {
      SCOPED_TRACE(std::string(call) + " " + section);
      failAlways(call);
      log_.lines.clear();
      expectError(run(section), kNotAvailableText, ExitCode::kUnsupported);
      EXPECT_THAT(log_.of('E'),
                  Contains("querySections >> query[ " + std::string(section) + " ] error! error code[ 7 ] "));
    }
    failAlways(call);
    EXPECT_EQ(reportOf(run("MEMORY")).size(), 3u);
    fakeLumo().failures.clear();
  }
}

TEST_F(QueryCommandTest, ATypeThatCannotBeReadEndsTheSectionsThatTurnOnIt) {
  for (const auto* section : {"DISPLAY", "UTILIZATION"}) {
    failAlways("lumoDeviceGetProperty");
    log_.lines.clear();
    expectError(run(section, {{"-i", {"0"}}}), kNotAvailableText, ExitCode::kUnsupported);
    EXPECT_THAT(log_.of('E'), Contains(HasSubstr(" >> failed to get device type ")));
  }
}

TEST_F(QueryCommandTest, AnUnknownSectionEndsTheReport) {
  expectError(run("FAN,FOO"), kNotAvailableText, ExitCode::kUnsupported);
  EXPECT_THAT(log_.of('E'), ElementsAre("querySections >> there is no element[ FOO ] in selectQueryFun! "));
  expectError(run("FAN,,POWER"), kNotAvailableText, ExitCode::kUnsupported);
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceGetPowerUsage"), 0);
}

// ---- Performance state ---------------------------------------------------------------------------------

TEST_F(QueryCommandTest, AChangeOfStateReadsEverythingOnceMore) {
  // Before, inside the section, and after; the second pass is not looked at.
  fakeLumo().setSteps("lumoDeviceGetPerformanceState", std::vector<unsigned>{0, 0, 8, 5, 1});
  fakeLumo().setSteps("lumoGpuGetUtilization", std::vector<unsigned>{11, 77});
  const Json device = deviceOf("UTILIZATION,PERFORMANCE");
  EXPECT_EQ(device,
            Json({{"Index", "0"},
                  {"Utilization", {{"Gpu", "77%"}, {"Memory", "0%"}, {"Encoder", "0%"}, {"Decoder", "0%"}}},
                  {"Performance State", "P5"}}));
  EXPECT_EQ(fakeLumo().timesCalled("lumoGpuGetUtilization"), 2);
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceGetPerformanceState"), 4);
}

TEST_F(QueryCommandTest, ThePassesMayFindOtherDisplays) {
  fakeLumo().set("lumoDeviceGetDisplayInterfaceSpec", LumoDispIntfSpec{0, 640, 480, 252, 60.0f});
  for (const auto& counts : {std::vector<unsigned>{0, 1}, std::vector<unsigned>{1, 0}}) {
    fakeLumo().setSteps("lumoDeviceGetPerformanceState", std::vector<unsigned>{0, 8});
    fakeLumo().setSteps("lumoDeviceCountDisplayInterface", counts);
    EXPECT_EQ(deviceOf("DISPLAY").at("Display Interface"),
              counts.back() == 0
                  ? Json("N/A")
                  : Json({{"Interface 0 Type", "DP"}, {"Interface 0 Max Resolution", "640x480@60.0Hz"}}));
  }
}

TEST_F(QueryCommandTest, AFailingSecondPassEndsTheReport) {
  fakeLumo().setSteps("lumoDeviceGetPerformanceState", std::vector<unsigned>{0, 8});
  fakeLumo().fail("lumoDeviceGetPciInfo", {LUMO_RETURN_SUCCESS, LUMO_RETURN_NOT_SUPPORTED});
  expectError(run("FAN"), kNotAvailableText, ExitCode::kUnsupported);
}

TEST_F(QueryCommandTest, NoSecondPassWhileAStateCannotBeRead) {
  failAlways("lumoDeviceGetPerformanceState");
  EXPECT_TRUE(run("FAN"));
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceCountFan"), 1);
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceGetPerformanceState"), 2);
}

TEST_F(QueryCommandTest, AFailedPassLooksAtNoSecondState) {
  failAlways("lumoDeviceGetIndex");
  EXPECT_TRUE(run("FAN"));
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceGetPerformanceState"), 1);
}

// ---- Start ---------------------------------------------------------------------------------------------

TEST_F(QueryCommandTest, FailsWhenTheDevicesCannotBeCounted) {
  failAlways("lumoLibraryCountDevice");
  expectError(run(""), "Error: failed to get the number of GPU device", ExitCode::kEnumerationFailed);
  expectError(run("", {{"-i", {"0"}}}), "Error: failed to get the number of GPU device",
              ExitCode::kEnumerationFailed);
  EXPECT_THAT(log_.of('E'), Contains("getAccessDeviceNum >> lumoLibraryCountDevice () failed, ret =  7 "));
  EXPECT_THAT(log_.of('E'), Contains("countDevices >> lumoLibraryCountDevice() failed, ret =  7 "));
}

TEST_F(QueryCommandTest, FailsWithoutDevicesBeforeItLooksForOne) {
  fakeLumo().set("lumoLibraryCountDevice", 0u);
  expectError(run("", {{"-i", {"0"}}}), "Error: No OV GPU device found.", ExitCode::kNoDevice);
}

TEST_F(QueryCommandTest, FailsWhenADeviceIsLostBeforeItIsOrdered) {
  fakeLumo().fail("lumoLibraryInitDeviceByIndex", {LUMO_RETURN_NOT_FOUND});
  expectError(run(""), "Error: failed to find GPU devices", ExitCode::kEnumerationFailed);
}

TEST_F(QueryCommandTest, FailsWhenADeviceIsLostBeforeItsReport) {
  fakeLumo().fail("lumoLibraryInitDeviceByIndex", {LUMO_RETURN_SUCCESS, LUMO_RETURN_NOT_FOUND});
  expectError(run(""), kNotAvailableText, ExitCode::kUnsupported);
  EXPECT_THAT(log_.of('E'), Contains("queryDeviceInfo >> can not get device! device id[ 0 ] "));
}

TEST_F(QueryCommandTest, GoesOnWithoutADriverVersion) {
  failAlways("lumoSystemGetDriverVersion");
  EXPECT_EQ(reportOf(run("FAN")).at("Driver Version"), "N/A");
  EXPECT_THAT(log_.of('E'), ElementsAre("getDriverVersion >> lumoSystemGetDriverVersion () failed, ret =  7 ",
                                        "work >> lumoSystemGetDriverVersion() failed, ret =  7 "));
}

TEST_F(QueryCommandTest, TheFirstIndexOfAListIsReportedAlone) {
  fakeLumo().set("lumoLibraryCountDevice", 3u);
  fakeLumo().set("lumoLibraryInitDeviceByIndex(library 0, 1)", tolk_test::device(1));
  fakeLumo().set("lumoDeviceGetIndex(device 1)", 1u);
  const Json report = reportOf(run("FAN", {{"-i", {"1,2"}}}));
  EXPECT_EQ(report.at("Attached GPUs"), "3");
  ASSERT_EQ(report.at("GPU").size(), 1u);
  EXPECT_EQ(report.at("GPU").at(0).at("Index"), "1");
  EXPECT_THAT(fakeLumo().lines, Not(Contains("lumoLibraryInitDeviceByIndex(library 0, 2)")));
}

TEST_F(QueryCommandTest, EveryRunReadsAnew) {
  QueryCommandAccess command(ParsedOptions{{"-q", {}}, {"-d", {"PERFORMANCE"}}, {"--json", {}}});
  fakeLumo().set("lumoDeviceGetPerformanceState", 3u);
  EXPECT_EQ(reportOf(command.work()).at("GPU").at(0).at("Performance State"), "P3");
  fakeLumo().set("lumoDeviceGetPerformanceState", 5u);
  EXPECT_EQ(reportOf(command.work()).at("GPU").at(0).at("Performance State"), "P5");
  EXPECT_EQ(fakeLumo().timesCalled("lumoLibraryInit"), 2);
}

}  // namespace
}  // namespace tolk
