// Commands to the firmware, at offsets written out here.
#include <gtest/gtest.h>

#include <cerrno>

#include "test_driver.h"

namespace {

constexpr uint32_t kSmc = 0xC1084D01;

// The word in front, as it goes over the wire.
uint64_t wordOf(uint64_t command, uint64_t length) {
  return command << 5 | uint64_t{2} << 24 | uint64_t{2} << 29 | length << 45;
}

Record commandRecord(uint64_t command, uint64_t length, uint64_t argument = 0) {
  return Record(264).put(0, 8, wordOf(command, length)).put(8, 4, argument);
}

std::string onChip(const std::string& model, const std::string& values, const std::string& more = "") {
  return R"({"protocol": 0, "gpus": [{"model": ")" + model + R"(", "values": {)" + values + "}" + more +
         "}]}";
}

// The reply to a command that the driver offers and that ends well.
Record ask(TestDriver& driver, uint64_t command, uint64_t length, uint64_t argument = 0) {
  Record record = commandRecord(command, length, argument);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kSmc, record), 0) << std::hex << command;
  EXPECT_EQ(record.get(8, 4), 0u) << "the status word of " << std::hex << command;
  EXPECT_EQ(driver.unexpected(), 0u) << std::hex << command;
  return record;
}

uint64_t statusOf(TestDriver& driver, uint64_t command, uint64_t length, uint64_t argument = 0) {
  Record record = commandRecord(command, length, argument);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kSmc, record), 0);
  return record.get(8, 4);
}

TEST(SimSmc, WordInFrontIsTheDrivers) {
  EXPECT_EQ(wordOf(0x50, 3), 0x0000600042000A00u);
  EXPECT_EQ(wordOf(0x08, 0x23), 0x0004600042000100u);
}

TEST(SimSmc, Fans) {
  TestDriver driver(onChip("B230", "", R"(, "fans": [{"percent": 40, "rpm": 1800},
      {"percent": 62, "rpm": 4100}, {"percent": 0, "rpm": 0, "duty": 7, "max_duty": 0}])"));
  EXPECT_EQ(ask(driver, 0x43, 2).get(12, 4), 3u);
  EXPECT_EQ(ask(driver, 0x51, 3, 1).get(12, 4), 4100u);
  for (const uint64_t percent : {40, 62}) {
    const Record duty = ask(driver, 0x57, 4, percent == 62);
    EXPECT_EQ(duty.get(12, 4) * 100 / duty.get(16, 4), percent);
  }
  const Record stuck = ask(driver, 0x57, 4, 2);
  EXPECT_EQ(stuck.get(12, 4), 7u);
  EXPECT_EQ(stuck.get(16, 4), 0u);
  EXPECT_EQ(statusOf(driver, 0x57, 4, 3), 12u);
  EXPECT_EQ(statusOf(driver, 0x51, 3, 3), 12u);
}

TEST(SimSmc, EveryPercentageComesBackFromItsDuty) {
  std::string fans;
  for (int i = 0; i <= 100; ++i) {
    fans += (i ? "," : "") + std::string(R"({"rpm": 1, "percent": )") + std::to_string(i) + "}";
  }
  TestDriver driver(onChip("B230", "", R"(, "fans": [)" + fans + "]"));
  for (uint64_t i = 0; i <= 100; ++i) {
    const Record duty = ask(driver, 0x57, 4, i);
    EXPECT_EQ(duty.get(12, 4) * 100 / duty.get(16, 4), i);
  }
}

