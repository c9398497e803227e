#include <nlohmann/json.hpp>

#include "command_access/event_search_command_access.h"
#include "command_fixture.h"
#include "command_output/event_search_output.h"

namespace tolk {
namespace {

using Json = nlohmann::ordered_json;
using testing::Contains;
using testing::Not;
using tolk_test::fakeLumo;

class EventSearchTest : public tolk_test::CommandFixture {
 protected:
  static std::shared_ptr<Step> run(ParsedOptions options = {}) {
    options["-s"] = {"1"};
    return EventSearchCommandAccess(std::move(options)).work();
  }

  static std::string print(const Json& document, bool json) {
    testing::internal::CaptureStdout();
    EventSearchOutput(document, json).work();
    return testing::internal::GetCapturedStdout();
  }
};

TEST_F(EventSearchTest, FailsWhenTheDevicesCannotBeCounted) {
  fakeLumo().fail("lumoLibraryCountDevice", {LUMO_RETURN_UNKNOWN_ERROR});
  expectError(run(), "Error: failed to get the number of GPU device", ExitCode::kEnumerationFailed);
}

TEST_F(EventSearchTest, FailsWhenADeviceCannotBeHadOrNamed) {
  for (const auto* call : {"lumoLibraryInitDeviceByIndex(library 0, 1)", "lumoDeviceGetUUID(device 1, 48)"}) {
    fakeLumo() = {};
    setDevices(2);
    fakeLumo().fail(call, {LUMO_RETURN_UNKNOWN_ERROR});
    expectError(run({{"-i", {"0"}}}), "Error: failed to get GPU device", ExitCode::kOperationFailed);
  }
}

TEST_F(EventSearchTest, DeviceThatCannotTellItsTypesEndsIt) {
  setDevices(2);
  fakeLumo().fail("lumoDeviceGetSupportedEventTypes(device 1)", {LUMO_RETURN_UNKNOWN_ERROR});
  expectError(run(), "Error: the requested operation is not available on target device",
              ExitCode::kUnsupported);
  EXPECT_THAT(log_.of('E'),
              Contains("searchTargetDeviceEvents >> device  1  get supported event type failed, error is  999 "));
}

TEST_F(EventSearchTest, DeviceWithoutTheTypeIsPassedOver) {
  fakeLumo().set("lumoDeviceGetSupportedEventTypes", 0ull);
  EXPECT_EQ(printedBy<EventSearchCommandAccess>({{"-s", {"1"}}}), "No event information found\n");
  EXPECT_THAT(log_.of('W'), Contains("askedType >> event type  1  not support "));
}

TEST_F(EventSearchTest, OnlyTheNumberThatIsWantedIsAskedFor) {
  fakeLumo().set("lumoDeviceGetSupportedEventTypes", 1ull);
  for (const auto& [count, asked] : std::vector<std::pair<std::string, std::string>>{{"7", "7"}, {"501", "500"}}) {
    printedBy<EventSearchCommandAccess>({{"-s", {"1"}}, {"-n", {count}}});
    EXPECT_THAT(questions(), Contains("lumoDeviceGetEventDataByEventType(device 0, 1, " + asked + ")"));
  }
}

TEST_F(EventSearchTest, KeyThatIsNoDevicesIsLeftOutOfTheList) {
  const Json document{{"GPU0 UUID:GPU-a", {{"0", "first"}}}, {"nonsense", {{"0", "second"}}}};
  EXPECT_EQ(Json::parse(print(document, true)),
            (Json{{"GPU", {{{"Index", "0"}, {"UUID", "GPU-a"}, {"0", "first"}}}}}));
  EXPECT_THAT(log_.of('E'), Contains("outPutToJson >> event json format error "));
}

TEST_F(EventSearchTest, TextThatIsNoUtf8StillMakesJson) {
  const Json document{{"GPU0 UUID:GPU-a", {{"0", "XID:1 Additional:\xff\x01\""}}}};
  EXPECT_EQ(Json::parse(print(document, true))["GPU"][0]["0"], "XID:1 Additional:\xEF\xBF\xBD\x01\"");
  EXPECT_THAT(print(document, false), testing::EndsWith(":  XID:1 Additional:\xff\x01\"\n"));
}

}  // namespace
}  // namespace tolk
