#include <array>

#include "linux/ap/misc/mkis_protocol_v0/ipc_sensor_records.h"
#include "linux/ap/misc/mkis_protocol_v0/misc_kernel_accessor_v0.h"
#include "old_driver.h"
#include "support/log_capture.h"

// Sensors of old drivers: commands to the board's controller. Command numbers, lengths and offsets are typed
// from the driver's tables.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::Fields;
using tolk_test::get;
using tolk_test::LogCapture;
using tolk_test::OldDriver;
using tolk_test::put;
using enum MiscMkisIntfName;

constexpr std::size_t kRecordSize = 264;
constexpr std::array kFamilies{DevArch::kWold, DevArch::kFen1, DevArch::kFen2, DevArch::kTor1};

/// The header of a command of that number and length.
std::uint64_t header(std::uint64_t command, std::uint64_t length) {
  return command * 0x20 + 0x42000000 + length * 0x200000000000;
}

/// An old driver with one interface, on whose node commands are answered by a function.
template <MiscMkisIntfName Name>
class Commanded {
 public:
  explicit Commanded(DevArch arch, tolk_test::ScriptedDriver::Answer answer) {
    driver.answer(OldDriver::kCommand, std::move(answer));
    EXPECT_TRUE(provider_.init().ok());
    provider_.setArch(arch);
  }

  template <class... Params>
  auto ask(Params... params) {
    const auto intf = provider_.template getIntf<Name>();
    EXPECT_TRUE(intf.ok());
    EXPECT_EQ(intf.value().version, 0);
    return intf.value().operation(params...);
  }

  OldDriver driver{{{static_cast<std::uint32_t>(Name), 0}}};

 private:
  MiscMkisProvider provider_{"ovgpu.3"};
};

/// One command: the record on the way in holds the header and `argument`, the reply has the status and
/// `reply`, and rubbish elsewhere.
template <MiscMkisIntfName Name, class... Params>
auto askWithStatus(std::uint32_t status, DevArch arch, std::uint64_t word, const Fields& argument,
                   const Fields& reply, Params... params) {
  Commanded<Name> script(arch, [&](std::uint8_t* record) {
    std::vector<std::uint8_t> expected(kRecordSize);
    put<std::uint64_t>(expected.data(), 0, word);
    argument.putInto(expected.data());
    EXPECT_EQ(std::vector<std::uint8_t>(record, record + kRecordSize), expected);
    std::memset(record, 0xA5, kRecordSize);
    put<std::uint32_t>(record, 8, status);
    reply.putInto(record);
    return 0;
  });
  auto result = script.ask(params...);
  EXPECT_EQ(script.driver.count(OldDriver::kCommand), 1U);
  EXPECT_EQ(script.driver.sleeps, 0);
  return result;
}

template <MiscMkisIntfName Name, class... Params>
auto ask(DevArch arch, std::uint64_t word, const Fields& argument, const Fields& reply, Params... params) {
  auto result = askWithStatus<Name>(0, arch, word, argument, reply, params...);
  EXPECT_TRUE(result.ok()) << "state " << static_cast<unsigned>(result.state());
  return result;
}

TEST(SmcCommands, HeaderIsThatOfTheDriversExamples) {
  EXPECT_EQ(header(0x50, 3), 0x0000600042000A00U);
  EXPECT_EQ(header(0x08, 0x23), 0x0004600042000100U);
}

