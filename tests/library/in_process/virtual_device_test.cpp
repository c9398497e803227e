#include "handles.h"
#include "in_process/lumo_fixture.h"
#include "on_hosts/in_threads.h"

// vGPUs, and the GPUs that carry them.

namespace {

using kelp::DevArch;
using kelp::DevType;
using kelp::KelpReturn;
using rusk::LogLevel;
using tolk_test::LumoFixture;

kelp::MdevVirtType virtType(const std::string& id) {
  kelp::MdevVirtType type;
  type.id = id;
  type.className = "vfio-pci";
  type.name = "OVT B230-2Q";
  type.maxWidth = 4096UL;
  type.maxHeight = 2160UL;
  type.maxEncodeNum = 2UL;
  type.maxDecodeNum = 4UL;
  type.framebuffer = 2048UL;
  type.maxInstances = 8UL;
  type.maxVirtualDisplay = 3UL;
  return type;
}

/// A GPU, "ovgpu.0", that carries the vGPUs 7 and 9.
class VirtualDeviceTest : public LumoFixture {
 protected:
  VirtualDeviceTest() {
    using Types = std::vector<kelp::MdevVirtType>;
    platform_.answer<kelp::QuerySupportedVirtTypesCmd>(Types{virtType("11"), virtType("12")});
    platform_.answer<kelp::QueryAvailableVirtTypesCmd>(Types{virtType("12")});
    platform_.answer<kelp::QueryAvailableVirtInstancesCmd>(6U);
    platform_.answer<kelp::QueryActiveVirtUuidsCmd>(std::vector<std::string>{"vgpu-7", "vgpu-9"});
    platform_.answer<kelp::QueryVirtTypeCmd>(virtType("11"));
    platform_.answer<kelp::QueryVgpuIdCmd>(7U);
    platform_.answer<kelp::QueryVmPidCmd>(4242U);
    kelp::DevCuidSet cuids;
    for (const unsigned vgpu : {7U, 9U}) {
      cuids.insert(cuidOf(DevType::kMediated, DevArch::kFen2, 0x40, vgpu));
      platform_.descOf[vgpu] = describe("vgpu-" + std::to_string(vgpu), addressOf(0x40));
    }
    platform_.virtCuids = cuids;
  }

  void startHost() { startWith(DevType::kPhysical, DevArch::kFen2); }
  LumoDevice* vgpu(const char* uuid = "vgpu-7") {
    LumoDevice* found = nullptr;
    EXPECT_EQ(lumoDeviceInitVirtDevice(handle_, uuid, &found), LUMO_RETURN_SUCCESS);
    return found;
  }

