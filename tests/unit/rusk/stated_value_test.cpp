#include "rusk/stated_value.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

enum class Platform : std::uint32_t { kGood = 0, kUnsupported = 6, kReadFailed = 8, kLost = 16 };
enum class Interface : std::uint32_t { kGood = 0, kFailure = 1 };
enum class Mode : std::uint32_t { kOff, kOn };

template <class T>
using Stated = rusk::StatedValue<Platform, T, Platform::kUnsupported, Platform::kGood>;
template <class T>
using InterfaceStated = rusk::StatedValue<Interface, T, Interface::kFailure, Interface::kGood>;

TEST(StatedValue, DefaultConstructedPlatformValueIsUnsupportedAndReadsZero) {
  const Stated<int> stated;
  EXPECT_EQ(static_cast<std::uint32_t>(stated.state()), 6u);
  EXPECT_FALSE(stated.ok());
  EXPECT_EQ(stated.value(), 0);
}

TEST(StatedValue, DefaultConstructedInterfaceValueIsInStateOne) {
  const InterfaceStated<int> stated;
  EXPECT_EQ(static_cast<std::uint32_t>(stated.state()), 1u);
  EXPECT_FALSE(stated.ok());
}

TEST(StatedValue, StateGivesFailureWithDefaultValue) {
  const Stated<std::string> text = Platform::kLost;
  EXPECT_EQ(text.state(), Platform::kLost);
  EXPECT_FALSE(text.ok());
  EXPECT_EQ(text.value(), "");

  const Stated<float> number = Platform::kReadFailed;
  EXPECT_EQ(number.value(), 0.0f);
}

TEST(StatedValue, GoodStateAloneIsGood) {
  const Stated<int> done = Platform::kGood;
  EXPECT_TRUE(done.ok());
  EXPECT_EQ(done.value(), 0);
}

TEST(StatedValue, ValueGivesGoodState) {
  const std::string kept = "Tor1";
  const Stated<std::string> copied = kept;
  EXPECT_TRUE(copied.ok());
  EXPECT_EQ(copied.state(), Platform::kGood);
  EXPECT_EQ(copied.value(), "Tor1");
  EXPECT_EQ(kept, "Tor1");

  const Stated<int> negative = -3;
  EXPECT_TRUE(negative.ok());
  EXPECT_EQ(negative.value(), -3);
}

TEST(StatedValue, CarriesEnumerations) {
  const Stated<Mode> mode = Mode::kOn;
  EXPECT_TRUE(mode.ok());
  EXPECT_EQ(mode.value(), Mode::kOn);

  const Stated<Mode> failed = Platform::kLost;
  EXPECT_EQ(failed.state(), Platform::kLost);
  EXPECT_EQ(failed.value(), Mode::kOff);
}

TEST(StatedValue, StateTravelsUnchangedBetweenValueTypes) {
  const auto queryClock = [] { return Stated<unsigned>(Platform::kReadFailed); };
  const auto queryName = [&]() -> Stated<std::string> {
    const auto clock = queryClock();
    if (!clock.ok()) return clock.state();
    return std::string("never");
  };
  EXPECT_EQ(queryName().state(), Platform::kReadFailed);
}

TEST(StatedValue, MapWithAFailedEntryIsItselfGood) {
  std::map<std::string, Stated<unsigned>> clocks;
  clocks["core"] = 1750u;
  clocks["memory"] = Platform::kReadFailed;

  const Stated<std::map<std::string, Stated<unsigned>>> stated = std::move(clocks);
  EXPECT_TRUE(stated.ok());
  EXPECT_TRUE(stated.value().at("core").ok());
  EXPECT_EQ(stated.value().at("core").value(), 1750u);
  EXPECT_EQ(stated.value().at("memory").state(), Platform::kReadFailed);
}

TEST(StatedValue, NestsInVectors) {
  const Stated<std::vector<std::vector<Stated<float>>>> instances =
      std::vector<std::vector<Stated<float>>>{{1.5f, Platform::kLost}, {}};
  EXPECT_TRUE(instances.ok());
  EXPECT_EQ(instances.value()[0][0].value(), 1.5f);
  EXPECT_EQ(instances.value()[0][1].state(), Platform::kLost);
}

TEST(StatedValue, RecordOfStatedFieldsIsUnsupportedThroughout) {
  struct Record {
    Stated<unsigned> used;
    Stated<std::string> vendor;
  };
  const Stated<Record> record;
  EXPECT_EQ(record.state(), Platform::kUnsupported);
  EXPECT_EQ(record.value().used.state(), Platform::kUnsupported);
  EXPECT_EQ(record.value().vendor.state(), Platform::kUnsupported);
}

TEST(StatedValue, TakeMovesTheValueOut) {
  Stated<std::unique_ptr<int>> stated = std::make_unique<int>(7);
  const std::unique_ptr<int> taken = stated.take();
  ASSERT_NE(taken, nullptr);
  EXPECT_EQ(*taken, 7);
  EXPECT_EQ(stated.value(), nullptr);
  EXPECT_TRUE(stated.ok());
}

TEST(StatedValue, TakeOfAFailureGivesTheDefault) {
  Stated<std::string> stated = Platform::kLost;
  EXPECT_EQ(stated.take(), "");
}

TEST(StatedValue, ValueIsMovedNotCopied) {
  struct Counting {
    int copies = 0;
    Counting() = default;
    Counting(const Counting& other) : copies(other.copies + 1) {}
    Counting(Counting&& other) noexcept : copies(other.copies) {}
    Counting& operator=(const Counting&) = default;
    Counting& operator=(Counting&&) = default;
  };
  Stated<Counting> stated = Counting();
  Stated<Counting> moved = std::move(stated);
  EXPECT_EQ(moved.take().copies, 0);
}

TEST(StatedValue, ValueOfATemporaryOutlivesIt) {
  const auto queryNames = [] { return Stated<std::vector<std::string>>(std::vector<std::string>{"a", "b"}); };
  std::string joined;
  for (const auto& name : queryNames().value()) joined += name;
  EXPECT_EQ(joined, "ab");
}

TEST(StatedValue, CopiesAreIndependent) {
  const Stated<std::string> first = std::string("Fen2");
  Stated<std::string> second = first;
  second = Platform::kLost;
  EXPECT_TRUE(first.ok());
  EXPECT_EQ(first.value(), "Fen2");
  EXPECT_EQ(second.state(), Platform::kLost);
}

TEST(StatedValue, DestructorIsVirtual) {
  EXPECT_TRUE(std::has_virtual_destructor_v<Stated<int>>);
  EXPECT_EQ(sizeof(Stated<int>), sizeof(void*) + sizeof(Platform) + sizeof(int));
}

}  // namespace
