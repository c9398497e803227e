#include <sys/time.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iterator>

#include "on_hosts/host_fixture.h"

// Faults as they happen. The host's GPUs report one when they are told to.

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned kShortMs = 20;

std::ptrdiff_t openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

class BareHostEvents : public tolk_test::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    ASSERT_EQ(lumoEventCreate(&event_), LUMO_RETURN_SUCCESS);
  }
  void TearDown() override {
    if (event_ != nullptr) {
      EXPECT_EQ(lumoEventDestroy(event_), LUMO_RETURN_SUCCESS);
    }
    HostFixture::TearDown();
  }

  LumoReturn listen(unsigned index, unsigned long long types = LUMO_EVENT_XID) {
    return lumoEventRegister(event_, device(index), types);
  }
  LumoReturn wait(unsigned timeoutMs = kShortMs) { return lumoEventWait(event_, timeoutMs, &data_); }
  static void raise(const std::string& what) { ASSERT_EQ(std::system(("ovgpu-sim-raise " + what).c_str()), 0); }

  LumoEvent* event_ = nullptr;
  LumoEventData data_{};
};

TEST_F(BareHostEvents, FaultIsDeliveredAsTheDriverWroteItDown) {
  ASSERT_EQ(listen(1), LUMO_RETURN_SUCCESS);
  raise("1 31 pid=4242 scope=device severity=fatal 'text=mmu fault'");
  ASSERT_EQ(lumoEventWait(event_, kShortMs, &data_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(data_.deviceIndex, 1u);
  EXPECT_EQ(data_.eventType, LUMO_EVENT_XID);
  EXPECT_STREQ(data_.uuid, "00000000000000000000000000000001");
  EXPECT_EQ(data_.record.version, 1u);
  EXPECT_EQ(data_.record.xid, 31u);
  EXPECT_EQ(data_.record.attributes, 2u | 3u << 3);
  EXPECT_EQ(data_.record.pid, 4242u);
  EXPECT_STREQ(data_.record.additional, "mmu fault");
  EXPECT_EQ(wait(), LUMO_RETURN_DRIVER_ACCESS_FAILED) << "it comes once";
}

TEST_F(BareHostEvents, FaultsOfSeveralDevicesComeOneByOne) {
  ASSERT_EQ(listen(0), LUMO_RETURN_SUCCESS);
  ASSERT_EQ(listen(1), LUMO_RETURN_SUCCESS);
  raise("0 5");
  raise("1 6");
  raise("0 7");
  std::string seen[2];
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(wait(), LUMO_RETURN_SUCCESS);
    ASSERT_LT(data_.deviceIndex, 2u);
    seen[data_.deviceIndex] += std::to_string(data_.record.xid);
  }
  EXPECT_EQ(seen[0], "57") << "of one device in their order";
  EXPECT_EQ(seen[1], "6");
}

TEST_F(BareHostEvents, DeviceThatWasNeverRegisteredProducesNothing) {
  ASSERT_EQ(listen(0), LUMO_RETURN_SUCCESS);
  raise("1 31");
  EXPECT_EQ(wait(), LUMO_RETURN_DRIVER_ACCESS_FAILED);
}

TEST_F(BareHostEvents, FaultFromBeforeTheStartIsPassedOver) {
  ASSERT_EQ(listen(0), LUMO_RETURN_SUCCESS);
  raise("0 31 time=1000000000");
  raise("0 32");
  ASSERT_EQ(wait(), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(data_.record.xid, 32u);
}

TEST_F(BareHostEvents, MessageOfAnotherVersionEndsTheWaitWithoutARecord) {
  ASSERT_EQ(listen(0), LUMO_RETURN_SUCCESS);
  raise("0 31 message_version=2");
  raise("0 32 version=2");
  raise("0 33");
  data_.deviceIndex = 99;
  EXPECT_EQ(wait(), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(wait(), LUMO_RETURN_INVALID_ARGUMENT) << "of the record inside";
  EXPECT_EQ(data_.deviceIndex, 99u);
  EXPECT_EQ(wait(), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(data_.record.xid, 33u);
}

TEST_F(BareHostEvents, TypesThatNobodyWantsArePassedOver) {
  ASSERT_EQ(listen(0, LUMO_EVENT_XID | 2), LUMO_RETURN_SUCCESS);
  raise("0 31 message_types=2");
  raise("0 32 message_types=4");
  raise("0 33 message_types=5");
  ASSERT_EQ(wait(), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(data_.record.xid, 33u);
  EXPECT_EQ(listen(0, 2), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(listen(0, 0), LUMO_RETURN_NOT_SUPPORTED);
}

TEST_F(BareHostEvents, RegisteringAgainOpensNothing) {
  ASSERT_EQ(listen(0), LUMO_RETURN_SUCCESS);
  const auto before = openDescriptors();
  EXPECT_EQ(listen(0), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(openDescriptors(), before);
  raise("0 31");
  EXPECT_EQ(wait(), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(wait(), LUMO_RETURN_DRIVER_ACCESS_FAILED);
}

TEST_F(BareHostEvents, DestroyedEventKeepsNoDescriptor) {
  const auto before = openDescriptors();
  LumoEvent* other = nullptr;
  ASSERT_EQ(lumoEventCreate(&other), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoEventRegister(other, device(0), LUMO_EVENT_XID), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoEventRegister(other, device(1), LUMO_EVENT_XID), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(openDescriptors(), before + 3);
  EXPECT_EQ(lumoEventDestroy(other), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_EQ(lumoEventDestroy(other), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoEventRegister(other, device(0), LUMO_EVENT_XID), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoEventWait(other, kShortMs, &data_), LUMO_RETURN_INVALID_ARGUMENT);
}

TEST_F(BareHostEvents, NullArgumentsAreRefused) {
  EXPECT_EQ(lumoEventCreate(nullptr), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoEventDestroy(nullptr), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoEventRegister(nullptr, device(0), LUMO_EVENT_XID), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoEventRegister(event_, nullptr, LUMO_EVENT_XID), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoEventWait(nullptr, kShortMs, &data_), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoEventWait(event_, kShortMs, nullptr), LUMO_RETURN_INVALID_ARGUMENT);
}

TEST_F(BareHostEvents, EmptyingTheDriversQueueLeavesNothingToWaitFor) {
  ASSERT_EQ(listen(0), LUMO_RETURN_SUCCESS);
  raise("0 31");
  EXPECT_EQ(lumoDeviceResetEventMessages(device(0)), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(wait(), LUMO_RETURN_DRIVER_ACCESS_FAILED);
}

TEST_F(BareHostEvents, EventEndsWithTheLibrary) {
  LumoEvent* const left = std::exchange(event_, nullptr);
  ASSERT_EQ(lumoLibraryShutDown(library_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoEventWait(left, kShortMs, &data_), LUMO_RETURN_UNKNOWN_ERROR);
  LumoEvent* none = nullptr;
  EXPECT_EQ(lumoEventCreate(&none), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(lumoEventDestroy(left), LUMO_RETURN_UNKNOWN_ERROR);
  ASSERT_EQ(lumoLibraryInit(&library_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoEventWait(left, kShortMs, &data_), LUMO_RETURN_INVALID_ARGUMENT);
}

/// Lines of the library's log, as long as this lives.
class LogLines {
 public:
  LogLines() {
    EXPECT_EQ(lumoLibraryGetLogConfiguration(&former_), LUMO_RETURN_SUCCESS);
    LumoLogConfiguration all = former_;
    all.callbackLevel = 4;
    all.callback = [](const char* message, unsigned length) { lines_.append(message, length); };
    lines_.clear();
    EXPECT_EQ(lumoLibrarySetLogConfiguration(&all), LUMO_RETURN_SUCCESS);
  }
  ~LogLines() { EXPECT_EQ(lumoLibrarySetLogConfiguration(&former_), LUMO_RETURN_SUCCESS); }

  static bool has(const std::string& text) { return lines_.find(text) != std::string::npos; }

 private:
  inline static std::string lines_;
  LumoLogConfiguration former_{};
};

TEST_F(BareHostEvents, RegisteringIsToldInTheLog) {
  const LogLines log;
  ASSERT_EQ(listen(1), LUMO_RETURN_SUCCESS);
  EXPECT_TRUE(log.has(">> get device index 1 "));
  EXPECT_TRUE(log.has(">> event file handle fd is "));
  EXPECT_TRUE(log.has(">> device index 1 file fd is "));
  EXPECT_TRUE(log.has(" event type is 1 "));
}

TEST_F(BareHostEvents, MessageOfAnotherVersionIsToldInTheLog) {
  ASSERT_EQ(listen(0), LUMO_RETURN_SUCCESS);
  raise("0 31 message_version=2");
  raise("0 32 version=3");
  const LogLines log;
  EXPECT_EQ(wait(), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_TRUE(log.has(">> current remote event version is 2 local event version is 1 "));
  EXPECT_EQ(wait(), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_TRUE(log.has(">> current local xid event struct version is  1 remote struct version is 3 "));
}

/// Interrupts whatever the program does, again and again, while it lives.
class Interruptions {
 public:
  Interruptions() {
    struct sigaction action{};
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, &former_);
    constexpr itimerval kEvery{{0, 7'000}, {0, 7'000}};
    setitimer(ITIMER_REAL, &kEvery, nullptr);
  }
  ~Interruptions() {
    constexpr itimerval kNever{};
    setitimer(ITIMER_REAL, &kNever, nullptr);
    sigaction(SIGALRM, &former_, nullptr);
  }

 private:
  struct sigaction former_ {};
};

TEST_F(BareHostEvents, WaitOfOneSecondTakesOneSecondAlsoWhileSignalsArrive) {
  ASSERT_EQ(listen(0), LUMO_RETURN_SUCCESS);
  const Interruptions interruptions;
  const auto start = Clock::now();
  EXPECT_EQ(wait(1000), LUMO_RETURN_DRIVER_ACCESS_FAILED);
  const auto taken = Clock::now() - start;
  EXPECT_GE(taken, std::chrono::milliseconds(1000));
  EXPECT_LE(taken, std::chrono::milliseconds(1100));
}

class MpcHostEvents : public BareHostEvents {};

TEST_F(MpcHostEvents, OnlyPhysicalDevicesReportFaults) {
  EXPECT_EQ(listen(0), LUMO_RETURN_SUCCESS);
  for (unsigned index = 1; index < count(); ++index) EXPECT_EQ(listen(index), LUMO_RETURN_NOT_SUPPORTED) << index;
}

class NoFolderHostEvents : public BareHostEvents {};

TEST_F(NoFolderHostEvents, DeviceWithoutAnEventFileIsNotFound) {
  EXPECT_EQ(listen(0), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(listen(1), LUMO_RETURN_UNKNOWN_ERROR) << "its file cannot be opened";
}

}  // namespace
