#include "rusk/logger.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "line_recorder.h"

namespace {

using rusk_test::LineRecorder;

TEST(Logger, OffersALineToEveryTarget) {
  LineRecorder first, second;
  rusk::Logger logger;
  logger.add(&first);
  logger.add(&second);
  logger.write("line", 4);
  const std::vector<std::pair<std::string, int>> expected = {{"line", 4}};
  EXPECT_EQ(first.lines, expected);
  EXPECT_EQ(second.lines, expected);
}

TEST(Logger, TargetAddedTwiceGetsALineOnce) {
  LineRecorder target;
  rusk::Logger logger;
  logger.add(&target);
  logger.add(&target);
  logger.write("line", 3);
  EXPECT_EQ(target.lines.size(), 1u);
}

TEST(Logger, RemovedTargetGetsNothing) {
  LineRecorder target, stranger;
  rusk::Logger logger;
  logger.add(&target);
  logger.add(&target);
  logger.remove(&target);
  logger.remove(&stranger);
  logger.write("line", 3);
  EXPECT_TRUE(target.lines.empty());
}

TEST(Logger, MissingTargetIsNotAdded) {
  rusk::Logger logger;
  logger.add(nullptr);
  EXPECT_NO_THROW(logger.write("line", 3));
}

TEST(Logger, TargetsFollowTheOrderOfTheSet) {
  struct Naming final : rusk::LogTarget {
    bool write(const std::string&, int) override {
      names->push_back(name);
      return false;
    }
    bool open() override { return true; }
    std::vector<int>* names = nullptr;
    int name = 0;
  };
  std::vector<int> names;
  Naming targets[3];
  rusk::Logger logger;
  for (int index : {2, 0, 1}) {
    targets[index].names = &names;
    targets[index].name = index;
    logger.add(&targets[index]);
  }
  logger.write("line", 3);
  EXPECT_EQ(names, (std::vector<int>{0, 1, 2}));
}

}  // namespace