TEST(SimSmc, ClockVoltageAndPower) {
  TestDriver driver(onChip("B230", R"("clock": {"72": 1200000000, "80": 1750000000},
      "voltage": {"0": 850, "2": 801}, "power": {"0": 60000, "1": 40001})"));
  EXPECT_EQ(ask(driver, 0x47, 4, 80).get(12, 4), 1750000000u);
  EXPECT_EQ(ask(driver, 0x47, 4, 0).get(12, 4), 1200000000u) << "the clock that is shown";
  EXPECT_EQ(ask(driver, 0x56, 3, 2).get(12, 4), 801u);
  EXPECT_EQ(ask(driver, 0x53, 3, 1).get(12, 4), 40001u);
  EXPECT_EQ(statusOf(driver, 0x47, 4, 1000), 12u);
  EXPECT_EQ(statusOf(driver, 0x56, 3, 9), 12u);
  EXPECT_EQ(statusOf(driver, 0x53, 3, 9), 12u);
}

TEST(SimSmc, TemperatureIsInWholeDegreesOnTheFirstFamilyAlone) {
  TestDriver wold(onChip("B210", R"("temperature": {"1": 42900, "2": -1500})"));
  EXPECT_EQ(ask(wold, 0x50, 3, 1).get(12, 4), 42u);
  EXPECT_EQ(ask(wold, 0x50, 3, 0).get(12, 4), 42u);
  EXPECT_EQ(ask(wold, 0x50, 3, 2).getSigned(12, 4), -1);
  EXPECT_EQ(statusOf(wold, 0x50, 3, 9), 12u);
  TestDriver fen(onChip("B230", R"("temperature": {"9": 43100, "18": -1500})"));
  EXPECT_EQ(ask(fen, 0x50, 3, 9).get(12, 4), 43100u);
  EXPECT_EQ(ask(fen, 0x50, 3, 18).getSigned(12, 4), -1500);
  TestDriver tor(onChip("B250A", R"("temperature": {"1000": 40500})"));
  EXPECT_EQ(ask(tor, 0x50, 3, 1000).get(12, 4), 40500u);
}

TEST(SimSmc, LimitsMemoryTemperatureAndFirmware) {
  TestDriver driver(onChip("B230", R"("temperature_slowdown": 95000, "temperature_shutdown": "n/a",
      "memory_temperature": 47, "firmware": [30102, "n/a", 3, 4, 5, 6])"));
  const Record limits = ask(driver, 0x58, 0x0C);
  EXPECT_EQ(limits.get(12, 4), 95000u);
  EXPECT_EQ(limits.get(16, 4), 0x80000000u);
  EXPECT_EQ(ask(driver, 0x17, 0x32).get(12, 4), 47u);
  const Record firmware = ask(driver, 0x0B, 0x15);
  EXPECT_EQ(firmware.get(12, 4), 30102u);
  EXPECT_EQ(firmware.get(16, 4), 0xFFFFFFFFu);
  EXPECT_EQ(firmware.get(32, 4), 6u);
}

TEST(SimSmc, EfuseHasAFormForEachLineOfChips) {
  const std::string fields = R"(, "efuse": ["0x123456789A", "0xABC", "0x15", "0x0A"])";
  TestDriver wold(onChip("B220", "", fields));
  Record record = commandRecord(0x08, 0x0E).put(12, 4, 1024);
  ASSERT_EQ(wold.ioctl("ovgpu.0", kSmc, record), 0);
  EXPECT_EQ(record.get(8, 4), 0u);
  EXPECT_EQ(record.get(12, 4), 0u);
  EXPECT_EQ(record.get(16, 4), 1024u);
  EXPECT_EQ(record.get(20 + 4 * 8, 4), 0x3456789Au);
  EXPECT_EQ(record.get(20 + 4 * 10, 4), 0x70100000u);
  TestDriver fen(onChip("B230", "", fields));
  record = commandRecord(0x08, 0x23).put(12, 4, 1024);
  ASSERT_EQ(fen.ioctl("ovgpu.0", kSmc, record), 0);
  EXPECT_EQ(record.get(12, 4), 2048u);
  EXPECT_EQ(record.get(20 + 4 * 7, 4), 0x3456789Au);
  EXPECT_EQ(record.get(20 + 4 * 14, 4), 0x02000030u);
  record = commandRecord(0x08, 0x23).put(12, 4, 1025);
  ASSERT_EQ(fen.ioctl("ovgpu.0", kSmc, record), 0);
  EXPECT_EQ(record.get(8, 4), 1u) << "more bits than a reply holds";
  EXPECT_EQ(wold.unexpected() + fen.unexpected(), 0u);
}

// ---- board data

const char* const kBoard = R"("memory_total": "12GiB", "memory_type": 1, "memory_vendor": 3,
    "channel_count": 6, "channel_width": 64, "core_count": 5, "units_per_core": [7, 7, 7, 7, 7],
    "core_clock_max": 1501, "cluster_count": 2, "board_name": "D33-X")";

std::string displays(int count) {
  std::string rows;
  for (int i = 0; i < count; ++i) {
    rows += (i ? "," : "") + std::string(R"({"type": "HDMI", "h_res": )") + std::to_string(100 + i) +
            R"(, "v_res": 200, "pixel_clock": "n/a"})";
  }
  return R"(, "displays": [)" + rows + "]";
}

void expectBoardHead(const Record& board, size_t at, uint64_t frequencyType) {
  const uint64_t words[] = {1, 4, frequencyType};
  for (size_t i = 0; i < 3; ++i) EXPECT_EQ(board.get(at + 4 * i, 4), words[i]) << i;
  const uint64_t bytes[] = {1, 3, 6, 64, 5, 7};
  for (size_t i = 0; i < 6; ++i) EXPECT_EQ(board.get(at + 12 + i, 1), bytes[i]) << i;
  EXPECT_EQ(board.get(at + 18, 2), 1501u);
  EXPECT_EQ(board.get(at + 20, 1), 2u);
}

TEST(SimSmc, BoardDataStandInTheRecordOfTheFirstFamily) {
  TestDriver driver(onChip("B210", std::string(kBoard) + R"(, "memory_clock_max": 1866000000)", displays(2)));
  const Record record = ask(driver, 0x7D, 0x1A);
  expectBoardHead(record, 12, 1);
  EXPECT_EQ(record.get(12 + 22, 2), 0u) << "no displays in this form";
  EXPECT_EQ(record.get(12 + 24, 8), 0u);
}

// Makes the buffer, runs the command, and gives the buffer back.
Record askShared(TestDriver& driver, uint64_t command, uint32_t size) {
  Record buffer = Record(16).put(0, 4, size);
  EXPECT_EQ(driver.ioctl("ovgpu.0", 0xC0104D03, buffer), 0);
  EXPECT_EQ(buffer.get(4, 4), 4096u);
  EXPECT_NE(buffer.get(8, 8), 0u);
  EXPECT_EQ(driver.buffers.size(), 1u);
  ask(driver, command, 4, buffer.get(8, 4));
  Record told(0);
  if (!driver.buffers.empty()) told.bytes = driver.buffers.begin()->second;
  EXPECT_EQ(driver.ioctl("ovgpu.0", 0xC0104D04, buffer), 0);
  EXPECT_TRUE(driver.buffers.empty());
  EXPECT_EQ(driver.unexpected(), 0u);
  return told;
}

TEST(SimSmc, BoardDataStandInTheSharedBufferOfTheNext) {
  for (const char* const model : {"B230", "B240"}) {
    TestDriver driver(
        onChip(model, std::string(kBoard) + R"(, "memory_clock_max": 2250000000)", displays(9)));
    const Record board = askShared(driver, 0x7D, 616);
    ASSERT_EQ(board.bytes.size(), 4096u);
    expectBoardHead(board, 0, 6);
    EXPECT_EQ(board.get(22, 2), 8u) << "a row that does not fit is dropped";
    EXPECT_EQ(board.get(24, 4), 3u);
    EXPECT_EQ(board.get(24 + 16 * 7 + 4, 4), 107u);
    EXPECT_EQ(board.get(24 + 16 * 7 + 8, 4), 200u);
    EXPECT_EQ(board.get(24 + 16 * 7 + 12, 4), 0xFFFFFFFFu);
    EXPECT_EQ(board.text(152, 64), "D33-X");
    EXPECT_EQ(board.get(216, 8), 0u);
  }
}

TEST(SimSmc, BoardDataAreARecordOnTheLatest) {
  TestDriver driver(
      onChip("B250A", std::string(kBoard) + R"(, "memory_clock_max": 2500000000)", displays(6)));
  Record record(104);
  ASSERT_EQ(driver.ioctl("ovgpu.0", 0x80684DAC, record), 0);
  expectBoardHead(record, 0, 7);
  EXPECT_EQ(record.get(22, 2), 5u);
  EXPECT_EQ(record.get(24, 4), 3u);
  EXPECT_EQ(record.get(24 + 16 * 4 + 4, 4), 104u);
  EXPECT_EQ(driver.unexpected(), 0u);
}

TEST(SimSmc, EachFamilyHasOneFormOfBoardData) {
  TestDriver tor(onChip("B250A", ""));
  Record record = commandRecord(0x7D, 4);
  EXPECT_EQ(tor.ioctl("ovgpu.0", kSmc, record), ENOTTY);
  EXPECT_EQ(tor.unexpected(), 1u);
  TestDriver fen(onChip("B230", ""));
  Record capabilities(104);
  EXPECT_EQ(fen.ioctl("ovgpu.0", 0x80684DAC, capabilities), ENOTTY);
  EXPECT_EQ(fen.unexpected(), 1u);
}

TEST(SimSmc, CodesOfMemorySizeAndFrequency) {
  const auto codes = [](const std::string& model, const std::string& values) {
    TestDriver driver(onChip(model, values));
    Record record = model == "B210" ? commandRecord(0x7D, 0x1A) : Record(104);
    EXPECT_EQ(driver.ioctl("ovgpu.0", model == "B210" ? kSmc : 0x80684DAC, record), 0);
    const size_t at = model == "B210" ? 12 : 0;
    return std::pair(record.getSigned(at + 4, 4), record.getSigned(at + 8, 4));
  };
  EXPECT_EQ(codes("B250A", ""), std::pair(int64_t{9}, int64_t{5})) << "64 GiB, 16000 MT/s";
  EXPECT_EQ(codes("B210", ""), std::pair(int64_t{2}, int64_t{0})) << "4 GiB, 3200 MT/s";
  EXPECT_EQ(codes("B250A", R"("memory_total": "1000GiB", "memory_clock_max": 7)"),
            std::pair(int64_t{-1}, int64_t{-1}))
      << "none that the firmware knows";
  EXPECT_EQ(codes("B250A", R"("memory_size_index": 77, "memory_frequency_type": 88)"),
            std::pair(int64_t{77}, int64_t{88}));
}

TEST(SimSmc, EdcCountersStandInTheSharedBuffer) {
  for (const char* const model : {"B210", "B230", "B250A"}) {
    TestDriver driver(onChip(model, R"("edc_channels": 2, "edc_read_errors": {"0": 1, "1": 2},
        "edc_write_errors": {"0": 3, "1": 4}, "edc_read_retries": {"0": 5, "1": 6},
        "edc_write_retries": {"0": 7, "1": 8})"));
    const Record counters = askShared(driver, 0x1C, 388);
    EXPECT_EQ(counters.get(0, 4), 2u);
    const uint64_t expected[] = {1, 3, 5, 7, 2, 4, 6, 8};
    for (size_t i = 0; i < 8; ++i) EXPECT_EQ(counters.get(4 + 4 * i, 4), expected[i]) << i;
  }
}

// ---- shared buffers

int allocate(TestDriver& driver, Record& buffer) {
  return driver.ioctl("ovgpu.0", 0xC0104D03, buffer);
}
int giveBack(TestDriver& driver, Record buffer) {
  return driver.ioctl("ovgpu.0", 0xC0104D04, buffer);
}

TEST(SimSmc, DescriptorHasOneBufferAtATime) {
  TestDriver driver(onChip("B230", ""));
  Record first = Record(16).put(0, 4, 5000);
  ASSERT_EQ(allocate(driver, first), 0);
  EXPECT_EQ(first.get(4, 4), 8192u);
  Record second = Record(16).put(0, 4, 388);
  EXPECT_EQ(allocate(driver, second), EBUSY);
  driver.descriptor = 1;
  ASSERT_EQ(allocate(driver, second), 0);
  EXPECT_NE(first.get(8, 4), second.get(8, 4)) << "the lower halves tell them apart";
  EXPECT_EQ(giveBack(driver, first), EINVAL) << "that is another descriptor's";
  EXPECT_EQ(giveBack(driver, Record(second).put(4, 4, 8192)), EINVAL) << "not what it was told";
  EXPECT_EQ(giveBack(driver, second), 0);
  EXPECT_EQ(giveBack(driver, second), EINVAL) << "it is gone";
  driver.descriptor = 0;
  EXPECT_EQ(giveBack(driver, first), 0);
  EXPECT_TRUE(driver.buffers.empty());
  Record nothing(16);
  EXPECT_EQ(allocate(driver, nothing), EINVAL) << "of no size";
}

TEST(SimSmc, CommandNeedsTheBufferOfItsDescriptorAndRoomInIt) {
  TestDriver driver(onChip("B230", ""));
  EXPECT_EQ(statusOf(driver, 0x7D, 4, 0x1000), 1u) << "there is none";
  Record buffer = Record(16).put(0, 4, 388);
  ASSERT_EQ(allocate(driver, buffer), 0);
  EXPECT_EQ(statusOf(driver, 0x1C, 4, buffer.get(8, 4)), 0u);
  EXPECT_EQ(statusOf(driver, 0x1C, 4, buffer.get(8, 4) + 1), 1u);
  EXPECT_EQ(statusOf(driver, 0x7D, 4, buffer.get(8, 4)), 1u) << "too small for board data";
}

TEST(SimSmc, RoomThatIsToldCanBeTooSmall) {
  TestDriver driver(onChip("B230", R"("map_size": [0, {"status": 8}])"));
  Record buffer = Record(16).put(0, 4, 616);
  ASSERT_EQ(allocate(driver, buffer), 0);
  EXPECT_EQ(buffer.get(4, 4), 0u);
  EXPECT_EQ(giveBack(driver, buffer), 0);
  EXPECT_EQ(allocate(driver, buffer), ENOMEM);
}

// ---- what goes wrong

TEST(SimSmc, RefusalIsAStatusWord) {
  TestDriver driver(onChip("B230", R"("power": {"0": {"status": 10}, "1": {"errno": "EIO"}})"),
                    {"ioctl(interface=66):status=9", "ioctl(kind=smc,interface=53):errno=EPERM"});
  EXPECT_EQ(statusOf(driver, 0x53, 3, 0), 10u);
  Record record = commandRecord(0x53, 3, 1);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kSmc, record), EIO);
  EXPECT_EQ(statusOf(driver, 0x58, 0x0C), 9u);
  record = commandRecord(0x43, 2);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kSmc, record), EPERM);
  EXPECT_EQ(driver.unexpected(), 0u);
}

