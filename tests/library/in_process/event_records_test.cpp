#include "event_records.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

#include "event.h"
#include "in_process/lumo_fixture.h"

// The faults that were stored.

namespace {

using kelp::DevArch;
using kelp::DevType;
using rusk::LogLevel;
using tolk_test::LumoFixture;

class EventRecordsTest : public LumoFixture {
 protected:
  EventRecordsTest()
      : path_(std::filesystem::temp_directory_path() /
              ("xid_records_" + std::to_string(::getpid()) + "_" +
               testing::UnitTest::GetInstance()->current_test_info()->name())) {}
  ~EventRecordsTest() override { std::filesystem::remove(path_); }

  /// A header and records whose xid counts from 0, and so many bytes besides.
  void write(unsigned records, std::size_t further = 0, std::uint16_t version = 1) {
    std::string bytes("OVXIDREC", 8);
    bytes.append(reinterpret_cast<const char*>(&version), 2).append(22, '\0');
    for (unsigned i = 0; i < records; ++i) {
      LumoXidRecord record{};
      record.version = 1;
      record.xid = i;
      record.pid = 1000 + i;
      std::strcpy(record.additional, "text");
      bytes.append(reinterpret_cast<const char*>(&record), sizeof record);
    }
    bytes.append(further, '#');
    std::ofstream(path_, std::ios::binary) << bytes;
  }

  std::vector<unsigned> read(unsigned count) {
    std::vector<unsigned> xids;
    for (const LumoXidRecord& record : lumo::readXidRecords(path_, count, &status_)) {
      xids.push_back(record.xid);
    }
    return xids;
  }

  std::filesystem::path path_;
  LumoReturn status_ = LUMO_RETURN_SUCCESS;
};

using Xids = std::vector<unsigned>;

TEST_F(EventRecordsTest, AHeaderAloneHasNoRecords) {
  write(0);
  for (const unsigned count : {0U, 1U, 500U, ~0U}) {
    EXPECT_EQ(read(count), Xids{});
    EXPECT_EQ(status_, LUMO_RETURN_SUCCESS);
  }
}

TEST_F(EventRecordsTest, MoreThanThereAreIsAllThereAre) {
  write(3);
  EXPECT_EQ(read(500), (Xids{0, 1, 2}));
  EXPECT_EQ(read(3), (Xids{0, 1, 2}));
  EXPECT_EQ(read(~0U), (Xids{0, 1, 2}));
}

TEST_F(EventRecordsTest, FewerAreTheNewest) {
  write(5);
  EXPECT_EQ(read(2), (Xids{3, 4}));
  EXPECT_EQ(read(0), Xids{});
  EXPECT_EQ(status_, LUMO_RETURN_SUCCESS);
}

TEST_F(EventRecordsTest, ALengthThatIsNoNumberOfRecordsIsRefused) {
  write(2, 5);
  EXPECT_EQ(read(3), Xids{});
  EXPECT_EQ(status_, LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(LogLevel::kError, "the calculated buffer length does not meet the requirements"));
}

TEST_F(EventRecordsTest, AFileThatIsNotThereIsNamed) {
  EXPECT_EQ(read(1), Xids{});
  EXPECT_EQ(status_, LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(LogLevel::kError, "failed to open " + path_.string()));
}

TEST_F(EventRecordsTest, AShortHeaderIsRefused) {
  std::ofstream(path_, std::ios::binary) << std::string(31, 'x');
  EXPECT_EQ(read(1), Xids{});
  EXPECT_EQ(status_, LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(LogLevel::kError, "read xid header failed"));
}

TEST_F(EventRecordsTest, AnotherVersionIsRefused) {
  write(1, 0, 2);
  EXPECT_EQ(read(1), Xids{});
  EXPECT_EQ(status_, LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(LogLevel::kError, "xid header version is 2 current xid msg version is  1 "));
}

TEST_F(EventRecordsTest, AFileThatIsCutAnywhereGivesWholeRecordsOrNone) {
  constexpr std::size_t kHeader = 32;
  constexpr std::size_t kRecord = sizeof(LumoXidRecord);
  write(3);
  for (std::size_t size = 400 + 1; size-- > 0;) {
    std::filesystem::resize_file(path_, size);
    const bool whole = size >= kHeader && (size - kHeader) % kRecord == 0;
    Xids expected;
    if (whole && size >= kHeader + kRecord) expected.push_back(0);
    if (whole && size >= kHeader + 2 * kRecord) expected.push_back(1);
    EXPECT_EQ(read(500), expected) << size;
    EXPECT_EQ(status_, whole ? LUMO_RETURN_SUCCESS : LUMO_RETURN_UNKNOWN_ERROR) << size;
  }
}

TEST_F(EventRecordsTest, OfAnEndlessFileOnlyTheWantedRecordsAreRead) {
  write(2);
  std::filesystem::resize_file(path_, 2ULL << 30);
  EXPECT_EQ(read(500).size(), 500U);
  EXPECT_EQ(status_, LUMO_RETURN_SUCCESS);
}

TEST_F(EventRecordsTest, AFileThatIsReplacedWhileItIsReadGivesOneOrTheOther) {
  const std::filesystem::path other = path_.string() + ".new";
  std::atomic<bool> done = false;
  write(2);
  std::thread daemon([&] {
    for (unsigned turn = 0; !done; ++turn) {
      std::filesystem::copy_file(path_, other, std::filesystem::copy_options::overwrite_existing);
      std::filesystem::resize_file(other, 32 + (turn % 3) * sizeof(LumoXidRecord));
      std::filesystem::rename(other, path_);
    }
  });
  for (int i = 0; i < 300; ++i) {
    EXPECT_LE(read(500).size(), 2U);
    EXPECT_EQ(status_, LUMO_RETURN_SUCCESS);
  }
  done = true;
  daemon.join();
}

TEST_F(EventRecordsTest, AFileThatCannotBeOpenedIsNamed) {
  write(1);
  path_ /= "xid_records";
  EXPECT_EQ(read(1), Xids());
  EXPECT_EQ(status_, LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(LogLevel::kError, "failed to open " + path_.string()));
  path_ = path_.parent_path();
}

TEST_F(EventRecordsTest, AFolderIsNoFile) {
  EXPECT_TRUE(lumo::readXidRecords(std::filesystem::temp_directory_path(), 1, &status_).empty());
  EXPECT_EQ(status_, LUMO_RETURN_UNKNOWN_ERROR);
}

TEST_F(EventRecordsTest, APipeThatNobodyWritesToIsNotWaitedFor) {
  ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0);
  EXPECT_EQ(read(1), Xids());
  EXPECT_EQ(status_, LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(LogLevel::kError, "failed to open " + path_.string()));
}

