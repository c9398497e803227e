#include <stdexcept>

#include "command_access/codec_name.h"
#include "command_access/decoder_sessions_command_access.h"
#include "command_access/encoder_sessions_command_access.h"
#include "command_fixture.h"

namespace tolk {
namespace {

using testing::Contains;
using testing::ElementsAre;
using tolk_test::fakeLumo;

/// The commands with what tells them apart: a part of the library's names, and a word of the log.
struct EncoderSide {
  using Command = EncoderSessionsCommandAccess;
  static constexpr const char* kCalls = "lumoVpuGetEncoderSession";
  static constexpr const char* kWord = "encoder";
};
struct DecoderSide {
  using Command = DecoderSessionsCommandAccess;
  static constexpr const char* kCalls = "lumoVpuGetDecoderSession";
  static constexpr const char* kWord = "decoder";
};

template <class Side>
class CodecSessionsTest : public tolk_test::CommandFixture {
 protected:
  static std::shared_ptr<Step> run(ParsedOptions options = {}) {
    return typename Side::Command(std::move(options)).work();
  }
  static std::string call(const std::string& rest) { return Side::kCalls + rest; }

  static void setSession(unsigned session, unsigned pid, unsigned codec) {
    LumoVpuSessionMetrics metrics{};
    metrics.pid = pid;
    metrics.codec = codec;
    fakeLumo().set(call("Metrics(vpu 0, " + std::to_string(session) + ")"), metrics);
  }

  void expectFailure(const std::shared_ptr<Step>& step) {
    expectError(step, "Error: query decoder sessions of vpu failed.", ExitCode::kQueryFailed);
  }
};

using Sides = testing::Types<EncoderSide, DecoderSide>;
TYPED_TEST_SUITE(CodecSessionsTest, Sides);

TYPED_TEST(CodecSessionsTest, AsksForTheMetricsOfActiveSessionsAlone) {
  fakeLumo().set(this->call("States"), std::vector{0u, 1u, LUMO_NOT_AVAILABLE, 2u, 1u});
  this->setSession(1, 17, 12);
  this->setSession(4, 18, 0);
  EXPECT_EQ(this->template printedBy<typename TypeParam::Command>(),
            "GpuId SessionId Pid    CodecType hRes vRes FPS bitRate(kbps) \n"
            "0     1         17     HEVC      0    0    0   0             \n"
            "0     4         18     AVC       0    0    0   0             \n");
  EXPECT_THAT(this->questions(),
              ElementsAre(this->call("States(vpu 0, 576)"), this->call("Metrics(vpu 0, 1)"),
                          this->call("Metrics(vpu 0, 4)")));
}

TYPED_TEST(CodecSessionsTest, CodecWithoutANameEndsTheRun) {
  fakeLumo().set(this->call("States"), std::vector{1u});
  this->setSession(0, 17, 17);
  EXPECT_THROW(this->run(), std::out_of_range);
}

TYPED_TEST(CodecSessionsTest, LostDeviceStatesOrMetricsEndIt) {
  const auto fail = [this](const std::string& call) {
    fakeLumo() = {};
    this->setDevices(2);
    fakeLumo().set(this->call("States"), std::vector{1u});
    fakeLumo().fail(call, {LUMO_RETURN_NOT_SUPPORTED});
    SCOPED_TRACE(call);
    this->expectFailure(this->run());
  };
  const std::string log = "queryActiveSessions >> get " + std::string(TypeParam::kWord) + " session ";
  fail("lumoLibraryInitDeviceByIndex(library 0, 1)");
  fail(this->call("States(vpu 1, 576)"));
  EXPECT_THAT(this->log_.of('E'), Contains(log + "states failed, ret =  4 "));
  fail(this->call("Metrics(vpu 1, 0)"));
  EXPECT_THAT(this->log_.of('E'), Contains(log + "metrics failed, ret =  4 "));
}

TYPED_TEST(CodecSessionsTest, FailsWhenTheDevicesCannotBeCounted) {
  fakeLumo().fail("lumoLibraryCountDevice", {LUMO_RETURN_UNKNOWN_ERROR});
  this->expectError(this->run({{"-i", {"0"}}}), "Error: failed to get the number of GPU device",
                    ExitCode::kEnumerationFailed);
}

TYPED_TEST(CodecSessionsTest, VirtualisationHostIsRefusedBeforeTheLibraryIsOpened) {
  setDriverMode(DriverMode::kVirtualisationHost);
  this->expectError(this->run(), "Error: command option is not supported by installed driver.",
                    ExitCode::kUnsupported);
  EXPECT_EQ(fakeLumo().timesCalled("lumoLibraryInit"), 0);
}

TEST(CodecName, EndsAt16) {
  EXPECT_STREQ(codecName(0), "AVC");
  EXPECT_STREQ(codecName(16), "AV1");
  EXPECT_THROW(codecName(17), std::out_of_range);
  EXPECT_THROW(codecName(~0u), std::out_of_range);
}

}  // namespace
}  // namespace tolk
