#include "in_process/lumo_fixture.h"

// Division of several GPUs in one call.

namespace {

using kelp::DevArch;
using kelp::DevType;
using kelp::KelpReturn;
using tolk_test::LumoFixture;

/// A driver on whose machine a switch of the mode makes an MPC parent of a GPU.
class MpcBatchTest : public LumoFixture {
 protected:
  MpcBatchTest() {
    platform_.answer<kelp::QueryMpcConfListCmd>(std::vector<kelp::MpcConfiguration>{
        {.id = 1, .name = "2x1c", .profileIds = {3, 3}}, {.id = 2, .name = "1x2c", .profileIds = {5}}});
    platform_.answerBy<kelp::SetMpcSwitchCmd>(
        [this](const kelp::DevCuid& cuid, const kelp::SetMpcSwitchCmd& cmd) {
          const bool on = std::get<0>(cmd.params).mode == kelp::MpcMode::kOn;
          steps_.push_back((on ? "on " : "off ") + std::to_string(cuid.intId));
          if (steps_.back() == failing_) {
            return kelp::Stated<int>(KelpReturn::kBusy);
          }
          become(cuid.intId, on ? DevType::kMpcParent : DevType::kPhysical);
          return kelp::Stated<int>(0);
        });
    platform_.answerBy<kelp::SetMpcConfCmd>(
        [this](const kelp::DevCuid& cuid, const kelp::SetMpcConfCmd& cmd) {
          steps_.push_back("configure " + std::to_string(cuid.intId) + " " +
                           std::to_string(std::get<0>(cmd.params).configId));
          return steps_.back() == failing_ ? kelp::Stated<int>(KelpReturn::kFirmwareFailed)
                                           : kelp::Stated<int>(0);
        });
  }

  void become(std::uint64_t intId, DevType type) {
    kelp::DevCuidSet cuids;
    for (kelp::DevCuid cuid : platform_.pcieCuids.value()) {
      if (cuid.intId == intId) {
        cuid.type = type;
      }
      cuids.insert(cuid);
    }
    platform_.pcieCuids = cuids;
  }

  void addCapable(unsigned intId, DevType type = DevType::kPhysical, bool sablink = false) {
    addGpu(intId, type, DevArch::kFen2);
    auto desc = describe("uuid-" + std::to_string(intId), addressOf(0x40 + intId));
    desc.kmdFlagA = true;
    desc.kmdFlagB = sablink;
    platform_.descOf[intId] = desc;
  }

  LumoReturn divide(std::vector<unsigned> ids) {
    std::vector<LumoDevice*> devices;
    for (unsigned i = 0; i < ids.size(); ++i) {
      devices.push_back(device(i));
    }
    return lumoLibrarySetMpcConfigurationInBatch(library_, static_cast<unsigned>(ids.size()), devices.data(),
                                                 ids.data());
  }

