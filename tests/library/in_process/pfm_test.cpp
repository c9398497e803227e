#include "device.h"
#include "handles.h"
#include "in_process/lumo_fixture.h"
#include "physical_device.h"

// Counters that are sampled over an interval.

namespace {

using kelp::DevArch;
using kelp::DevType;
using rusk::LogLevel;
using tolk_test::LumoFixture;

class PfmTest : public LumoFixture {
 protected:
  LumoPfmSample* alloc() {
    LumoPfmSample* sample = nullptr;
    EXPECT_EQ(lumoPfmSampleAlloc(&sample), LUMO_RETURN_SUCCESS);
    return sample;
  }
  /// As though it had been taken of a device.
  LumoPfmSample* taken(unsigned long long deviceId) {
    LumoPfmSample* const sample = alloc();
    sample->counters = this;
    sample->deviceId = deviceId;
    return sample;
  }
  LumoReturn metrics(LumoPfmSample* first, LumoPfmSample* second, unsigned count) {
    request_.sample1 = first;
    request_.sample2 = second;
    request_.count = count;
    return lumoPfmMetricsGet(&request_);
  }

  LumoPfmMetricsRequest request_{};
  unsigned number_ = 99;
};

TEST_F(PfmTest, WholeGpusOfTheNewerFamiliesCanBeSampled) {
  const std::pair<DevArch, unsigned> rows[] = {
      {DevArch::kWold, 0}, {DevArch::kFen1, 0}, {DevArch::kFen2, 1}, {DevArch::kTor1, 1}};
  for (const auto& [arch, supported] : rows) {
    startWith(DevType::kPhysical, arch);
    EXPECT_EQ(lumoDeviceIsPfmSupported(handle_, &number_), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(number_, supported);
    EXPECT_EQ(lumoDeviceStartPfm(handle_, 0), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoDeviceStartPfm(handle_, 1), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoDeviceStopPfm(handle_), LUMO_RETURN_NOT_SUPPORTED);
    stop();
    platform_.pcieCuids = kelp::DevCuidSet{};
  }
  startMpc();
  EXPECT_EQ(lumoDeviceIsPfmSupported(parent_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 0U);
}

TEST_F(PfmTest, ADeviceWithoutAMonitorSaysSo) {
  struct Bare : lumo::Device {
    explicit Bare(std::shared_ptr<kelp::DeviceObj> object)
        : Device("bare", std::move(object), nullptr, nullptr) {
      perfMonitor_.reset();
    }
  };
  const auto object =
      std::make_shared<kelp::PhysicalDevice>(tolk_test::makeCuid(DevType::kPhysical, DevArch::kTor1),
                                             std::make_shared<kelp::ModelManager>(), kelp::FeatureRow{});
  const auto bare = std::make_shared<Bare>(object);
  LumoDevice cell{bare};
  EXPECT_EQ(lumoDeviceStartPfm(&cell, 0), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(LogLevel::kError, "perfMonitor pointer is nullptr"));
}

TEST_F(PfmTest, ASampleMustBeTheLibrarys) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  LumoPfmSample foreign{};
  EXPECT_EQ(lumoPfmSampleGet(handle_, &foreign), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_TRUE(log_.has(LogLevel::kError, "pfmSample has not been alloc"));
  EXPECT_EQ(lumoPfmSampleFree(&foreign), LUMO_RETURN_INVALID_ARGUMENT);
  LumoPfmSample* const sample = alloc();
  EXPECT_EQ(sample->counters, nullptr);
  EXPECT_EQ(lumoPfmSampleGet(handle_, sample), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoPfmSampleFree(sample), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoPfmSampleFree(sample), LUMO_RETURN_INVALID_ARGUMENT) << "only once";
}

TEST_F(PfmTest, WithoutALibraryThereAreNoSamples) {
  LumoPfmSample* sample = nullptr;
  LumoPfmSample foreign{};
  LumoDevice dead;
  EXPECT_EQ(lumoPfmSampleAlloc(&sample), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(lumoPfmSampleFree(&foreign), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(lumoPfmSampleGet(&dead, &foreign), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(metrics(&foreign, &foreign, 1), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_FALSE(log_.has("pfmSample has not been alloc"));
}

TEST_F(PfmTest, EqualSamplesAreFoundBeforeAnythingElse) {
  mustStart();
  LumoPfmSample foreign{};
  for (LumoPfmSample* const sample : {static_cast<LumoPfmSample*>(nullptr), &foreign}) {
    log_.lines.clear();
    EXPECT_EQ(metrics(sample, sample, 99), LUMO_RETURN_INVALID_ARGUMENT);
    EXPECT_TRUE(log_.has(LogLevel::kError, "sample1 equal to sample2"));
    EXPECT_FALSE(log_.has("pfm sample invalid"));
  }
}

TEST_F(PfmTest, BothSamplesMustBeKnownAndTaken) {
  addGpu(0);
  mustStart();
  LumoPfmSample foreign{};
  LumoPfmSample* const good = taken(0);
  LumoPfmSample* const empty = alloc();
  for (LumoPfmSample* const other : {&foreign, empty, static_cast<LumoPfmSample*>(nullptr)}) {
    log_.lines.clear();
    EXPECT_EQ(metrics(good, other, 1), LUMO_RETURN_INVALID_ARGUMENT);
    EXPECT_EQ(metrics(other, good, 1), LUMO_RETURN_INVALID_ARGUMENT);
    EXPECT_EQ(log_.count("pfm sample invalid"), 2U);
  }
}

TEST_F(PfmTest, SamplesOfTwoDevicesMakeNoMetrics) {
  addGpu(0);
  addGpu(1);
  mustStart();
  EXPECT_EQ(metrics(taken(0), taken(1), 1), LUMO_RETURN_INVALID_ARGUMENT);
}

TEST_F(PfmTest, TheNumberOfMetricsIsLimited) {
  addGpu(0);
  mustStart();
  EXPECT_EQ(metrics(taken(0), taken(0), 99), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(metrics(taken(0), taken(0), ~0U), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(metrics(taken(0), taken(0), 0), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(metrics(taken(0), taken(0), 98), LUMO_RETURN_SUCCESS) << "the monitor leaves them as they are";
}

TEST_F(PfmTest, ADeviceThatIsNotThereIsLogged) {
  addGpu(0);
  mustStart();
  EXPECT_EQ(metrics(taken(17), taken(17), 1), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(LogLevel::kError, "get device id 17 handle failed"));
}

TEST_F(PfmTest, ADeviceThatCannotBeSampledMakesNoMetrics) {
  addGpu(0, DevType::kPhysical, DevArch::kWold);
  mustStart();
  EXPECT_EQ(metrics(taken(0), taken(0), 1), LUMO_RETURN_NOT_SUPPORTED);
}

}  // namespace
