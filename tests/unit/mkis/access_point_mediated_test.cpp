#include <gtest/gtest.h>

#include "driver_script.h"
#include "linux/ap/access_point.h"
#include "unit/cml/mediated_host.h"

// The access point of a vGPU, and what the GPU that carries it is asked.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::DriverScript;
using tolk_test::get;
using tolk_test::put;

constexpr const char* kSbdf = "0000:01:00.0";
constexpr const char* kUuid = "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71";
constexpr const char* kMisc = "/dev/ovgpu.0";
constexpr const char* kRender = "/dev/dri/renderD128";
constexpr std::uint32_t kRenderPointer = 0xC028648A;

/// vGPU 7 of GPU 0.
class MediatedAccessPointTest : public tolk_test::MediatedHost {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(HostTree::SetUp());
    boundFunction(kSbdf, "0x0230", {0});
    folder(place(kSbdf) + "/drm/card0");
    folder(place(kSbdf) + "/drm/renderD128");
    carrier(kSbdf);
    type(kSbdf, "11");
    type(kSbdf, "12", "0\n");
    vgpu(kSbdf, kUuid, "7\n", "11");
    file("/sys/module/ovgpu/parameters/disable_vpu", "0\n");
    folder("/sys/bus/platform/drivers/ovgpu_vde");
    driver_.allowOpen(kMisc);
    driver_.allowRender(kRender, 2);
    driver_.answer(kRenderPointer, [this](std::uint8_t* r) {
      vgpuId_ = get<std::uint32_t>(r, 24);
      vgpuValid_ = get<std::uint32_t>(r, 28);
      put<std::uint32_t>(reinterpret_cast<std::uint8_t*>(get<std::uint64_t>(r, 8)), 0, 2);
      return 0;
    });
  }

  static DevCuid cuid(DevType type, std::uint64_t intId) {
    return {.type = type, .arch = DevArch::kFen1, .sbdf = 0x10000, .intId = intId};
  }
  void expectFailed(KelpReturn state) {
    EXPECT_EQ(point_.init().state(), state);
    EXPECT_EQ(point_.getDevDesc().state(), KelpReturn::kNotSupported);
    EXPECT_FALSE(driver_.isOpen(kMisc));
    EXPECT_FALSE(driver_.isOpen(kRender));
    EXPECT_EQ(point_.doExec(QueryPstateCmd()).state(), KelpReturn::kNotSupported);
    EXPECT_EQ(point_.doExec(QueryVpuSpecCmd()).state(), KelpReturn::kNotSupported);
  }

  DriverScript driver_{{{67, 0, 0}}};
  AccessPoint point_{cuid(DevType::kMediated, 7)};
  std::uint32_t vgpuId_ = 0;
  std::uint32_t vgpuValid_ = 0;
};

