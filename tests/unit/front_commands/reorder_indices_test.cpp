#include "command_access/reorder_indices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "front_log_capture.h"

namespace tolk {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tolk_test::FrontLogCapture;

using Indices = std::vector<std::uint32_t>;

/// A device that answers what display order asks for.
struct FakeDevice {
  std::optional<DeviceType> type;
  std::optional<Indices> instances;  ///< in the library's order
  std::optional<std::uint32_t> parent;

  LumoReturn devGetDeviceType(DeviceType& out) const {
    if (type) out = *type;
    return type ? LUMO_RETURN_SUCCESS : LUMO_RETURN_UNKNOWN_ERROR;
  }
  LumoReturn getMpcInstances(std::vector<MpcInstance>& out) const {
    if (!instances) return LUMO_RETURN_DEVICE_LOST;
    for (const auto index : *instances) out.push_back({.deviceIndex = index});
    return LUMO_RETURN_SUCCESS;
  }
  LumoReturn getParentDeviceIndex(std::uint32_t& out) const {
    if (parent) out = *parent;
    return parent ? LUMO_RETURN_SUCCESS : LUMO_RETURN_UNKNOWN_ERROR;
  }
};

FakeDevice physical() {
  return {DeviceType::kPhysical, {}, {}};
}
FakeDevice parentOf(Indices instances) {
  return {DeviceType::kMpcParent, std::move(instances), {}};
}
FakeDevice instanceOf(std::uint32_t parent) {
  return {DeviceType::kMpcInstance, {}, parent};
}
FakeDevice orphan() {
  return {DeviceType::kMpcInstance, {}, {}};
}

struct FakeFactory {
  std::vector<std::optional<FakeDevice>> devices;

  std::shared_ptr<FakeDevice> getAccessDeviceById(std::uint32_t id) const {
    return devices.at(id) ? std::make_shared<FakeDevice>(*devices[id]) : nullptr;
  }
};

std::optional<Indices> reordered(const FakeFactory& factory) {
  Indices indices{99};
  if (!getReorderIndices(static_cast<std::uint32_t>(factory.devices.size()), indices, factory))
    return std::nullopt;
  return indices;
}

TEST(ReorderIndices, InstancesFollowTheirParent) {
  const FakeFactory factory{{physical(), parentOf({3, 4}), physical(), instanceOf(1), instanceOf(1)}};
  EXPECT_EQ(reordered(factory), (Indices{0, 1, 3, 4, 2}));
}

TEST(ReorderIndices, InstancesStandInOrderOfTheirIndex) {
  const FakeFactory factory{{instanceOf(1), parentOf({3, 0, 2}), instanceOf(1), instanceOf(1)}};
  EXPECT_EQ(reordered(factory), (Indices{1, 0, 2, 3}));
}

TEST(ReorderIndices, VirtualDevicesKeepTheirPlace) {
  const FakeFactory factory{{physical(), FakeDevice{DeviceType::kVirtual, {}, {}}, physical()}};
  EXPECT_EQ(reordered(factory), (Indices{0, 1, 2}));
}

TEST(ReorderIndices, InstancesWhoseParentCannotBeReadComeFirst) {
  const FakeFactory factory{{physical(), physical(), orphan(), orphan()}};
  EXPECT_EQ(reordered(factory), (Indices{2, 3, 0, 1}));
}

TEST(ReorderIndices, DeviceOfUnknownTypeIsLeftOut) {
  FrontLogCapture log;
  const FakeFactory factory{{physical(), FakeDevice{static_cast<DeviceType>(9), {}, {}}, physical()}};
  EXPECT_EQ(reordered(factory), (Indices{0, 2}));
  EXPECT_THAT(log.lines,
              ElementsAre("I getReorderIndices >> Do nothing for other types of device, index =  1 "));
}

TEST(ReorderIndices, DeviceThatCannotBeHadFailsTheOrder) {
  FrontLogCapture log;
  EXPECT_EQ(reordered({{physical(), std::nullopt, physical()}}), std::nullopt);
  EXPECT_THAT(log.lines, ElementsAre("E getReorderIndices >> get device error, index =  1 "));
}

TEST(ReorderIndices, TypeThatCannotBeReadFailsTheOrder) {
  EXPECT_EQ(reordered({{physical(), FakeDevice{}}}), std::nullopt);
}

TEST(ReorderIndices, ParentWhoseInstancesCannotBeReadFailsTheOrder) {
  EXPECT_EQ(reordered({{FakeDevice{DeviceType::kMpcParent, {}, {}}, instanceOf(0)}}), std::nullopt);
}

TEST(ReorderIndices, ParentWithoutInstancesStandsAlone) {
  EXPECT_EQ(reordered({{parentOf({}), physical()}}), (Indices{0, 1}));
}

TEST(ReorderIndices, NoDevicesAreNoFailure) {
  EXPECT_THAT(*reordered({}), IsEmpty());
}

}  // namespace
}  // namespace tolk