TEST(SimSmc, ReplyOfOnesHasAGoodStatus) {
  TestDriver driver(onChip("B230", ""), {"ioctl(kind=smc):ones"});
  EXPECT_EQ(ask(driver, 0x53, 3).get(12, 4), 0xFFFFFFFFu);
  EXPECT_EQ(askShared(driver, 0x7D, 616).get(0, 8), ~uint64_t{0});
}

TEST(SimSmc, CountOfRowsCanLie) {
  TestDriver driver(onChip("B230", ""), {"ioctl(kind=smc):count=999"});
  EXPECT_EQ(askShared(driver, 0x7D, 616).get(22, 2), 999u);
}

TEST(SimSmc, BusyFirmwareAnswersAfterSoManyAttemptsOfACommand) {
  TestDriver driver(R"({"protocol": 0, "firmware_busy": 9, "gpus": [{"model": "B230"}, {"model": "B230"}]})");
  Record record(0);
  const auto attempt = [&](const std::string& node, uint64_t command, uint64_t length) {
    record = commandRecord(command, length);
    return driver.ioctl(node, kSmc, record);
  };
  for (int i = 0; i < 9; ++i) EXPECT_EQ(attempt("ovgpu.0", 0x53, 3), EAGAIN) << i;
  EXPECT_EQ(attempt("ovgpu.0", 0x43, 2), EAGAIN) << "another command has its own count";
  EXPECT_EQ(attempt("ovgpu.1", 0x53, 3), EAGAIN) << "and so has another device";
  EXPECT_EQ(attempt("ovgpu.0", 0x53, 3), 0);
  EXPECT_EQ(attempt("ovgpu.0", 0x53, 3), 0) << "it has come up";
  EXPECT_EQ(driver.unexpected(), 0u);
}

