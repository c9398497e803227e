#include "device.h"
#include "device_object.h"
#include "handles.h"
#include "in_process/lumo_fixture.h"
#include "mpc_instance_device.h"

// An MPC instance that has outlived its parent.

namespace {

class LoneInstanceTest : public tolk_test::LumoFixture {
 protected:
  LoneInstanceTest() {
    platform_.desc = describe("uuid", "0000:41:00.0");
    const auto object = std::make_shared<kelp::MpcInstanceDevice>(
        tolk_test::makeCuid(kelp::DevType::kMpcInstance, kelp::DevArch::kFen2),
        std::make_shared<kelp::ModelManager>(), kelp::FeatureRow{});
    EXPECT_TRUE(object->init().ok());
    cell_.object = device_ = lumo::Device::create("uuid", object, nullptr, nullptr);
  }

  std::shared_ptr<lumo::Device> device_;
  LumoDevice cell_;
};

TEST_F(LoneInstanceTest, HasNoParent) {
  LumoDevice* parent = &cell_;
  EXPECT_EQ(lumoDeviceGetMpcParentDevice(&cell_, &parent), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(parent, &cell_);
}

TEST_F(LoneInstanceTest, HasNoIndex) {
  unsigned index = 99;
  EXPECT_EQ(lumoDeviceGetMpcInstanceIndex(&cell_, &index), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(index, 99U);
  EXPECT_TRUE(platform_.asked.empty() || platform_.asked.back() != "QueryMpcInstList");
}

TEST_F(LoneInstanceTest, HasNoPlaceAmongTheDevices) {
  unsigned index = 99;
  EXPECT_EQ(lumoDeviceGetIndex(&cell_, &index), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(index, ~0U);
}

TEST_F(LoneInstanceTest, WithoutTheFeatureHasNoProfile) {
  LumoMpcProfile profile;
  EXPECT_EQ(lumoDeviceGetMpcProfileInfo(&cell_, &profile), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_TRUE(log_.has(rusk::LogLevel::kError, ":getMpcInstanceProfileInfo >> Feat not supported ! "));
}

}  // namespace
