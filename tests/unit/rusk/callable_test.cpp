#include "rusk/callable.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <type_traits>

#include "rusk/type.h"

namespace {

int twice(int number) {
  return 2 * number;
}

TEST(Callable, HoldsAndCallsAFunction) {
  const rusk::Callable<std::function<int(int)>> byFunction = twice;
  const rusk::Callable<int(int)> bySignature = [](int number) { return number + 1; };
  EXPECT_TRUE(byFunction);
  EXPECT_EQ(byFunction(4), 8);
  EXPECT_EQ(bySignature(4), 5);
}

TEST(Callable, UnboundIsFalse) {
  const rusk::Callable<std::function<int(int)>> nothing;
  const rusk::Callable<std::function<int(int)>> empty = std::function<int(int)>();
  int (*const missing)(int) = nullptr;
  const rusk::Callable<int(int)> null = missing;
  EXPECT_FALSE(nothing);
  EXPECT_FALSE(empty);
  EXPECT_FALSE(null);
  EXPECT_THROW(nothing(1), std::bad_function_call);
}

TEST(Callable, ReferencesReachTheFunctionAsTheyAre) {
  const rusk::Callable<void(int&, std::unique_ptr<int>)> add = [](int& sum, std::unique_ptr<int> number) {
    sum += *number;
  };
  int sum = 1;
  add(sum, std::make_unique<int>(2));
  EXPECT_EQ(sum, 3);

  const rusk::Callable<int&(int&)> same = [](int& number) -> int& { return number; };
  EXPECT_EQ(&same(sum), &sum);
}

TEST(Callable, CopyCallsTheSameFunction) {
  rusk::Callable<std::function<int(int)>> first = twice;
  rusk::Callable<std::function<int(int)>> copy = first;
  first = {};
  EXPECT_FALSE(first);
  EXPECT_EQ(copy(3), 6);
}

TEST(Callable, IsAnEntryOfATable) {
  using Operation = rusk::Callable<std::function<std::string(int)>>;
  const std::map<unsigned, Operation> versions = {
      {1, [](int id) { return "v1:" + std::to_string(id); }},
      {2, [](int id) { return "v2:" + std::to_string(id); }},
  };
  EXPECT_EQ(versions.at(2)(7), "v2:7");
}

TEST(Callable, RefusesWhatItCannotCall) {
  using Operation = rusk::Callable<std::function<int(int)>>;
  EXPECT_FALSE((std::is_constructible_v<Operation, std::string>));
  EXPECT_FALSE((std::is_invocable_v<Operation, std::string>));
  EXPECT_FALSE((std::is_convertible_v<Operation, bool>));
}

TEST(Type, EntryIsReachedByADynamicCast) {
  struct First : rusk::Type {
    int value = 1;
  };
  struct Second : rusk::Type {};
  const std::unique_ptr<rusk::Type> entry = std::make_unique<First>();
  ASSERT_NE(dynamic_cast<First*>(entry.get()), nullptr);
  EXPECT_EQ(dynamic_cast<First*>(entry.get())->value, 1);
  EXPECT_EQ(dynamic_cast<Second*>(entry.get()), nullptr);
}

}  // namespace