TEST(SmcCommands, Clock) {
  EXPECT_EQ(ask<kQueryClock>(DevArch::kFen1, header(0x47, 4), {{8, 4, 72}}, {{12, 4, 4'000'000'000}},
                             QueryClockParam{72})
                .value(),
            4'000'000'000UL);
}

TEST(SmcCommands, FansAreAtMostSixteen) {
  EXPECT_EQ(ask<kQueryFanChnlCount>(DevArch::kWold, header(0x43, 2), {}, {{12, 4, 2}}).value(), 2U);
  EXPECT_EQ(ask<kQueryFanChnlCount>(DevArch::kWold, header(0x43, 2), {}, {{12, 4, 17}}).value(), 16U);
}

unsigned int percentOf(std::uint32_t duty, std::uint32_t maxDuty) {
  return ask<kQueryFanSpeed>(DevArch::kFen2, header(0x57, 4), {{8, 4, 1}}, {{12, 4, duty}, {16, 4, maxDuty}},
                             QueryFanSpeedParam{.fanIndex = 1, .unit = FanUnit::kPercent})
      .value();
}

TEST(SmcCommands, FanSpeedInPercentIsThatOfTheHighestDuty) {
  EXPECT_EQ(percentOf(64, 255), 25U);
  EXPECT_EQ(percentOf(0x80000000, 0x80000000), 100U) << "no product leaves its type";
  EXPECT_EQ(percentOf(0xFFFFFFFF, 1), 0xFFFFFFFFU);
}

TEST(SmcCommands, HighestDutyOfZeroIsAFanThatStands) {
  EXPECT_EQ(percentOf(64, 0), 0U);
}

TEST(SmcCommands, FanSpeedInRevolutions) {
  EXPECT_EQ(ask<kQueryFanSpeed>(DevArch::kFen2, header(0x51, 3), {{8, 4, 1}}, {{12, 4, 2400}},
                                QueryFanSpeedParam{.fanIndex = 1, .unit = FanUnit::kRpm})
                .value(),
            2400U);
}

TEST(SmcCommands, Power) {
  EXPECT_EQ(ask<kQueryPower>(DevArch::kTor1, header(0x53, 3), {{8, 4, 2}}, {{12, 4, 120'500}},
                             QueryPowerUsageParam{2})
                .value(),
            120'500U);
}

TEST(SmcCommands, VoltageOfAllFamiliesIsInThousandths) {
  for (const DevArch arch : kFamilies) {
    EXPECT_FLOAT_EQ(
        ask<kQueryVoltage>(arch, header(0x56, 3), {{8, 4, 2}}, {{12, 4, 850}}, QueryVoltageParam{2}).value(),
        0.85F);
  }
}

TEST(SmcCommands, TemperatureOfTheFirstFamilyIsInWholeDegrees) {
  for (const DevArch arch : kFamilies) {
    const float shown = ask<kQueryTemper>(arch, header(0x50, 3), {{8, 4, 9}},
                                          {{12, 4, static_cast<std::uint32_t>(-1500)}}, QueryTemperParam{9})
                            .value();
    EXPECT_FLOAT_EQ(shown, arch == DevArch::kWold ? -1500.0F : -1.5F);
  }
}

TEST(SmcCommands, MemoryTemperature) {
  EXPECT_EQ(ask<kQueryMemoryTemperature>(DevArch::kFen1, header(0x17, 0x32), {}, {{12, 4, 78}}).value(), 78U);
}

TEST(SmcCommands, TemperatureLimits) {
  const auto limits = ask<kQueryTemperatureLimitInfo>(DevArch::kFen1, header(0x58, 0x0C), {},
                                                      {{12, 4, 95'500}, {16, 4, 0x80000000}})
                          .value();
  EXPECT_FLOAT_EQ(limits.slowdown.value(), 95.5F);
  EXPECT_EQ(limits.shutdown.state(), KelpReturn::kNotSupported);
}

TEST(SmcCommands, FirmwareHasTheFirstSixComponents) {
  const auto versions =
      ask<kQuerySmcFwVersion>(
          DevArch::kFen1, header(0x0B, 0x15), {},
          {{12, 4, 10203}, {16, 4, 20001}, {20, 4, 1}, {24, 4, ~0U}, {28, 4, 3}, {32, 4, 4}})
          .value();
  ASSERT_EQ(versions.size(), 6U);
  EXPECT_EQ(versions.at("ov-bios").value(), 10203U);
  EXPECT_EQ(versions.at("rtos").value(), 20001U);
  EXPECT_EQ(versions.at("vbios").value(), 1U);
  EXPECT_EQ(versions.at("var").state(), KelpReturn::kNotSupported);
  EXPECT_EQ(versions.at("mgbl").value(), 3U);
  EXPECT_EQ(versions.at("entry").value(), 4U);
}

TEST(SmcCommands, IdentityGoesByTheFamilyAndComesFromWhereTheFirmwareSays) {
  for (const DevArch arch : kFamilies) {
    const auto data = ask<kQueryEfuseData>(arch, header(0x08, arch == DevArch::kWold ? 0x0E : 0x23),
                                           {{8, 4, 2048}, {12, 4, 1024}},
                                           {{12, 4, 64}, {16, 4, ~0U}, {20, 4, 7}, {20 + 31 * 4, 4, 77}},
                                           QueryEfuseDataParam{.startBit = 2048, .bitCount = 1024})
                          .value();
    EXPECT_EQ(data.startBit, 64U);
    EXPECT_EQ(data.bitCount, 1024U) << "cut to the words that there are";
    ASSERT_EQ(data.words.size(), 32U);
    EXPECT_EQ(data.words[0], 7U);
    EXPECT_EQ(data.words[31], 77U);
  }
}

/// Asks with a status that is not good, and expects one line.
template <MiscMkisIntfName Name, class... Params>
void expectRefusal(DevArch arch, std::uint64_t word, const Fields& argument, const std::string& line,
                   Params... params) {
  LogCapture log;
  EXPECT_EQ((askWithStatus<Name>(3, arch, word, argument, {{12, 4, 5}}, params...).state()),
            KelpReturn::kNotSupported);
  EXPECT_TRUE(log.has(LogLevel::kError, ">> " + line)) << line;
  std::size_t errors = 0;
  for (const auto& [level, text] : log.lines) {
    errors += text.find("status") != std::string::npos ? 1U : 0U;
  }
  EXPECT_EQ(errors, 1U);
}

TEST(SmcCommands, RefusedCommandIsNotSupportedAndHasWordsOfItsOwn) {
  const DevArch first = DevArch::kWold;
  const DevArch other = DevArch::kFen2;
  expectRefusal<kQueryClock>(other, header(0x47, 4), {{8, 4, 72}}, "clock type =  72  status check failure! ",
                             QueryClockParam{72});
  expectRefusal<kQueryFanChnlCount>(other, header(0x43, 2), {}, "getFanCountV0() status check failed! ");
  expectRefusal<kQueryFanSpeed>(other, header(0x57, 4), {{8, 4, 1}},
                                "getFanSpeedV0() status check fail, status =  3  maxDuty =  5 ",
                                QueryFanSpeedParam{.fanIndex = 1, .unit = FanUnit::kPercent});
  expectRefusal<kQueryFanSpeed>(other, header(0x51, 3), {{8, 4, 1}}, "getFanRpmV0() status check failed! ",
                                QueryFanSpeedParam{.fanIndex = 1, .unit = FanUnit::kRpm});
  expectRefusal<kQueryVoltage>(first, header(0x56, 3), {{8, 4, 2}},
                               "queryVoltageV0(): type =  2  status check failure! ", QueryVoltageParam{2});
  expectRefusal<kQueryVoltage>(other, header(0x56, 3), {{8, 4, 2}},
                               "queryVoltageV1(): type =  2  status check failure! ", QueryVoltageParam{2});
  expectRefusal<kQueryPower>(other, header(0x53, 3), {{8, 4, 1}},
                             "getPowerUsageV0(): dm =  1  status check failed! ", QueryPowerUsageParam{1});
  expectRefusal<kQueryTemper>(first, header(0x50, 3), {{8, 4, 9}},
                              "queryTemperV0(): type =  9 , status =  3  check failure! ",
                              QueryTemperParam{9});
  expectRefusal<kQueryTemper>(other, header(0x50, 3), {{8, 4, 9}},
                              "getGpuTemperatureV1(): type =  9 , status =  3  check failure! ",
                              QueryTemperParam{9});
  expectRefusal<kQueryMemoryTemperature>(other, header(0x17, 0x32), {},
                                         "queryMemoryTemperatureV0() status check failed! ");
  expectRefusal<kQueryTemperatureLimitInfo>(other, header(0x58, 0x0C), {},
                                            "queryTemperatureLimitInfoV0() status check failed! ");
  expectRefusal<kQuerySmcFwVersion>(other, header(0x0B, 0x15), {},
                                    "querySmcFwVersionV0() status check failed! ");
  expectRefusal<kQueryEfuseData>(other, header(0x08, 0x23), {{8, 4, 1}, {12, 4, 2}},
                                 "queryEfuseData() status check failed! ",
                                 QueryEfuseDataParam{.startBit = 1, .bitCount = 2});
}

TEST(SmcCommands, BusyFirmwareIsAskedTenTimes) {
  int attempts = 0;
  std::vector<std::vector<std::uint8_t>> sent;
  Commanded<kQueryTemper> script(DevArch::kFen1, [&](std::uint8_t* record) {
    sent.emplace_back(record, record + kRecordSize);
    std::memset(record, 0xA5, kRecordSize);
    put<std::uint32_t>(record, 8, 0);
    put<std::int32_t>(record, 12, 41'000);
    return ++attempts < 10 ? EAGAIN : 0;
  });
  LogCapture log;
  const auto temperature = script.ask(QueryTemperParam{9});
  ASSERT_TRUE(temperature.ok());
  EXPECT_FLOAT_EQ(temperature.value(), 41.0F);
  EXPECT_EQ(script.driver.slept, 900'000'000);
  EXPECT_EQ(script.driver.sleeps, 9);
  ASSERT_EQ(sent.size(), 10U);
  for (const auto& record : sent) {
    EXPECT_EQ(record, sent.front()) << "every attempt asks the same";
  }
  EXPECT_TRUE(log.lines.empty());
}

TEST(SmcCommands, CommandThatFailsTenTimesFails) {
  Commanded<kQueryFanChnlCount> script(DevArch::kFen1, [](std::uint8_t*) { return EAGAIN; });
  LogCapture log;
  EXPECT_EQ(script.ask().state(), KelpReturn::kFailure);
  EXPECT_EQ(script.driver.count(OldDriver::kCommand), 10U);
  EXPECT_EQ(script.driver.slept, 1'000'000'000);
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_TRUE(
      log.has(LogLevel::kError,
              ">> cmd< IpcGetFanEntryInfoCmdV0 > ioctl return error =  -1 , errno =  11 , cmd:0x 43 "));
}

TEST(SmcCommands, InterruptedSleepGoesOn) {
  int attempts = 0;
  Commanded<kQueryFanChnlCount> script(DevArch::kFen1, [&](std::uint8_t* record) {
    put<std::uint32_t>(record, 8, 0);
    put<std::uint32_t>(record, 12, 1);
    return ++attempts < 2 ? EAGAIN : 0;
  });
  script.driver.interruptions = 3;
  EXPECT_TRUE(script.ask().ok());
  EXPECT_EQ(script.driver.slept, 100'000'000);
  EXPECT_EQ(script.driver.sleeps, 1);
}

TEST(SmcCommands, CommandIsNotSentOnAClosedDescriptor) {
  tolk_test::ScriptedDriver driver;
  LogCapture log;
  IpcGetPowerCmdV0 record{};
  EXPECT_EQ(cmd(-1, record), KelpReturn::kFailure);
  EXPECT_TRUE(driver.calls.empty());
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_TRUE(log.has(LogLevel::kError, ">> cmd< IpcGetPowerCmdV0 > fd is invalid ! "));
}

}  // namespace
}  // namespace kelp::linux_