  using Steps = std::vector<std::string>;
  Steps steps_;
  std::string failing_;  ///< the step that the driver refuses
};

TEST_F(MpcBatchTest, EachGpuIsSwitchedAndConfiguredInOrderOfUuid) {
  addCapable(0);
  addCapable(1);
  mustStart();
  EXPECT_EQ(divide({1, 2}), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(steps_, (Steps{"on 0", "configure 0 1", "on 1", "configure 1 2"}));
}

TEST_F(MpcBatchTest, TheLibraryForgetsItsDevicesAfterwards) {
  addCapable(0);
  mustStart();
  EXPECT_EQ(divide({1}), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(count(), 0U);
  LumoLibrary* again = nullptr;
  ASSERT_EQ(lumoLibraryInit(&again), LUMO_RETURN_SUCCESS) << "enumerates anew";
  EXPECT_EQ(count(), 1U);
  unsigned mode = 99;
  EXPECT_EQ(lumoDeviceGetMpcMode(device(0), &mode), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(mode, 1U);
  EXPECT_EQ(lumoLibraryShutDown(again), LUMO_RETURN_SUCCESS);
}

TEST_F(MpcBatchTest, AParentIsOnlyConfigured) {
  addCapable(0, DevType::kMpcParent);
  mustStart();
  EXPECT_EQ(divide({2}), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(steps_, (Steps{"configure 0 2"}));
}

TEST_F(MpcBatchTest, AGpuWithLinksIsNeverSwitched) {
  addCapable(0, DevType::kPhysical, true);
  mustStart();
  EXPECT_EQ(divide({1}), LUMO_RETURN_NOT_SUPPORTED) << "and cannot be configured as it is";
  EXPECT_EQ(steps_, (Steps{"off 0"}));
}

TEST_F(MpcBatchTest, GpusOfOneUuidAreToldApart) {
  addCapable(0);
  addCapable(1);
  kelp::DevDesc twin = platform_.descOf[1].value();
  twin.uuid = "uuid-0";
  platform_.descOf[1] = twin;
  mustStart();
  EXPECT_EQ(divide({1, 2}), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(steps_, (Steps{"on 1", "configure 1 2", "on 0", "configure 0 1"}))
      << "the second one goes by its address, which comes first";
}

TEST_F(MpcBatchTest, OneThatCannotBeDividedStopsTheBatchBeforeItBegins) {
  addCapable(0);
  addGpu(1, DevType::kPhysical, DevArch::kFen2);
  mustStart();
  LumoDevice* const first = device(0);
  EXPECT_EQ(divide({1, 1}), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_TRUE(steps_.empty());
  unsigned index = 99;
  EXPECT_EQ(lumoDeviceGetIndex(first, &index), LUMO_RETURN_SUCCESS) << "handles are as good as before";
}

TEST_F(MpcBatchTest, ADeviceThatIsMissingStopsItToo) {
  addCapable(0);
  mustStart();
  LumoDevice* devices[2] = {device(0), nullptr};
  unsigned ids[2] = {1, 1};
  EXPECT_EQ(lumoLibrarySetMpcConfigurationInBatch(library_, 2, devices, ids), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_TRUE(steps_.empty());
  EXPECT_EQ(lumoLibrarySetMpcConfigurationInBatch(library_, 0, devices, ids), LUMO_RETURN_SUCCESS);
}

TEST_F(MpcBatchTest, ARefusedSwitchTakesBackWhatWasTouched) {
  addCapable(0);
  addCapable(1);
  addCapable(2);
  mustStart();
  failing_ = "on 1";
  EXPECT_EQ(divide({1, 2, 1}), LUMO_RETURN_BUSY);
  EXPECT_EQ(steps_, (Steps{"on 0", "configure 0 1", "on 1", "off 0", "off 1"}));
}

TEST_F(MpcBatchTest, ARefusedConfigurationTakesBackWhatWasTouched) {
  addCapable(0);
  addCapable(1);
  mustStart();
  failing_ = "configure 1 2";
  EXPECT_EQ(divide({1, 2}), LUMO_RETURN_DRIVER_ACCESS_FAILED);
  EXPECT_EQ(steps_, (Steps{"on 0", "configure 0 1", "on 1", "configure 1 2", "off 0", "off 1"}));
}

TEST_F(MpcBatchTest, AnUnsupportedConfigurationTakesBackTheSwitch) {
  addCapable(0);
  mustStart();
  EXPECT_EQ(divide({9}), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(steps_, (Steps{"on 0", "off 0"}));
}

TEST_F(MpcBatchTest, AGpuThatIsGoneAfterItsSwitchEndsTheBatch) {
  addCapable(0);
  mustStart();
  platform_.answerBy<kelp::SetMpcSwitchCmd>([this](const kelp::DevCuid& cuid, const kelp::SetMpcSwitchCmd&) {
    steps_.push_back("gone " + std::to_string(cuid.intId));
    platform_.pcieCuids = kelp::DevCuidSet{};
    return kelp::Stated<int>(0);
  });
  EXPECT_EQ(divide({1}), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(steps_, (Steps{"gone 0"})) << "there is nothing to take back";
}

TEST_F(MpcBatchTest, AMachineThatCannotBeEnumeratedAnyMoreEndsTheBatch) {
  addCapable(0);
  mustStart();
  platform_.answerBy<kelp::SetMpcSwitchCmd>([this](const kelp::DevCuid&, const kelp::SetMpcSwitchCmd&) {
    platform_.pcieCuids = KelpReturn::kDriverNotLoaded;
    return kelp::Stated<int>(0);
  });
  EXPECT_EQ(divide({1}), LUMO_RETURN_DRIVER_NOT_LOADED);
}

}  // namespace