  unsigned number_ = 99;
  unsigned other_ = 99;
  unsigned long long wide_ = 99;
  char text_[64] = "before";
};

TEST_F(VirtualDeviceTest, AGpuThatOffersTypesCanCarryVgpus) {
  startHost();
  EXPECT_EQ(lumoDeviceGetProperty(handle_, &wide_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(wide_, static_cast<unsigned>(LUMO_PROPERTY_VIRTUALIZATION_CAPABLE));
}

TEST_F(VirtualDeviceTest, AGpuWithoutTypesCannot) {
  for (const auto& reply : {kelp::Stated<std::vector<kelp::MdevVirtType>>(std::vector<kelp::MdevVirtType>{}),
                            kelp::Stated<std::vector<kelp::MdevVirtType>>(KelpReturn::kReadFailed)}) {
    platform_.answer<kelp::QuerySupportedVirtTypesCmd>(reply);
    startHost();
    EXPECT_EQ(lumoDeviceGetProperty(handle_, &wide_), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(wide_, 0U);
    stop();
  }
}

TEST_F(VirtualDeviceTest, TypesAreListed) {
  startHost();
  LumoVirtType types[2] = {};
  EXPECT_EQ(lumoDeviceCountSupportedVirtTypes(handle_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 2U);
  EXPECT_EQ(lumoDeviceGetSupportedVirtTypes(handle_, types, 1), LUMO_RETURN_INSUFFICIENT_SIZE);
  ASSERT_EQ(lumoDeviceGetSupportedVirtTypes(handle_, types, 2), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(types[1].id, "12");
  EXPECT_STREQ(types[1].deviceApi, "vfio-pci");
  EXPECT_STREQ(types[1].name, "OVT B230-2Q");
  EXPECT_EQ(types[1].maxWidth, 4096U);
  EXPECT_EQ(types[1].maxHeight, 2160U);
  EXPECT_EQ(types[1].maxEncode, 2U);
  EXPECT_EQ(types[1].maxDecode, 4U);
  EXPECT_EQ(types[1].framebuffer, 2048U);
  EXPECT_EQ(types[1].maxInstances, 8U);
  EXPECT_EQ(types[1].maxVirtualDisplay, 3U);
  EXPECT_EQ(lumoDeviceCountAvailableVirtTypes(handle_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 1U);
  ASSERT_EQ(lumoDeviceGetAvailableVirtTypes(handle_, types, 2), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(types[0].id, "12");
  EXPECT_STREQ(types[1].id, "");
}

TEST_F(VirtualDeviceTest, ATypeWithAnUnknownNumberFailsItsList) {
  kelp::MdevVirtType type = virtType("11");
  type.maxDecodeNum = KelpReturn::kNotSupported;
  platform_.answer<kelp::QuerySupportedVirtTypesCmd>(std::vector<kelp::MdevVirtType>{type});
  startHost();
  LumoVirtType record{};
  EXPECT_EQ(lumoDeviceGetSupportedVirtTypes(handle_, &record, 1), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_STREQ(record.id, "");
}

TEST_F(VirtualDeviceTest, LongTextsOfATypeAreCutToTheirFields) {
  kelp::MdevVirtType type = virtType(std::string(100, '1'));
  type.className = std::string(100, 'c');
  type.name = std::string(100, 'n');
  platform_.answer<kelp::QuerySupportedVirtTypesCmd>(std::vector<kelp::MdevVirtType>{type});
  startHost();
  LumoVirtType record{};
  ASSERT_EQ(lumoDeviceGetSupportedVirtTypes(handle_, &record, 1), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(std::string(record.id), std::string(15, '1'));
  EXPECT_EQ(std::string(record.deviceApi), std::string(31, 'c'));
  EXPECT_EQ(std::string(record.name), std::string(31, 'n'));
  EXPECT_EQ(record.maxWidth, 4096U);
}

TEST_F(VirtualDeviceTest, VgpusOfATypeAreCounted) {
  startHost();
  EXPECT_EQ(lumoDeviceCountMaxVirtDevices(handle_, "11", &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 8U);
  EXPECT_EQ(lumoDeviceCountAvailableVirtDevices(handle_, "11", &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 6U);
  EXPECT_EQ(lumoDeviceCountMaxVirtDevices(handle_, "99", &number_), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(lumoDeviceCountActiveVirtDevices(handle_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 2U);
}

TEST_F(VirtualDeviceTest, UuidsAreTextsBehindOneAnother) {
  startHost();
  char list[3][8];
  std::memset(list, '#', sizeof list);
  EXPECT_EQ(lumoDeviceGetActiveVirtDeviceUuids(handle_, list[0], 8, 3), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(list[0], "vgpu-7");
  EXPECT_STREQ(list[1], "vgpu-9");
  EXPECT_STREQ(list[2], "");
}

TEST_F(VirtualDeviceTest, ABufferThatIsTooSmallForUuidsIsCleared) {
  startHost();
  EXPECT_EQ(lumoDeviceGetActiveVirtDeviceUuids(handle_, text_, 0, 1), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(lumoDeviceGetActiveVirtDeviceUuids(handle_, text_, 1, 0), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_STREQ(text_, "before");
  EXPECT_EQ(lumoDeviceGetActiveVirtDeviceUuids(handle_, text_, 7, 1), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_STREQ(text_, "") << "too many";
  std::strcpy(text_, "before");
  EXPECT_EQ(lumoDeviceGetActiveVirtDeviceUuids(handle_, text_, 6, 4), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_STREQ(text_, "") << "too wide";
}

TEST_F(VirtualDeviceTest, AVgpuAskedForTwiceIsOneHandle) {
  startHost();
  LumoDevice* const first = vgpu();
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(vgpu(), first);
  EXPECT_NE(vgpu("vgpu-9"), first);
  EXPECT_EQ(count(), 1U) << "a vGPU is in no list of devices";
}

TEST_F(VirtualDeviceTest, AVgpuThatIsNotThereIsNotFound) {
  startHost();
  LumoDevice* found = nullptr;
  for (const char* uuid : {"", "vgpu-8", "uuid-0"}) {
    EXPECT_EQ(lumoDeviceInitVirtDevice(handle_, uuid, &found), LUMO_RETURN_NOT_FOUND) << uuid;
  }
  platform_.virtCuids = KelpReturn::kReadFailed;
  EXPECT_EQ(lumoDeviceInitVirtDevice(handle_, "vgpu-7", &found), LUMO_RETURN_DRIVER_ACCESS_FAILED);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Mv error, state =  8 "));
  EXPECT_EQ(found, nullptr);
}

TEST_F(VirtualDeviceTest, ABadVgpuDoesNotHideAnother) {
  platform_.descOf[7] = KelpReturn::kFailure;
  startHost();
  EXPECT_EQ(uuidOf(vgpu("vgpu-9")), "vgpu-9");
  LumoDevice* found = nullptr;
  EXPECT_EQ(lumoDeviceInitVirtDevice(handle_, "vgpu-7", &found), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Mv error, state =  1 "));
}

TEST_F(VirtualDeviceTest, VgpusThatAreAskedForOneByOneAreListedOnce) {
  startHost();
  EXPECT_EQ(uuidOf(vgpu("vgpu-9")), "vgpu-9");
  platform_.virtCuids = KelpReturn::kReadFailed;
  EXPECT_EQ(uuidOf(vgpu("vgpu-7")), "vgpu-7");
}

TEST_F(VirtualDeviceTest, AVgpuThatIsMadeAfterTheOthersWereListedIsFound) {
  startHost();
  EXPECT_EQ(uuidOf(vgpu("vgpu-9")), "vgpu-9");
  platform_.descOf[11] = describe("vgpu-11", addressOf(0x40));
  platform_.virtCuids = kelp::DevCuidSet{cuidOf(DevType::kMediated, DevArch::kFen2, 0x40, 11)};
  EXPECT_EQ(uuidOf(vgpu("vgpu-11")), "vgpu-11");
}

TEST_F(VirtualDeviceTest, NoThreadTakesAVgpuFromTheSearchOfAnother) {
  kelp::DevCuidSet cuids;
  for (unsigned vgpu = 20; vgpu < 20 + tolk_test::kThreads; ++vgpu) {
    cuids.insert(cuidOf(DevType::kMediated, DevArch::kFen2, 0x40, vgpu));
    platform_.descOf[vgpu] = describe("vgpu-" + std::to_string(vgpu), addressOf(0x40));
  }
  platform_.virtCuids = cuids;
  for (int round = 0; round < 50 && !HasFailure(); ++round) {
    startHost();
    tolk_test::inThreads([&](unsigned thread) {
      LumoDevice* found = nullptr;
      EXPECT_EQ(lumoDeviceInitVirtDevice(handle_, ("vgpu-" + std::to_string(20 + thread)).c_str(), &found),
                LUMO_RETURN_SUCCESS);
    });
    stop();
  }
}

TEST_F(VirtualDeviceTest, AVgpuCannotCarryAnother) {
  startHost();
  LumoDevice* found = nullptr;
  EXPECT_EQ(lumoDeviceInitVirtDevice(vgpu(), "vgpu-9", &found), LUMO_RETURN_NOT_SUPPORTED);
}

TEST_F(VirtualDeviceTest, AVgpuKnowsItselfAndItsMachine) {
  platform_.answer<kelp::QueryVgpuOverCommitCmd>(kelp::VgpuOverCommitInfo{.enabled = 1, .systemMemory = 512});
  startHost();
  LumoDevice* const own = vgpu();
  EXPECT_EQ(uuidOf(own), "vgpu-7");
  EXPECT_EQ(lumoDeviceGetVgpuId(own, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 7U);
  EXPECT_EQ(lumoDeviceGetVmPid(own, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 4242U);
  LumoVirtType type{};
  EXPECT_EQ(lumoDeviceGetVirtType(own, &type), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(type.id, "11");
  LumoVgpuOverCommitInfo info{};
  EXPECT_EQ(lumoDeviceGetVgpuOverCommitInfo(own, &info), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(info.enabled, 1U);
  EXPECT_EQ(info.systemMemory, 512U);
  EXPECT_EQ(lumoDeviceGetType(own, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, static_cast<unsigned>(LUMO_DEVICE_MEDIATED));
  EXPECT_EQ(lumoDeviceGetProperty(own, &wide_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ((wide_ & LUMO_PROPERTY_ROLE_MASK) >> LUMO_PROPERTY_ROLE_SHIFT, 1U);
  EXPECT_EQ(lumoDeviceGetSupportedEventTypes(own, &wide_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(wide_, 0U);
}

TEST_F(VirtualDeviceTest, WhatAGuestSeesIsAskedByTheVgpusNumber) {
  std::vector<unsigned> asked;
  platform_.answerBy<kelp::QueryVgpuUtilCmd>([&](const kelp::DevCuid&, const kelp::QueryVgpuUtilCmd& cmd) {
    asked.push_back(std::get<0>(cmd.params));
    return kelp::Stated<unsigned>(12);
  });
  platform_.answerBy<kelp::QueryVgpuMemInfoCmd>(
      [&](const kelp::DevCuid&, const kelp::QueryVgpuMemInfoCmd& cmd) {
        asked.push_back(std::get<0>(cmd.params));
        return kelp::Stated<kelp::GuestMemoryUsage>({.total = 400UL, .used = 101UL});
      });
  startHost();
  LumoDevice* const own = vgpu();
  EXPECT_EQ(lumoGpuGetGuestUtilization(gpu(own), &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 12U);
  EXPECT_EQ(lumoMemoryGetGuestTotal(memory(own), &wide_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(wide_, 400U);
  EXPECT_EQ(lumoMemoryGetGuestUsed(memory(own), &wide_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(wide_, 101U);
  EXPECT_EQ(lumoMemoryGetGuestUtilization(memory(own), &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 25U);
  EXPECT_EQ(asked, (std::vector<unsigned>{7, 7, 7, 7})) << "one question each";
}

TEST_F(VirtualDeviceTest, AGuestWithoutMemoryHasNoUtilization) {
  platform_.answer<kelp::QueryVgpuMemInfoCmd>(kelp::GuestMemoryUsage{.total = 0UL, .used = 0UL});
  startHost();
  EXPECT_EQ(lumoMemoryGetGuestUtilization(memory(vgpu()), &number_), LUMO_RETURN_UNKNOWN_ERROR);
  platform_.answer<kelp::QueryVgpuMemInfoCmd>(kelp::GuestMemoryUsage{});
  EXPECT_EQ(lumoMemoryGetGuestTotal(memory(vgpu()), &wide_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(wide_, 99U);
}

TEST_F(VirtualDeviceTest, SessionsOfAVgpuAreItsOwn) {
  kelp::VpuCoreSpecData core;
  core.maxInstances = 1;
  platform_.answer<kelp::QueryVpuSpecCmd>(std::vector<kelp::VpuCoreSpecData>{core});
  std::vector<std::uint64_t> asked;
  platform_.answerBy<kelp::QueryVpuSsStatesCmd>(
      [&](const kelp::DevCuid& cuid, const kelp::QueryVpuSsStatesCmd&) {
        asked.push_back(cuid.intId);
        using States = std::vector<std::vector<kelp::Stated<kelp::VpuSsInstState>>>;
        return kelp::Stated<States>(States{{kelp::VpuSsInstState{true}}});
      });
  platform_.answer<kelp::QueryVpuSsMetricsCmd>(kelp::VpuSsMetrics{.pid = 5});
  startHost();
  LumoVpu* vpu = nullptr;
  ASSERT_EQ(lumoDeviceInitVpu(vgpu(), &vpu), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoVpuGetEncoderSessionStates(vpu, &number_, 1), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 1U);
  EXPECT_EQ(asked, (std::vector<std::uint64_t>{7}));
  LumoVpuSessionMetrics metrics{};
  EXPECT_EQ(lumoVpuGetEncoderSessionMetrics(vpu, 0, &metrics), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(metrics.pid, 5U);
  LumoVpuUtilization utilization{};
  EXPECT_EQ(lumoVpuGetUtilization(vpu, &utilization), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoVpuGetClock(vpu, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoVpuGetMaxClock(vpu, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoVpuGetCodecCapacity(vpu, &number_, &other_), LUMO_RETURN_NOT_SUPPORTED);
}

TEST_F(VirtualDeviceTest, WhatOnlyAWholeGpuHasIsRefused) {
  startHost();
  LumoDevice* const own = vgpu();
  LumoPciInfo pci{};
  LumoPciSlotInfo slot{};
  int degrees = 99;
  const LumoReturn codes[] = {
      lumoDeviceGetName(own, text_, sizeof text_),
      lumoDeviceGetIndex(own, &number_),
      lumoDeviceGetBrand(own, &number_),
      lumoDeviceGetSerialNumber(own, text_, sizeof text_),
      lumoDeviceGetOvBiosVersion(own, text_, sizeof text_),
      lumoDeviceGetRtosVersion(own, text_, sizeof text_),
      lumoDeviceGetMiscPath(own, text_, sizeof text_),
      lumoDeviceGetUsableCores(own, &wide_),
      lumoDeviceGetComputeCapability(own, &number_, &other_),
      lumoDeviceGetPciInfo(own, &pci),
      lumoDeviceGetPcieSlotInfo(own, &slot),
      lumoDeviceCountFan(own, &number_),
      lumoDeviceGetPowerUsage(own, &number_),
      lumoDeviceGetPowerLimit(own, &number_),
      lumoDeviceGetPowerLimitConstraints(own, &number_, &other_),
      lumoDeviceSetPowerLimitWithPersistentOption(own, 250000, 0),
      lumoDeviceGetPerformanceState(own, &number_),
      lumoDeviceCountDisplayInterface(own, &number_),
      lumoDeviceReset(own),
      lumoDeviceResetEventMessages(own),
      lumoDeviceGetP2PStatus(own, handle_, 0, &number_),
      lumoDeviceGetP2PStatus(handle_, own, 0, &number_),
      lumoDeviceGetP2PStatus(own, own, 0, &number_),
      lumoDeviceGetCpuAffinityStringWithinNode(own, text_, sizeof text_),
      lumoDeviceCountProcessMemoryUsages(own, &number_),
      lumoDeviceCountProcessGpuUtilizations(own, &number_),
      lumoDeviceGetMpcMode(own, &number_),
      lumoDeviceSetMpcMode(own, 1),
      lumoGpuGetUtilization(gpu(own), &number_),
      lumoGpuGetClock(gpu(own), &number_),
      lumoGpuGetMaxTemperature(gpu(own), &degrees),
      lumoGpuReset(gpu(own)),
      lumoGpuResetHwErrorCounts(gpu(own)),
      lumoGpuCountCoreMpx(gpu(own), 1, &number_),
      lumoMemoryGetTotal(memory(own), &wide_),
      lumoMemoryGetUtilization(memory(own), &number_),
      lumoMemorySetEccMode(memory(own), 1),
  };
  for (std::size_t i = 0; i < std::size(codes); ++i) {
    EXPECT_EQ(codes[i], LUMO_RETURN_NOT_SUPPORTED) << "row " << i;
  }
  EXPECT_EQ(number_, 99U);
  EXPECT_STREQ(text_, "before");
  EXPECT_TRUE(platform_.othersTouched.empty());
  EXPECT_FALSE(log_.has("not support reset hw error counts"));
}

TEST_F(VirtualDeviceTest, AVgpuSitsWhereItsGpuSits) {
  startHost();
  platform_.topologyLevel = kelp::TopologyLevel::kSame;
  int level = 99;
  EXPECT_EQ(lumoDeviceGetTopologyLevel(vgpu(), handle_, &level), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(level, -1);
}

TEST_F(VirtualDeviceTest, TheReleaseOfOldFreesNothing) {
  startHost();
  LumoDevice* const own = vgpu();
  EXPECT_EQ(lumoDeviceFreeVirtDevice(own), LUMO_RETURN_SUCCESS);
  EXPECT_TRUE(log_.has(LogLevel::kWarn,
                       "lumoDeviceFreeVirtDevice() API is deprecated and will be removed in future."));
  EXPECT_EQ(uuidOf(own), "vgpu-7");
}

TEST_F(VirtualDeviceTest, AVgpuGoesWithItsGpu) {
  startHost();
  const std::weak_ptr<lumo::Device> object = vgpu()->object;
  EXPECT_FALSE(object.expired());
  stop();
  EXPECT_TRUE(object.expired());
}

}  // namespace
