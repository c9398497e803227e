#include "host_environment.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace tolk {
namespace {

class TargetEnv : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = testing::TempDir() + "tolk-env.XXXXXX";
    ASSERT_NE(::mkdtemp(folder_.data()), nullptr);
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  bool holds(const std::string& text) const {
    const std::string path = folder_ + "/ovparams";
    std::ofstream(path) << text;
    return isTargetEnv(path.c_str());
  }

  std::string folder_;
};

TEST_F(TargetEnv, IsToldByAWholeLine) {
  EXPECT_TRUE(holds("envType: 0"));
  EXPECT_TRUE(holds("first\nenvType: 0\nlast\n"));
  EXPECT_FALSE(holds(""));
  EXPECT_FALSE(holds("envType: 1\n"));
  EXPECT_FALSE(holds(" envType: 0\n"));
  EXPECT_FALSE(holds("envType: 0 \n"));
}

TEST_F(TargetEnv, MissingFileHasNoLine) {
  EXPECT_FALSE(isTargetEnv((folder_ + "/ovparams").c_str()));
}

TEST_F(TargetEnv, FileWithoutAnEndIsGivenUp) {
  EXPECT_FALSE(isTargetEnv("/dev/zero"));
}

}  // namespace
}  // namespace tolk
