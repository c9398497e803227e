#include "command_output/tolk_output.h"

#include <gtest/gtest.h>

#include <sstream>

#include "driver_mode.h"

namespace tolk {
namespace {

using Json = nlohmann::ordered_json;

class TolkOutputTest : public testing::Test {
 protected:
  void SetUp() override { setDriverMode(DriverMode::kBareHost); }
  void TearDown() override { setDriverMode(DriverMode::kOther); }

  static Json document() {
    return {{"Timestamp", "Thu Nov 20 17:40:12 2025"},
            {"Driver Version", "3.1.0"},
            {"orvane-tolk", "2.4.0"},
            {"Device", Json::object()},
            {"Process", Json::object()}};
  }

  static std::string drawn(const Json& document) {
    std::ostringstream text;
    auto* const old = std::cout.rdbuf(text.rdbuf());
    EXPECT_EQ(TolkOutput(document, true, false).work(), nullptr);
    std::cout.rdbuf(old);
    return text.str();
  }
};

TEST_F(TolkOutputTest, DrawsNothingWithoutDevices) {
  EXPECT_EQ(drawn(document()), "");
}

TEST_F(TolkOutputTest, DrawsTheHeaderInAGuestWithoutDevices) {
  setDriverMode(DriverMode::kGuest);
  const std::string rule = std::string(70, '-') + "\n";
  EXPECT_EQ(drawn(document()), "Thu Nov 20 17:40:12 2025\n" + rule +
                                   "    orvane-tolk:2.4.0                        Driver Version:3.1.0\n" +
                                   rule +
                                   "ID   Name                  |PCIe                |%GPU  Mem            \n"
                                   "     Device Type           |Pcie Lane Width     |\n" +
                                   rule + "\n");
}

}  // namespace
}  // namespace tolk
