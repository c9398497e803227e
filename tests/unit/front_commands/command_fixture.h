#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "command_error.h"
#include "driver_mode.h"
#include "fake_lumo.h"
#include "front_log_capture.h"
#include "parsed_options.h"

namespace tolk_test {

/// Runs commands on the library that answers what a test tells it to, on a bare host.
class CommandFixture : public testing::Test {
 protected:
  void SetUp() override {
    fakeLumo() = {};
    tolk::setDriverMode(tolk::DriverMode::kBareHost);
  }
  void TearDown() override { tolk::setDriverMode(tolk::DriverMode::kOther); }

  static void expectError(const std::shared_ptr<tolk::Step>& step, const std::string& message,
                          tolk::ExitCode code) {
    const auto error = std::dynamic_pointer_cast<tolk::CommandError>(step);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->message, message);
    EXPECT_EQ(error->code, code);
  }

  /// What an output prints.
  static std::string printed(tolk::Step& output) {
    std::ostringstream text;
    auto* const old = std::cout.rdbuf(text.rdbuf());
    EXPECT_EQ(output.work(), nullptr);
    std::cout.rdbuf(old);
    return text.str();
  }

  /// What a command's output prints; fails for a command that ends in an error.
  template <class Command>
  static std::string printedBy(tolk::ParsedOptions options = {}) {
    const auto output = Command(std::move(options)).work();
    EXPECT_TRUE(output);
    EXPECT_FALSE(std::dynamic_pointer_cast<tolk::CommandError>(output));
    return output ? printed(*output) : "";
  }

  /// Devices with handles of their own.
  static void setDevices(unsigned count) {
    fakeLumo().set("lumoLibraryCountDevice", count);
    for (unsigned index = 0; index < count; ++index) {
      const auto number = std::to_string(index);
      fakeLumo().set("lumoLibraryInitDeviceByIndex(library 0, " + number + ")", device(index));
      fakeLumo().set("lumoDeviceInitGpu(device " + number + ")", handleOf<LumoGpu>(index));
      fakeLumo().set("lumoDeviceInitMemory(device " + number + ")", handleOf<LumoMemory>(index));
      fakeLumo().set("lumoDeviceInitVpu(device " + number + ")", handleOf<LumoVpu>(index));
    }
  }

  /// What the devices were asked once their handles were there.
  static std::vector<std::string> questions() {
    auto lines = fakeLumo().lines;
    std::erase_if(lines, [](const std::string& line) {
      return line.starts_with("lumoLibrary") || line.starts_with("lumoSystem") ||
             line.starts_with("lumoDeviceInit");
    });
    return lines;
  }

  FrontLogCapture log_;
};

}  // namespace tolk_test
