#include <gtest/gtest.h>

#include "linux/mdev/mdev_physical.h"
#include "mediated_host.h"

// The host's mediated device framework.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;

constexpr const char* kFirst = "0000:01:00.0";
constexpr const char* kSecond = "0000:41:00.0";
constexpr const char* kUuid1 = "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71";
constexpr const char* kUuid2 = "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c72";

class MdevTest : public tolk_test::MediatedHost {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(HostTree::SetUp());
    boundFunction(kFirst, "0x0230", {0});
    boundFunction(kSecond, "0x0230", {1});
  }
  void expectUnreadable(const std::string& path, const char* failure) {
    EXPECT_TRUE(log_.has(LogLevel::kError, std::string(">> ") + failure + " " + path + " ")) << failure;
  }
};

TEST_F(MdevTest, HostWithoutTheFrameworkHasNoCarriers) {
  const MdevPhysical gpu(kFirst);
  const auto types = gpu.listTypes();
  EXPECT_TRUE(types.ok());
  EXPECT_TRUE(types.value().empty());
  const auto uuids = gpu.listUuids();
  EXPECT_TRUE(uuids.ok());
  EXPECT_TRUE(uuids.value().empty());
  EXPECT_EQ(gpu.findType("11").state(), KelpReturn::kNotFound);
  EXPECT_EQ(gpu.findVirtual(7).state(), KelpReturn::kNotFound);
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(MdevTest, GpuThatIsNotListedHasNeitherTypesNorVgpus) {
  carrier(kFirst);
  type(kSecond, "11");
  vgpu(kSecond, kUuid1, "7\n", "11");
  EXPECT_TRUE(MdevPhysical(kSecond).listTypes().value().empty());
  EXPECT_TRUE(MdevPhysical(kSecond).listUuids().value().empty());
}

TEST_F(MdevTest, TypesComeByTheirNumbers) {
  carrier(kFirst);
  for (const char* const id : {"100", "11", "9"}) {
    type(kFirst, id);
  }
  folder(place(kFirst) + "/mdev_supported_types/power");
  folder(place(kFirst) + "/mdev_supported_types/ovgpu-");
  const auto types = MdevPhysical(kFirst).listTypes();
  ASSERT_TRUE(types.ok());
  ASSERT_EQ(types.value().size(), 3U);
  EXPECT_EQ(types.value()[0].getId(), "9");
  EXPECT_EQ(types.value()[1].getId(), "11");
  EXPECT_EQ(types.value()[2].getId(), "100");
  EXPECT_EQ(types.value()[1].readName().value(), "OVT B230-11Q");
  EXPECT_EQ(types.value()[1].readDeviceApi().value(), "vfio-pci");
  EXPECT_EQ(types.value()[1].readAvailableInstances().value(), 3U);
}

TEST_F(MdevTest, IdOfATypeIsWhatFollowsTheLastDash) {
  EXPECT_EQ(MdevType("/a-1/ov-gpu-12").getId(), "12");
  EXPECT_EQ(MdevType("/a-1/ovgpu").getId(), "");
}

TEST_F(MdevTest, TypeHasItsSevenNumbers) {
  carrier(kFirst);
  type(kFirst, "11");
  const MdevVirtType values = MdevPhysical(kFirst).findType("11").value().readVirtType();
  EXPECT_EQ(values.id, "11");
  EXPECT_EQ(values.name, "OVT B230-11Q");
  EXPECT_EQ(values.className, "vfio-pci");
  EXPECT_EQ(values.maxWidth.value(), 4096U);
  EXPECT_EQ(values.maxHeight.value(), 2160U);
  EXPECT_EQ(values.maxEncodeNum.value(), 2U);
  EXPECT_EQ(values.maxDecodeNum.value(), 4U);
  EXPECT_EQ(values.framebuffer.value(), 2048U);
  EXPECT_EQ(values.maxInstances.value(), 8U);
  EXPECT_EQ(values.maxVirtualDisplay.value(), 2U);
}

TEST_F(MdevTest, ResolutionThatHasNoTwoSidesHasNone) {
  const std::tuple<const char*, bool, bool> rows[] = {
      {"4096", false, false}, {"x2160", false, true},  {"4096x", true, false},
      {"axb", false, false},  {"-1x-1", false, false}, {"1x2x3", true, false},
  };
  carrier(kFirst);
  type(kFirst, "11");
  for (const auto& [text, hasWidth, hasHeight] : rows) {
    file(typeFolder(kFirst, "11") + "/description", std::string("max_resolution=") + text + "\n");
    const MdevVirtType values = MdevPhysical(kFirst).findType("11").value().readVirtType();
    EXPECT_EQ(values.maxWidth.ok(), hasWidth) << text;
    EXPECT_EQ(values.maxHeight.ok(), hasHeight) << text;
  }
}

TEST_F(MdevTest, TypeWithoutItsFilesHasItsIdAlone) {
  carrier(kFirst);
  folder(typeFolder(kFirst, "11"));
  const auto type = MdevPhysical(kFirst).findType("11");
  ASSERT_TRUE(type.ok());
  const MdevVirtType values = type.value().readVirtType();
  EXPECT_EQ(values.id, "11");
  EXPECT_EQ(values.name, "");
  EXPECT_EQ(values.className, "");
  for (const Stated<unsigned long>* number :
       {&values.maxWidth, &values.maxHeight, &values.maxEncodeNum, &values.maxDecodeNum, &values.framebuffer,
        &values.maxInstances, &values.maxVirtualDisplay}) {
    EXPECT_EQ(number->state(), KelpReturn::kReadFailed);
  }
  EXPECT_EQ(type.value().readAvailableInstances().state(), KelpReturn::kReadFailed);
}

TEST_F(MdevTest, CountThatIsNoNumberIsAFailedRead) {
  carrier(kFirst);
  for (const char* const content : {"", "many\n", "-1\n", "3 of 8\n", "99999999999\n"}) {
    type(kFirst, "11", content);
    log_.lines.clear();
    EXPECT_EQ(MdevPhysical(kFirst).findType("11").value().readAvailableInstances().state(),
              KelpReturn::kReadFailed);
    expectUnreadable(
        std::string("/sys/class/mdev_bus/") + kFirst + "/mdev_supported_types/ovgpu-11/available_instances",
        "Failed to read available instances from ");
  }
}

TEST_F(MdevTest, FileThatNeverEndsIsAFailedRead) {
  carrier(kFirst);
  type(kFirst, "11");
  file(typeFolder(kFirst, "11") + "/description", std::string((64 << 10) + 1, ','));
  EXPECT_EQ(MdevPhysical(kFirst).findType("11").value().readInfo().state(), KelpReturn::kReadFailed);
}

TEST_F(MdevTest, CarrierWithoutItsFoldersIsAFailure) {
  link(std::string("/sys/class/mdev_bus/") + kFirst, place(kFirst));
  EXPECT_EQ(MdevPhysical(kFirst).listTypes().state(), KelpReturn::kFailure);
  EXPECT_EQ(MdevPhysical(kFirst).listUuids().state(), KelpReturn::kFailure);
  EXPECT_EQ(MdevPhysical(kFirst).findType("11").state(), KelpReturn::kFailure);
  EXPECT_EQ(MdevPhysical(kFirst).findVirtual(7).state(), KelpReturn::kFailure);
}

TEST_F(MdevTest, VgpusAreThoseBelowTheirCarrier) {
  carrier(kFirst);
  carrier(kSecond);
  type(kFirst, "11");
  vgpu(kFirst, kUuid2, "8\n", "11");
  vgpu(kFirst, kUuid1, "7\n", "11");
  vgpu(kSecond, "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c73", "7\n", "11");
  link("/sys/bus/mdev/devices/dangling", "/sys/devices/nowhere");
  file("/sys/bus/mdev/devices/notes");
  EXPECT_EQ(MdevPhysical(kFirst).listUuids().value(), (std::vector<std::string>{kUuid1, kUuid2}));
  EXPECT_EQ(MdevPhysical(kFirst).findVirtual(8).value().getUuid(), kUuid2);
  EXPECT_EQ(MdevPhysical(kFirst).findVirtual(9).state(), KelpReturn::kNotFound);
}

TEST_F(MdevTest, VgpuIsWhereItWasSeenOrElseSearchedFor) {
  carrier(kFirst);
  carrier(kSecond);
  vgpu(kFirst, kUuid1, "7\n", "11");
  vgpu(kFirst, kUuid2, "8\n", "11");
  const std::string elsewhere = "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c73";
  vgpu(kSecond, elsewhere, "8\n", "11");
  for (const std::string& seen : {std::string(kUuid2), std::string(kUuid1), elsewhere, std::string("gone")}) {
    const auto found = MdevPhysical(kFirst).findVirtual(8, seen);
    ASSERT_TRUE(found.ok()) << seen;
    EXPECT_EQ(found.value().getUuid(), kUuid2) << seen;
  }
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(MdevTest, VgpuWithoutANumberDoesNotHideTheNext) {
  carrier(kFirst);
  vgpu(kFirst, kUuid1, "none\n", "11");
  vgpu(kFirst, kUuid2, "8\n", "11");
  EXPECT_EQ(MdevPhysical(kFirst).findVirtual(8).value().getUuid(), kUuid2);
}

TEST_F(MdevTest, VgpuTellsItsNumberProcessAndType) {
  carrier(kFirst);
  type(kFirst, "11");
  vgpu(kFirst, kUuid1, "7\n", "11");
  const MdevVirtual device(kUuid1);
  EXPECT_EQ(device.getUuid(), kUuid1);
  EXPECT_EQ(device.readVgpuId().value(), 7U);
  EXPECT_EQ(device.readVmPid().value(), 4242U);
  const auto type = device.findType();
  ASSERT_TRUE(type.ok());
  EXPECT_EQ(type.value().getId(), "11");
  EXPECT_EQ(type.value().readVirtType().name, "OVT B230-11Q");
}

TEST_F(MdevTest, FilesOfAVgpuThatAreMissingOrNoNumbersAreLogged) {
  const std::string folder = std::string("/sys/bus/mdev/devices/") + kUuid1;
  for (const char* const content : {"", "seven\n", "-7\n", "4294967296\n"}) {
    file(folder + "/ovgpu_vgpu/vgpu_id", content);
    file(folder + "/ovgpu_vgpu/vm_pid", content);
    log_.lines.clear();
    EXPECT_EQ(MdevVirtual(kUuid1).readVgpuId().state(), KelpReturn::kReadFailed) << content;
    EXPECT_EQ(MdevVirtual(kUuid1).readVmPid().state(), KelpReturn::kReadFailed) << content;
    expectUnreadable(folder + "/ovgpu_vgpu/vgpu_id", "Failed to read vgpu id from ");
    expectUnreadable(folder + "/ovgpu_vgpu/vm_pid", "Failed to read vm pid from ");
  }
  remove(folder);
  log_.lines.clear();
  EXPECT_EQ(MdevVirtual(kUuid1).readVgpuId().state(), KelpReturn::kReadFailed);
  EXPECT_EQ(MdevVirtual(kUuid1).findType().state(), KelpReturn::kReadFailed);
  expectUnreadable(folder + "/ovgpu_vgpu/vgpu_id", "Failed to read vgpu id from ");
  expectUnreadable(folder + "/mdev_type", "Failed to read vgpu type from ");
}

}  // namespace
}  // namespace kelp::linux_
