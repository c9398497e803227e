#include "command_parser.h"

#include <gtest/gtest.h>

#include "front_fixture.h"

namespace tolk_test {
namespace {

const std::string kWrongCombination =
    "Error: input wrong option combination. Please run 'orvane-tolk -h' for help.";
const std::string kUnknownInput = "Error: input is unknow. Please run 'orvane-tolk -h' for help.";

std::string illegal(const std::string& name) {
  return "Illegal value for '" + name + "' options. Please run 'orvane-tolk -h' for help.";
}

std::string missing(const std::string& name) {
  return "Missing value for '" + name + "' options. Please run 'orvane-tolk -h' for help.";
}

void expectRow(const Parsed& parsed, int row, const tolk::ParsedOptions& options) {
  EXPECT_EQ(parsed.message, "");
  EXPECT_EQ(parsed.row, row);
  EXPECT_EQ(parsed.options, options);
}

class CommandParser : public testing::Test {
 protected:
  EventCapture events;
};

TEST_F(CommandParser, EmptyCommandLineIsTheSummaryWithoutOptions) {
  expectRow(parse(""), 2, {});
  expectRow(parse("   "), 2, {});
  expectRow(parse(" = "), 2, {});
}

TEST_F(CommandParser, EveryRowIsReachedByItsOwnCommandLine) {
  const std::pair<const char*, int> rows[] = {
      {"-L", 1},
      {"-cf", 2},
      {"-h", 3},
      {"-v", 4},
      {"-q", 5},
      {"vgpu", 6},
      {"topo", 7},
      {"-es", 8},
      {"-ds", 9},
      {"mpc -enable", 10},
      {"mpc -disable", 11},
      {"mpc -lmc", 12},
      {"mpc -cm 0", 13},
      {"mpc -lmi", 14},
      {"-r 0", 15},
      {"sablink -s", 16},
      {"sablink -c", 17},
      {"sablink -r", 18},
      {"sablink -la", 19},
      {"sablink -e", 20},
      {"sablink -re", 21},
      {"-pm", 22},
      {"-e 1", 23},
      {"-qrp gpu_uuid", 24},
      {"event -h", 25},
      {"event -s 1", 26},
      {"-mm GpuId,Temp", 27},
      {"-pl 100", 28},
      {"--help-query-gpu", 29},
      {"--query-gpu=index", 30},
  };
  for (const auto& [command, row] : rows) EXPECT_EQ(parse(command).row, row) << command;
}

TEST_F(CommandParser, LongNamesMeanTheSameAsShortOnes) {
  expectRow(parse("--list-gpus --concise-format"), 1, {{"-L", {}}, {"-cf", {}}});
  expectRow(parse("--query --id 0 --loop 5 --filename o --display=ECC --json --debug f"), 5,
            {{"-q", {}},
             {"-i", {"0"}},
             {"-l", {"5"}},
             {"-f", {"o"}},
             {"-d", {"ECC"}},
             {"--json", {}},
             {"--debug", {"f"}}});
  expectRow(parse("--query-gpu=index --loop-ms=10 --format csv"), 30,
            {{"--query-gpu", {"index"}}, {"-lms", {"10"}}, {"--format", {"csv"}}});
}

TEST_F(CommandParser, BlankAndEqualsSignAreTheSameSeparator) {
  for (const auto* command : {"-q -i 1", "-q -i=1", "-q --id=1", "-q --id 1", "-q --id == 1 ", "=-q=-i=1="}) {
    SCOPED_TRACE(command);
    expectRow(parse(command), 5, {{"-q", {}}, {"-i", {"1"}}});
  }
}

TEST_F(CommandParser, OtherWhiteSpaceBelongsToAToken) {
  EXPECT_EQ(parse("-v\t").message, kUnknownInput);
  EXPECT_EQ(parse("-i 0\t1").message, illegal("-i"));
}

TEST_F(CommandParser, SubCommandIsAKeyWithoutValues) {
  expectRow(parse("topo -m"), 7, {{"topo", {}}, {"-m", {}}});
  expectRow(parse("sablink -c -i 0"), 17, {{"sablink", {}}, {"-c", {}}, {"-i", {"0"}}});
}

TEST_F(CommandParser, FactorySplitsIdsForItsCommandsAlone) {
  for (const auto* command : {"-i 0,1", "-i 0,1 -v", "sablink -e -i 0,1", "sablink -re -i 0,1", "-e 1 -i 0,1",
                              "-qrp gpu_uuid -i 0,1", "-pl 100 -i 0,1"}) {
    EXPECT_EQ(parse(command).options["-i"], (Values{"0", "1"})) << command;
  }
  for (const auto* command : {"-i 0,1 -L", "-q -i 0,1", "vgpu -i 0,1", "topo -i 0,1", "-es -i 0,1",
                              "mpc -enable -i 0,1", "-r 0 -i 0,1", "sablink -la -i 0,1", "event -s 1 -i 0,1",
                              "-mm GpuId,Temp -i 0,1", "--query-gpu=index -i 0,1"}) {
    EXPECT_EQ(parse(command).options["-i"], Values{"0,1"}) << command;
  }
}

TEST_F(CommandParser, SharedNameTakesTheMeaningThatTheRowAllows) {
  expectRow(parse("sablink -e -l 2"), 20, {{"sablink", {}}, {"-e", {}}, {"-l", {"2"}}});
  expectRow(parse("vgpu -l 2"), 6, {{"vgpu", {}}, {"-l", {"2"}}});
  EXPECT_EQ(parse("sablink -e -l 0").row, 20);
  EXPECT_EQ(parse("vgpu -l 0").message, illegal("-l"));
  expectRow(parse("-e 1"), 23, {{"-e", {"1"}}});
  EXPECT_EQ(parse("sablink -e").row, 20);
  EXPECT_EQ(parse("vgpu -s").row, 6);
  EXPECT_EQ(parse("sablink -s").row, 16);
  EXPECT_EQ(parse("event -s 1").row, 26);
  EXPECT_EQ(parse("vgpu -u").row, 6);
  EXPECT_EQ(parse("-r 0").row, 15);
  EXPECT_EQ(parse("sablink -r").row, 18);
  expectRow(parse("topo -n 4294967296"), 7, {{"topo", {}}, {"-n", {"4294967296"}}});
}

TEST_F(CommandParser, OptionMayBeMandatoryInOneRowAndOptionalInAnother) {
  expectRow(parse("vgpu -q -es"), 6, {{"vgpu", {}}, {"-q", {}}, {"-es", {}}});
  EXPECT_EQ(parse("-q -es").message, kWrongCombination);
}

TEST_F(CommandParser, OptionsOfTheSummaryMayStandInFrontOfAnyMandatoryOne) {
  expectRow(parse("-cf -q"), 5, {{"-cf", {}}, {"-q", {}}});
  EXPECT_EQ(parse("-q -cf").message, kWrongCombination);
  expectRow(parse("-i 0 -pm"), 22, {{"-i", {"0"}}, {"-pm", {}}});
  EXPECT_EQ(parse("-pm -i 0").message, kWrongCombination);
  expectRow(parse("--debug=f --query-gpu=index"), 30, {{"--debug", {"f"}}, {"--query-gpu", {"index"}}});
  EXPECT_EQ(parse("--query-gpu=index --debug=f").message, kWrongCombination);
  expectRow(parse("--debug=f --help-query-gpu"), 29, {{"--debug", {"f"}}, {"--help-query-gpu", {}}});
  EXPECT_EQ(parse("-i 0 -L").row, 1);
  EXPECT_EQ(parse("-cf -i 0 --debug=f -v").row, 4);
}

TEST_F(CommandParser, RowWithMandatoryOptionsTakesNothingInFrontOfThem) {
  for (const auto* command : {"mpc -i 0 -enable", "sablink -i 0 -s", "event -n 5 -s 1", "-l 5 -q",
                              "--format=csv --query-gpu=index"}) {
    EXPECT_EQ(parse(command).message, kWrongCombination) << command;
  }
}

TEST_F(CommandParser, SubCommandStandsFirstOnly) {
  EXPECT_EQ(parse("topo vgpu").message, kUnknownInput);
  EXPECT_EQ(parse("-i 0 topo").message, kUnknownInput);
  EXPECT_EQ(parse("--debug=f topo -m").message, kUnknownInput);
  EXPECT_EQ(parse("--debug=topo").message, kUnknownInput);
}

TEST_F(CommandParser, UnknownFirstWordIsUnknownInput) {
  EXPECT_EQ(parse("foo").message, kUnknownInput);
  EXPECT_EQ(parse("--foo").message, kUnknownInput);
}

TEST_F(CommandParser, UnknownLaterWordIsAValueOfTheOptionBeforeIt) {
  expectRow(parse("-q -f --foo"), 5, {{"-q", {}}, {"-f", {"--foo"}}});
  EXPECT_EQ(parse("-q --foo").message, illegal("-q"));
  EXPECT_EQ(parse("-h extra").message, illegal("-h"));
  EXPECT_EQ(parse("topo foo").message, illegal("topo"));
}

TEST_F(CommandParser, ValuesAreJoinedWithABlankBeforeTheCheck) {
  EXPECT_EQ(parse("-i 0 1").message, illegal("-i"));
  EXPECT_EQ(parse("--debug=a=b").message, illegal("--debug"));
  const std::string uuid = "00000000-0000-0000-0000-000000000001";
  EXPECT_EQ(parse("event -s 1 -u " + uuid + ", " + uuid).options["-u"], (Values{uuid + ",", uuid}));
}

TEST_F(CommandParser, MessageNamesTheOptionAsTyped) {
  EXPECT_EQ(parse("--id").message, missing("--id"));
  EXPECT_EQ(parse("-i").message, missing("-i"));
  EXPECT_EQ(parse("--list-gpus=1").message, illegal("--list-gpus"));
  EXPECT_EQ(parse("-q --loop=0").message, illegal("--loop"));
}

TEST_F(CommandParser, FirstFailingOptionIsNamed) {
  EXPECT_EQ(parse("-q -i x -l 0 -f").message, illegal("-i"));
  EXPECT_EQ(parse("-i -q").message, missing("-i"));
  EXPECT_EQ(parse("-q foo -i x").message, illegal("-q"));
}

TEST_F(CommandParser, OptionGivenTwiceIsAWrongCombination) {
  EXPECT_EQ(parse("-i 0 -i 1").message, kWrongCombination);
  EXPECT_EQ(parse("-i 0 --id 1").message, kWrongCombination);
  EXPECT_EQ(parse("-q -q").message, kWrongCombination);
}

TEST_F(CommandParser, BareSubCommandWithMandatoryOptionsIsAWrongCombination) {
  EXPECT_EQ(parse("mpc").message, kWrongCombination);
  EXPECT_EQ(parse("sablink").message, kWrongCombination);
  EXPECT_EQ(parse("event").message, kWrongCombination);
  EXPECT_EQ(parse("mpc -enable -disable").message, kWrongCombination);
  EXPECT_EQ(parse("-q --query-gpu=x").message, kWrongCombination);
}

TEST_F(CommandParser, WrongCombinationOutranksAWrongValue) {
  EXPECT_EQ(parse("mpc foo").message, kWrongCombination);
  EXPECT_EQ(parse("-i x -l 0").message, kWrongCombination);
}

TEST_F(CommandParser, SecondRunOfOneParserStartsAfresh) {
  const auto rows = withStandIns(tolk::fullCommandTable());
  tolk::CommandParser parser("-q -i 0 ");
  ASSERT_EQ(parser.registerTable(rows), 0);
  for (int run = 0; run < 2; ++run) {
    lastMade = {};
    ASSERT_NE(parser.work(), nullptr);
    expectRow(lastMade, 5, {{"-q", {}}, {"-i", {"0"}}});
  }
}

TEST_F(CommandParser, RegistrationReturnsTheCodeOfTheFailingRow) {
  constexpr tolk::OptionSpec kOption{"-a", "", ""};
  constexpr tolk::OptionSpec kNameless{"", "", ""};
  const tolk::CommandRow twice[] = {{"", {kOption, kOption}, {}, {}}};
  const tolk::CommandRow nameless[] = {{"", {kNameless}, {}, {}}};
  EXPECT_EQ(tolk::CommandParser("").registerTable(twice), 1);
  EXPECT_EQ(tolk::CommandParser("").registerTable(nameless), 2);
}

TEST_F(CommandParser, InAGuestTheOtherCommandsAreUnknown) {
  expectRow(parseInGuest(""), 1, {});
  expectRow(parseInGuest("-i 0,1"), 1, {{"-i", {"0", "1"}}});
  EXPECT_EQ(parseInGuest("-h").row, 2);
  expectRow(parseInGuest("-i 0,1 -v"), 3, {{"-i", {"0", "1"}}, {"-v", {}}});
  expectRow(parseInGuest("-q -i 0,1 -l 5"), 4, {{"-q", {}}, {"-i", {"0,1"}}, {"-l", {"5"}}});
  for (const auto* command : {"-L", "-cf", "vgpu", "event -h", "--query-gpu=index"}) {
    EXPECT_EQ(parseInGuest(command).message, kUnknownInput) << command;
  }
  EXPECT_EQ(parseInGuest("-q -d MEMORY").message, illegal("-q"));
  EXPECT_EQ(parseInGuest("-i 0 -L").message, illegal("-i"));
}

}  // namespace
}  // namespace tolk_test
