#include <gtest/gtest.h>

#include <array>

#include "driver_script.h"
#include "linux/ap/misc/misc_mkis_provider.h"
#include "linux/ap/render/render_mkis_provider.h"
#include "old_driver.h"
#include "support/log_capture.h"

// What the log tells of an agreement: all lines, in order, of both nodes and drivers of all ages.

namespace kelp::linux_ {
namespace {

using tolk_test::DriverScript;
using tolk_test::LogCapture;
using tolk_test::OldDriver;
using tolk_test::put;
using Lines = std::vector<std::string>;

/// The lines with the letter of their level, without time, thread and place.
Lines linesOf(const LogCapture& log) {
  Lines lines;
  for (const auto& [level, text] : log.lines) {
    lines.push_back("UTDIWEF"[level] + (" " + text.substr(text.find(">> ") + 3)));
  }
  return lines;
}

Lines linesOfMiscInit() {
  LogCapture log;
  MiscMkisProvider provider("ovgpu.3");
  EXPECT_TRUE(provider.init().ok());
  return linesOf(log);
}

Lines linesOfRenderInit() {
  LogCapture log;
  RenderMkisProvider provider("renderD128", DevArch::kFen2);
  EXPECT_TRUE(provider.init().ok());
  return linesOf(log);
}

TEST(NegotiationLog, NewerProbeIsToldWithItsFourNumbers) {
  DriverScript driver({});
  driver.allowOpen(OldDriver::kNode);
  driver.answer(DriverScript::kProbe, [](std::uint8_t* r) {
    EXPECT_EQ(std::vector<std::uint8_t>(r, r + 12), std::vector<std::uint8_t>(12));
    for (std::uint16_t i = 0; i < 4; ++i) {
      put<std::uint16_t>(r, 2U * i, std::array<std::uint16_t, 4>{5, 1, 7, 8}[i]);
    }
    return 0;
  });
  const Lines lines = linesOfMiscInit();
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.front(),
            "I use V1 query remote mkis version success, remote mkis version info is  current major  5 "
            "current minor  1 old major  7 old minor  8 ");
}

TEST(NegotiationLog, OlderProbeIsToldWithItsTwoNumbersTwice) {
  OldDriver driver({{2, 1}});
  driver.answer(DriverScript::kOldProbe, [](std::uint8_t* r) {
    EXPECT_EQ(std::vector<std::uint8_t>(r, r + 16), std::vector<std::uint8_t>(16));
    put<std::uint16_t>(r, 0, 0);
    put<std::uint16_t>(r, 2, 0);
    put<std::uint32_t>(r, 4, 1);
    return 0;
  });
  EXPECT_EQ(linesOfMiscInit(),
            (Lines{"W use getMkisProbeV1 query remote mkis version failed, use v0 for a try ",
                   "I use V0 query remote mkis version success, remote mkis version info is  current major  "
                   "0 current minor  0 old major  0 old minor  0 interface count  1 ",
                   "D Fetching mkis list from kmd ! ", "I Got mkis list entries number:  1 ",
                   "D mkis ent: {  2 1 "}));
}

TEST(NegotiationLog, DriverWithoutProbesIsTold) {
  tolk_test::ScriptedDriver driver;
  driver.allowOpen(OldDriver::kNode);
  driver.fail(DriverScript::kProbe, ENOTTY);
  driver.fail(DriverScript::kOldProbe, ENOTTY);
  EXPECT_EQ(
      linesOfMiscInit(),
      (Lines{"W use getMkisProbeV1 query remote mkis version failed, use v0 for a try ",
             "E use getMkisProbeV1 and V0 query remote mkis version all failed ",
             "E get mkis probe failed. use default mkis list ", "D Faking mkis list for legacy driver ! "}));
}

TEST(NegotiationLog, RenderNodeHasTheOlderProbeAlone) {
  DriverScript driver({});
  driver.allowRender("/dev/dri/renderD128");
  driver.answer(DriverScript::kRenderProbe, [](std::uint8_t* r) {
    EXPECT_EQ(std::vector<std::uint8_t>(r, r + 16), std::vector<std::uint8_t>(16));
    put<std::uint16_t>(r, 0, 3);
    put<std::uint32_t>(r, 4, 1);
    return 0;
  });
  EXPECT_EQ(linesOfRenderInit(),
            (Lines{"I through mkis1.0 query mkis version failed use mkis0.0 for a try ",
                   "I use mkis0.0 to query remote mkis version success. current major version is  3 current "
                   "minor version is  0 oldest major version is  3 oldest minor version is  0 ",
                   "I use mkis major 0 as protocol ", "D Fetching mkis list from kmd ! ",
                   "I Got mkis list entries number:  1 ", "D mkis ent: {  100004 1 "}));
}

TEST(NegotiationLog, RenderNodeWithoutProbeIsTold) {
  DriverScript driver({});
  driver.allowRender("/dev/dri/renderD128");
  driver.fail(DriverScript::kRenderProbe, ENOTTY);
  EXPECT_EQ(linesOfRenderInit(),
            (Lines{"I through mkis1.0 query mkis version failed use mkis0.0 for a try ",
                   "E through mkis0.0 query mkis version failed ",
                   "E get mkis probe failed. error code is  1 ", "D Faking mkis list for legacy driver ! "}));
}

}  // namespace
}  // namespace kelp::linux_
