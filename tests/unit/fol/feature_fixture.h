#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "support/fake_platform.h"
#include "support/log_capture.h"

namespace tolk_test {

/// A platform, its log, and a core model of any kind of device, which must live as long as the features
/// that were made of it.
class FeatureFixture : public testing::Test {
 protected:
  const std::shared_ptr<kelp::CoreModel>& modelOf(kelp::DevType type, kelp::DevArch arch,
                                                  std::uint64_t intId = 0) {
    model_ = std::make_shared<kelp::CoreModel>(makeCuid(type, arch, intId));
    EXPECT_TRUE(model_->init().ok());
    platform_.asked.clear();
    return model_;
  }

  FakePlatform platform_;
  LogCapture log_;

 private:
  std::shared_ptr<kelp::CoreModel> model_;
};

}  // namespace tolk_test
