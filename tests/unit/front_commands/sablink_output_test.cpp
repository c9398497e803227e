#include <nlohmann/json.hpp>

#include "command_fixture.h"
#include "command_output/sablink_err_reset.h"
#include "command_output/sablink_error_counter.h"
#include "command_output/sablink_layout.h"
#include "command_output/sablink_output.h"

namespace tolk {
namespace {

using Json = nlohmann::ordered_json;

class SablinkOutputTest : public tolk_test::CommandFixture {
 protected:
  template <class Output, class... Arguments>
  static std::string print(Json document, Arguments... arguments) {
    Output output(std::move(document), arguments...);
    return printed(output);
  }

  static Json withLinks(const Json& links) {
    Json device = {{"Brand Name", "OVT B250A"}, {"UUID", "u"}};
    device.update(links);
    return device;
  }
};

TEST_F(SablinkOutputTest, KeyOfADeviceIsPaddedToSix) {
  EXPECT_EQ(print<SablinkOutput>({{"GPU 9", withLinks(Json::object())},
                                  {"GPU 10", withLinks(Json::object())},
                                  {"GPU 100", withLinks(Json::object())}}),
            "GPU 9  : OVT B250A (UUID : u)\nGPU 10 : OVT B250A (UUID : u)\nGPU 100 : OVT B250A (UUID : u)\n");
  EXPECT_EQ(print<SablinkOutput>(Json::object()), "");
}

TEST_F(SablinkOutputTest, LinksWithATextOrWithSeveral) {
  EXPECT_EQ(
      print<SablinkOutput>({{"GPU 0", withLinks({{"LINK 0", "UP"}, {"LINK 12", {{"A", "0123456789"}}}})}}),
      "GPU 0  : OVT B250A (UUID : u)\nLink 0: UP        \nLink 12: A: 0123456789\n");
  SablinkOutput number(Json{{"GPU 0", withLinks({{"LINK 0", 1}})}});
  EXPECT_THROW(number.work(), Json::type_error);
}

TEST_F(SablinkOutputTest, NothingIsTheLackOfCounters) {
  EXPECT_EQ(print<SablinkErrorCounter>(Json::object()), "no sablink error counters info.\n");
  EXPECT_EQ(print<SablinkErrorCounter>({{"GPU 0", withLinks({{"Link 3", {{"replay errors", "1"}}}})}}),
            "GPU 0  : OVT B250A (UUID : u)\nLink 3: replay errors: 1         \n");
}

TEST_F(SablinkOutputTest, ResultsOfAResetAreCountedFromTheFirstPort) {
  EXPECT_EQ(
      print<SablinkErrReset>({{"GPU 0", withLinks({{"reset result", {true, false}}})}}, 7u),
      "GPU 0  : OVT B250A (UUID : u)\nLink 7: error counters reset\nLink 8: error counters reset failed\n");
}

TEST_F(SablinkOutputTest, ResultOfAResetMustBeABoolean) {
  SablinkErrReset output(Json{{"GPU 0", withLinks({{"reset result", Json::array({"true"})}})}}, 0);
  try {
    output.work();
    ADD_FAILURE() << "no exception";
  } catch (const Json::type_error& error) {
    EXPECT_STREQ(error.what(), "[json.exception.type_error.302] type must be boolean, but is string");
  }
}

TEST_F(SablinkOutputTest, EachPathIsABlock) {
  const auto hop = [](unsigned local, unsigned remote, Json ports) {
    return Json{{"local device", local}, {"remote device", remote}, {"link ports", std::move(ports)}};
  };
  EXPECT_EQ(
      print<SablinkLayout>({{"Layout", Json::array({Json::array({hop(0, 10, Json::array({{0, 1}, {2, 3}}))}),
                                                    Json::array({hop(0, 4, Json::array())})})}}),
      "nearest path\n"
      "local device      remote device         link ports(local,remote)\n"
      "0                 10                    (0,1),(2,3)\n"
      "nearest path\n"
      "local device      remote device         link ports(local,remote)\n"
      "0                 4                     \n");
}

}  // namespace
}  // namespace tolk
