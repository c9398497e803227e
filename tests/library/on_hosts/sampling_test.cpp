#include "calls/ask.h"
#include "on_hosts/host_fixture.h"

// Samples of performance counters, which no device has: the checks of the calls are all there is.

namespace {

using tolk_test::ask;
using tolk_test::Subject;

class FamiliesHostSampling : public tolk_test::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    for (LumoPfmSample** const sample : {&first_, &second_}) {
      ASSERT_EQ(lumoPfmSampleAlloc(sample), LUMO_RETURN_SUCCESS);
      ASSERT_NE(*sample, nullptr);
      (*sample)->counters = &counters_;
    }
    request_.sample1 = first_;
    request_.sample2 = second_;
    request_.count = 1;
  }
  void TearDown() override {
    EXPECT_EQ(lumoPfmSampleFree(first_), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(lumoPfmSampleFree(second_), LUMO_RETURN_SUCCESS);
    HostFixture::TearDown();
  }
  int counters_ = 0;
  LumoPfmSample* first_ = nullptr;
  LumoPfmSample* second_ = nullptr;
  LumoPfmMetricsRequest request_{};
};

TEST_F(FamiliesHostSampling, TheNewerFamiliesCanBeAsked) {
  // Wold, Fen1, Fen2, Tor1.
  const char* const expected[] = {"0", "0", "1", "1"};
  for (unsigned index = 0; index < 4; ++index) {
    const Subject subject = Subject::of(device(index));
    EXPECT_EQ(ask(subject, lumoDeviceIsPfmSupported), expected[index]);
    EXPECT_EQ(ask(subject, lumoDeviceStartPfm, 0U), "refused 4");
    EXPECT_EQ(ask(subject, lumoDeviceStartPfm, 1U), "refused 4");
    EXPECT_EQ(ask(subject, lumoDeviceStartPfm, 2U), "refused 3");
    EXPECT_EQ(ask(subject, lumoDeviceStopPfm), "refused 4");
    EXPECT_EQ(lumoPfmSampleGet(device(index), first_), LUMO_RETURN_NOT_SUPPORTED);
  }
}

TEST_F(FamiliesHostSampling, OnlyTheLibrarysSamplesAreTaken) {
  LumoPfmSample foreign{&counters_, 0};
  EXPECT_EQ(lumoPfmSampleGet(device(3), &foreign), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoPfmSampleGet(device(3), nullptr), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoPfmSampleGet(nullptr, first_), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoPfmSampleFree(&foreign), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoPfmSampleFree(nullptr), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoPfmSampleAlloc(nullptr), LUMO_RETURN_INVALID_ARGUMENT);
  request_.sample2 = &foreign;
  EXPECT_EQ(lumoPfmMetricsGet(&request_), LUMO_RETURN_INVALID_ARGUMENT);
}

TEST_F(FamiliesHostSampling, MetricsAreOfTwoSamplesOfOneDevice) {
  EXPECT_EQ(lumoPfmMetricsGet(nullptr), LUMO_RETURN_INVALID_ARGUMENT);
  request_.sample2 = first_;
  EXPECT_EQ(lumoPfmMetricsGet(&request_), LUMO_RETURN_INVALID_ARGUMENT) << "the same one";
  request_.sample2 = second_;
  second_->counters = nullptr;
  EXPECT_EQ(lumoPfmMetricsGet(&request_), LUMO_RETURN_INVALID_ARGUMENT) << "not taken yet";
  second_->counters = &counters_;
  second_->deviceId = first_->deviceId + 1;
  EXPECT_EQ(lumoPfmMetricsGet(&request_), LUMO_RETURN_INVALID_ARGUMENT) << "of two devices";
  second_->deviceId = first_->deviceId;
  request_.count = 0;
  EXPECT_EQ(lumoPfmMetricsGet(&request_), LUMO_RETURN_INVALID_ARGUMENT);
  request_.count = LUMO_PFM_MAX_METRICS + 1;
  EXPECT_EQ(lumoPfmMetricsGet(&request_), LUMO_RETURN_INSUFFICIENT_SIZE);
}

TEST_F(FamiliesHostSampling, MetricsAreOfADeviceThatCanBeSampled) {
  first_->deviceId = second_->deviceId = 99;
  EXPECT_EQ(lumoPfmMetricsGet(&request_), LUMO_RETURN_UNKNOWN_ERROR) << "there is none";
  first_->deviceId = second_->deviceId = 0;
  EXPECT_EQ(lumoPfmMetricsGet(&request_), LUMO_RETURN_NOT_SUPPORTED) << "a Wold GPU";
  // What the other families would answer has no content yet, and nothing to fail.
  first_->deviceId = second_->deviceId = 3;
  EXPECT_EQ(lumoPfmMetricsGet(&request_), LUMO_RETURN_SUCCESS);
}

TEST(NoneHostSampling, NeedsTheLibrary) {
  LumoPfmSample* sample = nullptr;
  EXPECT_EQ(lumoPfmSampleAlloc(&sample), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(sample, nullptr);
}

}  // namespace