TEST(SimSmc, FirmwareCanBeBusyEveryTime) {
  TestDriver driver(
      R"({"protocol": 0, "firmware_busy": {"attempts": 1, "again": true}, "gpus": [{"model": "B230"}]})");
  for (int i = 0; i < 3; ++i) {
    Record record = commandRecord(0x53, 3);
    EXPECT_EQ(driver.ioctl("ovgpu.0", kSmc, record), EAGAIN);
    EXPECT_EQ(driver.ioctl("ovgpu.0", kSmc, record), 0);
  }
}

// ---- what was not offered

TEST(SimSmc, CommandOfAnInterfaceThatIsNotListedIsUnexpected) {
  TestDriver driver(R"({"protocol": 0, "interfaces": {"56": null, "60": null, "61": null},
      "gpus": [{"model": "B230"}]})");
  Record record = commandRecord(0x50, 3, 9);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kSmc, record), ENOTTY);
  EXPECT_EQ(driver.unexpected(), 1u);
  TestDriver boards(R"({"protocol": 0, "interfaces": {"57": null, "60": null, "64": null},
      "gpus": [{"model": "B230"}]})");
  askShared(boards, 0x7D, 616);
  TestDriver without(R"({"protocol": 0, "interfaces": {"57": null, "60": null, "61": null, "64": null},
      "gpus": [{"model": "B230"}]})");
  Record buffer = Record(16).put(0, 4, 616);
  EXPECT_EQ(allocate(without, buffer), ENOTTY);
  EXPECT_EQ(without.unexpected(), 1u);
}

TEST(SimSmc, WordInFrontMustBeRight) {
  TestDriver driver(onChip("B230", ""));
  EXPECT_EQ(statusOf(driver, 0x50, 4, 9), 0u) << "the length selects nothing";
  EXPECT_EQ(driver.unexpected(), 1u);
  Record record = commandRecord(0x08, 0x0E).put(12, 4, 1024);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kSmc, record), 0);
  EXPECT_EQ(driver.unexpected(), 2u) << "the form of another family";
  record = commandRecord(0x7F, 3);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kSmc, record), ENOTTY) << "no such command";
  EXPECT_EQ(driver.unexpected(), 3u);
}

TEST(SimSmc, OtherDriversHaveNoCommands) {
  for (const char* const protocol : {"1", "\"none\""}) {
    TestDriver driver(std::string(R"({"protocol": )") + protocol + R"(, "gpus": [{"model": "B230"}]})");
    Record record = commandRecord(0x53, 3);
    EXPECT_EQ(driver.ioctl("ovgpu.0", kSmc, record), ENOTTY);
    EXPECT_EQ(driver.unexpected(), 1u);
  }
}

}  // namespace
