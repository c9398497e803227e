#include "option_registry.h"

#include <gtest/gtest.h>

#include "command_table.h"

namespace tolk {
namespace {

constexpr OptionSpec kAlpha{"-a", "--alpha", ""};
constexpr OptionSpec kBeta{"-b", "--beta", "([0-9]+)$"};
constexpr OptionSpec kOtherBeta{"-b", "--other", ""};

ParseCode registered(std::span<const CommandRow> table) {
  OptionRegistry registry;
  return registry.registerTable(table);
}

TEST(OptionRegistry, TakesBothTablesOfTheTool) {
  EXPECT_EQ(fullCommandTable().size(), 30u);
  EXPECT_EQ(registered(fullCommandTable()), ParseCode::kSuccess);
  EXPECT_EQ(guestCommandTable().size(), 4u);
  EXPECT_EQ(registered(guestCommandTable()), ParseCode::kSuccess);
}

TEST(OptionRegistry, FullTableAssigns53Names) {
  OptionRegistry registry;
  ASSERT_EQ(registry.registerTable(fullCommandTable()), ParseCode::kSuccess);
  OptionMask all = 0;
  for (const auto& name : registry.names()) all |= name.bit;
  EXPECT_EQ(all, (OptionMask{1} << 53) - 1);
}

TEST(OptionRegistry, RefusesAnOptionWithoutNames) {
  constexpr OptionSpec kNameless{"", "", ""};
  const CommandRow mandatory[] = {{"", {kNameless}, {}, {}}};
  const CommandRow optional[] = {{"", {}, {}, {kNameless}}};
  EXPECT_EQ(registered(mandatory), ParseCode::kNamelessOption);
  EXPECT_EQ(registered(optional), ParseCode::kNamelessOption);
}

TEST(OptionRegistry, RefusesOneOptionWithTwoPatterns) {
  constexpr OptionSpec kBetaWithoutValue{"-b", "--beta", ""};
  const CommandRow table[] = {{"", {kBeta}, {}, {}}, {"sub", {kBetaWithoutValue}, {}, {}}};
  EXPECT_EQ(registered(table), ParseCode::kBadRegistration);
}

TEST(OptionRegistry, TakesACopyOfAnOptionForTheOptionItself) {
  constexpr OptionSpec kBetaAgain{"-b", "--beta", "([0-9]+)$"};
  const CommandRow table[] = {{"", {kBeta}, {}, {kBetaAgain}}};
  EXPECT_EQ(registered(table), ParseCode::kBadRegistration);
}

TEST(OptionRegistry, RefusesAnOptionTwiceInARow) {
  const CommandRow twiceMandatory[] = {{"", {kAlpha, kAlpha}, {}, {}}};
  const CommandRow mandatoryAndOptional[] = {{"", {kAlpha}, {}, {kBeta, kAlpha}}};
  const CommandRow twiceOptional[] = {{"", {}, {}, {kAlpha, kAlpha}}};
  EXPECT_EQ(registered(twiceMandatory), ParseCode::kBadRegistration);
  EXPECT_EQ(registered(mandatoryAndOptional), ParseCode::kBadRegistration);
  EXPECT_EQ(registered(twiceOptional), ParseCode::kBadRegistration);
}

TEST(OptionRegistry, RefusesOneKeyWithTwoSetsOfOptions) {
  const CommandRow same[] = {{"sub", {kAlpha}, {}, {kBeta}}, {"sub", {kAlpha}, {}, {kBeta}}};
  const CommandRow different[] = {{"sub", {kAlpha}, {}, {kBeta}}, {"sub", {kAlpha}, {}, {}}};
  EXPECT_EQ(registered(same), ParseCode::kSuccess);
  EXPECT_EQ(registered(different), ParseCode::kBadRegistration);
}

TEST(OptionRegistry, StopsAtTheFirstFailingRow) {
  constexpr OptionSpec kNameless{"", "", ""};
  const CommandRow failing[] = {{"", {kNameless}, {}, {}}, {"", {kAlpha, kAlpha}, {}, {}}};
  EXPECT_EQ(registered(failing), ParseCode::kNamelessOption);
}

TEST(OptionRegistry, KeepsTheMeaningsOfASharedNameInTheOrderOfTheTable) {
  const CommandRow table[] = {{"", {kAlpha}, {}, {kBeta}}, {"sub", {kOtherBeta}, {}, {}}};
  OptionRegistry registry;
  ASSERT_EQ(registry.registerTable(table), ParseCode::kSuccess);
  std::vector<std::string_view> longNames;
  for (const auto& name : registry.names()) {
    if (name.text == "-b") longNames.push_back(registry.option(name.bit).longName);
  }
  EXPECT_EQ(longNames, (std::vector<std::string_view>{"--beta", "--other"}));
}

TEST(OptionRegistry, TellsWhatRowsNeedFromWhatTheyTakeBesides) {
  const CommandRow table[] = {{"sub", {kAlpha}, {}, {kBeta}}};
  OptionRegistry registry;
  ASSERT_EQ(registry.registerTable(table), ParseCode::kSuccess);
  constexpr OptionMask kSubBit = 1, kAlphaBit = 2, kBetaBit = 4;
  EXPECT_TRUE(registry.isSubCommand(kSubBit));
  EXPECT_FALSE(registry.isSubCommand(kAlphaBit));
  EXPECT_TRUE(registry.isMandatory(kAlphaBit));
  EXPECT_FALSE(registry.isOptional(kAlphaBit));
  EXPECT_TRUE(registry.isOptional(kBetaBit));
  EXPECT_FALSE(registry.isMandatory(kBetaBit));
  EXPECT_TRUE(registry.leadsToRow(kAlphaBit));
  EXPECT_FALSE(registry.leadsToRow(kAlphaBit | kBetaBit));
  EXPECT_EQ(registry.rowOf(kSubBit), nullptr);
  ASSERT_NE(registry.rowOf(kSubBit | kAlphaBit), nullptr);
  EXPECT_EQ(registry.rowOf(kSubBit | kAlphaBit)->optional, kBetaBit);
}

}  // namespace
}  // namespace tolk