TEST_F(MediatedAccessPointTest, VgpuIsDescribedByItsUuidAndItsCarriersNodes) {
  ASSERT_TRUE(point_.init().ok());
  ASSERT_TRUE(point_.getDevDesc().ok());
  const DevDesc& desc = point_.getDevDesc().value();
  EXPECT_EQ(desc.uuid, kUuid);
  EXPECT_EQ(desc.sbdf, kSbdf);
  EXPECT_EQ(desc.parentMiscId, 0U);
  EXPECT_TRUE(desc.kmdFlagA.ok());
  EXPECT_FALSE(desc.kmdFlagA.value());
  EXPECT_TRUE(desc.kmdFlagB.ok());
  EXPECT_FALSE(desc.kmdFlagB.value());
  EXPECT_EQ(desc.miscPath.value(), kMisc);
  EXPECT_EQ(desc.renderPath.value(), kRender);
  EXPECT_EQ(desc.cardPath.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(desc.kmdValue32.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(desc.kmdValue64.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(desc.ionPath.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(desc.wideName.state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(
      log_.has(LogLevel::kInfo, ">> virtual device sbdf  0000:01:00.0  vgpu id  7  use misc name  ovgpu.0 "));
  EXPECT_TRUE(log_.has(LogLevel::kInfo,
                       ">> virtual device sbdf  0000:01:00.0  vgpu id  7  use render name  renderD128 "));
}

TEST_F(MediatedAccessPointTest, RequestsOfTheRenderContextNameTheVgpu) {
  ASSERT_TRUE(point_.init().ok());
  EXPECT_EQ(vgpuId_, 7U);
  EXPECT_EQ(vgpuValid_, 1U);
  EXPECT_EQ(point_.doExec(QueryVpuSpecCmd()).value().size(), 2U);
}

TEST_F(MediatedAccessPointTest, CommandsGoToTheCarriersNode) {
  driver_.on(67, [](std::uint8_t* payload) {
    put<std::uint32_t>(payload, 0, 5);
    return 0U;
  });
  ASSERT_TRUE(point_.init().ok());
  EXPECT_EQ(point_.doExec(QueryPstateCmd()).value(), 5U);
}

TEST_F(MediatedAccessPointTest, InitTwiceRunsOnceAndAFailedOneIsTriedAgain) {
  driver_.allowOpen(kMisc, EBUSY);
  expectFailed(KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Misc context init failed, state =  1 "));
  driver_.allowOpen(kMisc);
  ASSERT_TRUE(point_.init().ok());
  const std::size_t calls = driver_.calls.size();
  ASSERT_TRUE(point_.init().ok());
  EXPECT_EQ(driver_.calls.size(), calls);
  EXPECT_FALSE(log_.has("fw version")) << "the carrier's firmware is the carrier's business";
}

TEST_F(MediatedAccessPointTest, DriverTooNewIsConverted) {
  driver_.currentMajor = 2;
  driver_.currentMinor = 2;
  expectFailed(KelpReturn::kDriverTooNew);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Misc context init failed, state =  4 "));
}

TEST_F(MediatedAccessPointTest, CarrierWithoutMiscFolderFailsTheVgpu) {
  remove(place(kSbdf) + "/misc");
  expectFailed(KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError,
                       ">> search from  /sys/bus/pci/drivers/ovgpu/0000:01:00.0/misc failed. return value is "
                       " -1 miscName is "));
  folder(place(kSbdf) + "/misc/ovgpu.x");
  expectFailed(KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, "failed. return value is  0 miscName is "));
}

TEST_F(MediatedAccessPointTest, CarrierWithoutDrmFolderFailsTheVgpu) {
  remove(place(kSbdf) + "/drm");
  expectFailed(KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError,
                       ">> search from  /sys/bus/pci/drivers/ovgpu/0000:01:00.0/drm failed. return value is "
                       " -1 renderName is "));
}

TEST_F(MediatedAccessPointTest, CarrierWithoutRenderNodeHasAVgpuAllTheSame) {
  remove(place(kSbdf) + "/drm/renderD128");
  ASSERT_TRUE(point_.init().ok());
  EXPECT_EQ(point_.getDevDesc().value().renderPath.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(point_.doExec(QueryVpuSpecCmd()).state(), KelpReturn::kNotSupported);
  EXPECT_EQ(driver_.opens(kRender), 0U);
}

TEST_F(MediatedAccessPointTest, DisabledVpuDoesNotFailTheVgpu) {
  file("/sys/module/ovgpu/parameters/disable_vpu", "1\n");
  ASSERT_TRUE(point_.init().ok());
  EXPECT_EQ(point_.getDevDesc().value().renderPath.value(), kRender);
  EXPECT_EQ(driver_.opens(kRender), 0U);
  EXPECT_FALSE(log_.has("use render name"));
}

TEST_F(MediatedAccessPointTest, FailingRenderContextDoesNotFailTheVgpu) {
  driver_.allowOpen(kRender, EACCES);
  ASSERT_TRUE(point_.init().ok());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Render context init failed, state =  1 "));
  EXPECT_EQ(point_.doExec(QueryVpuSpecCmd()).state(), KelpReturn::kNotSupported);
}

TEST_F(MediatedAccessPointTest, VgpuThatIsGoneFails) {
  remove(std::string("/sys/bus/mdev/devices/") + kUuid);
  expectFailed(KelpReturn::kNotFound);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Get vgpu uuid failed, state =  7 "));
  remove("/sys/bus/mdev/devices");
  expectFailed(KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Get vgpu uuid failed, state =  1 "));
}

// Commands.

TEST_F(MediatedAccessPointTest, VgpuTellsItsTypeNumberAndProcess) {
  ASSERT_TRUE(point_.init().ok());
  const auto type = point_.doExec(QueryVirtTypeCmd());
  ASSERT_TRUE(type.ok());
  EXPECT_EQ(type.value().id, "11");
  EXPECT_EQ(type.value().name, "OVT B230-11Q");
  EXPECT_EQ(type.value().framebuffer.value(), 2048U);
  EXPECT_EQ(point_.doExec(QueryVgpuIdCmd()).value(), 7U);
  EXPECT_EQ(point_.doExec(QueryVmPidCmd()).value(), 4242U);
}

TEST_F(MediatedAccessPointTest, FilesThatVanishAfterwardsAreFailedReads) {
  ASSERT_TRUE(point_.init().ok());
  remove(place(kSbdf) + "/" + kUuid);
  EXPECT_EQ(point_.doExec(QueryVirtTypeCmd()).state(), KelpReturn::kReadFailed);
  EXPECT_EQ(point_.doExec(QueryVgpuIdCmd()).state(), KelpReturn::kReadFailed);
  EXPECT_EQ(point_.doExec(QueryVmPidCmd()).state(), KelpReturn::kReadFailed);
}

TEST_F(MediatedAccessPointTest, CarrierTellsItsTypesAndVgpus) {
  AccessPoint carrier(cuid(DevType::kPhysical, 0));
  const auto supported = carrier.doExec(QuerySupportedVirtTypesCmd());
  ASSERT_TRUE(supported.ok());
  ASSERT_EQ(supported.value().size(), 2U);
  EXPECT_EQ(supported.value()[0].id, "11");
  EXPECT_EQ(supported.value()[1].id, "12");
  const auto available = carrier.doExec(QueryAvailableVirtTypesCmd());
  ASSERT_TRUE(available.ok());
  ASSERT_EQ(available.value().size(), 1U) << "of type 12 none can be made";
  EXPECT_EQ(available.value()[0].id, "11");
  EXPECT_EQ(available.value()[0].maxInstances.value(), 8U);
  EXPECT_EQ(carrier.doExec(QueryAvailableVirtInstancesCmd{.typeId = "11"}).value(), 3U);
  EXPECT_EQ(carrier.doExec(QueryAvailableVirtInstancesCmd{.typeId = "12"}).value(), 0U);
  EXPECT_EQ(carrier.doExec(QueryActiveVirtUuidsCmd()).value(), std::vector<std::string>{kUuid});
}

TEST_F(MediatedAccessPointTest, CountOfATypeThatIsNotOfferedIsNotFound) {
  AccessPoint carrier(cuid(DevType::kPhysical, 0));
  for (const char* const id : {"13", "", "../ovgpu-11", "1"}) {
    EXPECT_EQ(carrier.doExec(QueryAvailableVirtInstancesCmd{.typeId = id}).state(), KelpReturn::kNotFound);
  }
}

TEST_F(MediatedAccessPointTest, TypeWithoutACountIsNotAvailable) {
  AccessPoint carrier(cuid(DevType::kPhysical, 0));
  file(typeFolder(kSbdf, "11") + "/available_instances", "some\n");
  const auto available = carrier.doExec(QueryAvailableVirtTypesCmd());
  EXPECT_TRUE(available.ok());
  EXPECT_TRUE(available.value().empty());
  EXPECT_EQ(carrier.doExec(QueryAvailableVirtInstancesCmd{.typeId = "11"}).state(), KelpReturn::kReadFailed);
}

TEST_F(MediatedAccessPointTest, HostWithoutTheFrameworkHasNoTypesAndNoVgpus) {
  remove("/sys/class/mdev_bus");
  AccessPoint carrier(cuid(DevType::kPhysical, 0));
  EXPECT_TRUE(carrier.doExec(QuerySupportedVirtTypesCmd()).ok());
  EXPECT_TRUE(carrier.doExec(QuerySupportedVirtTypesCmd()).value().empty());
  EXPECT_TRUE(carrier.doExec(QueryAvailableVirtTypesCmd()).value().empty());
  EXPECT_TRUE(carrier.doExec(QueryActiveVirtUuidsCmd()).ok());
  EXPECT_TRUE(carrier.doExec(QueryActiveVirtUuidsCmd()).value().empty());
}

TEST_F(MediatedAccessPointTest, CarrierWithoutItsTypesFolderIsAFailure) {
  remove(place(kSbdf) + "/mdev_supported_types");
  AccessPoint carrier(cuid(DevType::kPhysical, 0));
  EXPECT_EQ(carrier.doExec(QuerySupportedVirtTypesCmd()).state(), KelpReturn::kFailure);
  EXPECT_EQ(carrier.doExec(QueryAvailableVirtTypesCmd()).state(), KelpReturn::kFailure);
}

}  // namespace
}  // namespace kelp::linux_
