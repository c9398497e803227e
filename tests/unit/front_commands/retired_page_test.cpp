#include <nlohmann/json.hpp>

#include "command_access/retired_page_command_access.h"
#include "command_fixture.h"
#include "command_output/retired_page_output.h"

namespace tolk {
namespace {

using Json = nlohmann::ordered_json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using tolk_test::fakeLumo;

class RetiredPageTest : public tolk_test::CommandFixture {
 protected:
  static std::shared_ptr<Step> run(const std::string& fields) {
    return RetiredPageCommandAccess(ParsedOptions{{"-qrp", {fields}}}).work();
  }

  static LumoRetiredPage page(unsigned long long address, unsigned cause) {
    LumoRetiredPage page{};
    page.address = address;
    page.cause = cause;
    return page;
  }

  static constexpr const char* kLost = "Error: the requested operation is not available on target device";
};

TEST_F(RetiredPageTest, PagesOfBothCausesAndOfNone) {
  fakeLumo().set("lumoMemoryGetRetiredPagesCount", 2u, 1u);
  fakeLumo().set("lumoMemoryGetRetiredPages(memory 0, 0, 2)", std::vector{page(0xABCDEF000, 0), page(0, 2)});
  fakeLumo().set("lumoMemoryGetRetiredPages(memory 0, 1, 1)", std::vector{page(~0ull, 1)});
  EXPECT_EQ(printedBy<RetiredPageCommandAccess>({{"-qrp", {"retired_pages.address,retired_pages.cause"}}}),
            "retired_pages.address, retired_pages.cause\n"
            "0xabcdef000, Single Bit ECC\n"
            "0x0, N/A\n"
            "0xffffffffffffffff, Double Bit ECC\n");
}

TEST_F(RetiredPageTest, GpuWithoutPagesIsAskedForTheirNumberAlone) {
  EXPECT_EQ(printedBy<RetiredPageCommandAccess>({{"-qrp", {"retired_pages.cause,gpu_uuid"}}}),
            "retired_pages.cause, gpu_uuid\n[N/A], GPU-00000000-0000-0000-0000-000000000001\n");
  EXPECT_THAT(questions(),
              ElementsAre("lumoDeviceGetUUID(device 0, 48)", "lumoMemoryGetRetiredPagesCount(memory 0)"));
}

TEST_F(RetiredPageTest, FailsWhenTheDevicesCannotBeCounted) {
  fakeLumo().fail("lumoLibraryCountDevice", {LUMO_RETURN_UNKNOWN_ERROR});
  expectError(run("gpu_uuid"), "Error: failed to get the number of GPU device", ExitCode::kEnumerationFailed);
}

TEST_F(RetiredPageTest, UuidThatCannotBeReadEndsIt) {
  fakeLumo().fail("lumoDeviceGetUUID", {LUMO_RETURN_UNKNOWN_ERROR});
  expectError(run("gpu_uuid"), kLost, ExitCode::kUnsupported);
  EXPECT_THAT(log_.of('E'), Contains("queryRetiredPage >> failed to get device uuid! error code[ 999 ] "));
  EXPECT_THAT(log_.of('E'), Contains("work >> failed to query retired page, device index = 0 "));
}

TEST_F(RetiredPageTest, LostDeviceOrPagesEndIt) {
  for (const auto* call :
       {"lumoLibraryInitDeviceByIndex(library 0, 1)", "lumoMemoryGetRetiredPagesCount(memory 1)",
        "lumoMemoryGetRetiredPages(memory 1, 1, 1)"}) {
    fakeLumo() = {};
    setDevices(2);
    fakeLumo().set("lumoMemoryGetRetiredPagesCount(memory 1)", 0u, 1u);
    fakeLumo().fail(call, {LUMO_RETURN_UNKNOWN_ERROR});
    log_.lines.clear();
    SCOPED_TRACE(call);
    expectError(run("gpu_uuid"), kLost, ExitCode::kUnsupported);
    EXPECT_THAT(log_.of('E'), Contains("work >> failed to query retired page, device index = 1 "));
    EXPECT_THAT(log_.of('E'), Not(Contains(HasSubstr("device index = 0"))));
  }
}

TEST_F(RetiredPageTest, OutputNamesTheCausesAndRefusesOtherNumbers) {
  const auto print = [](Json document) {
    RetiredPageOutput output(std::move(document));
    return printed(output);
  };
  EXPECT_EQ(print(Json::array({{{"retired_pages.cause", 0}},
                               {{"retired_pages.cause", 1}},
                               {{"retired_pages.cause", 2}},
                               {{"retired_pages.cause", "[N/A]"}}})),
            "retired_pages.cause\nSingle Bit ECC\nDouble Bit ECC\nN/A\n[N/A]\n");
  EXPECT_EQ(print(Json::array()), "");
  RetiredPageOutput number(Json::array({{{"retired_pages.address", 4096}}}));
  EXPECT_THROW(number.work(), Json::type_error);
}

}  // namespace
}  // namespace tolk