TEST_F(EventRecordsTest, OnlyOneKindOfEventIsKnown) {
  LumoEventData event{};
  unsigned count = 99;
  for (const unsigned long long type : {0ULL, 2ULL, 3ULL, ~0ULL}) {
    EXPECT_EQ(lumoGetTargetUuidEventDataByEventType("uuid", type, &event, 1, &count),
              LUMO_RETURN_NOT_SUPPORTED);
  }
  EXPECT_EQ(lumoGetTargetUuidEventDataByEventType("no such uuid", 1, &event, 1, &count),
            LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(count, 99U);
}

TEST_F(EventRecordsTest, ADeviceAsksForItsOwnFile) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  LumoEventData event{};
  unsigned count = 99;
  EXPECT_EQ(lumoDeviceGetEventDataByEventType(handle_, 1, &event, 7, &count), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(LogLevel::kInfo, "event type 1  wanted count 7 "));
  EXPECT_TRUE(log_.has(LogLevel::kInfo, "device  0 query event 1 "));
  EXPECT_TRUE(log_.has(LogLevel::kError, "failed to open /var/log/ovgpu/event_report/uuid-0/xid_records"));
}

TEST_F(EventRecordsTest, AnEventThatCannotBeWaitedOnIsToldInTheLog) {
  rlimit most{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &most), 0);
  const rlimit none{0, most.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  lumo::Event event;
  EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &most), 0);
  EXPECT_TRUE(log_.has(LogLevel::kError, "poller create error code is 24"));
  LumoEventData data{};
  EXPECT_EQ(event.setEventWait(std::chrono::milliseconds(0), &data), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(LogLevel::kError, "epoll_wait error str:  Bad file descriptor  errno:  9"));
}

TEST_F(EventRecordsTest, WholeGpusReportFaults) {
  addGpu(0, DevType::kPhysical, DevArch::kWold);
  startMpc();
  unsigned long long types = 99;
  EXPECT_EQ(lumoDeviceGetSupportedEventTypes(deviceOf("uuid-0"), &types), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(types, 1U);
  for (LumoDevice* const part : {parent_, instance_}) {
    EXPECT_EQ(lumoDeviceGetSupportedEventTypes(part, &types), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(types, 0U);
  }
  EXPECT_FALSE(log_.has("Feat not supported !"));
}

}  // namespace
