#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

#include "driver_script.h"
#include "linux/ap/misc/misc_mkis_provider.h"
#include "linux/ap/misc/mkis_protocol_v0/misc_kernel_accessor_v0.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_board_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_device_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_ecc_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_gpu_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_memory_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_mpc_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_pcie_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_sablink_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_vgpu_records.h"
#include "linux/ap/misc/mkis_protocol_v1/misc_kernel_accessor_v1.h"
#include "support/log_capture.h"

// All interfaces of the misc node at once: which versions there are, and what every record of protocol 1
// has in common. The golden list is worked out by hand from the driver's tables.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::get;
using tolk_test::LogCapture;
using tolk_test::put;
using tolk_test::ScriptedDriver;

constexpr std::uint32_t kMci = 0xC0084DAF;

/// A row of the catalogue.
struct Row {
  std::uint32_t interface = 0;
  std::string operation;
  std::uint32_t version = 0;
  std::string record;
  std::size_t payload = 0;
};

template <class... Records>
void addRows(std::vector<Row>& rows, int interface, const char* operation) {
  (rows.push_back({static_cast<std::uint32_t>(interface), operation, kVersionOf<Records>,
                   MciTraits<Records>::kName, sizeof(Records)}),
   ...);
}

/// What the tool's own table of operations says.
std::vector<Row> catalogue() {
  std::vector<Row> rows;
#define MCI_OPERATION(area, name, action, ...) \
  addRows<__VA_ARGS__>(rows, static_cast<int>(MiscMkisIntfName::k##name), "do" #name);
#include "linux/ap/misc/mkis_protocol_v1/mci_operations.def"
#undef MCI_OPERATION
  return rows;
}

TEST(MiscCatalogue, IsTheGoldenOne) {
  std::ostringstream print;
  print << "slot interface operation version record payload body request\n";
  int slot = 5;  // the last that is no interface
  std::uint32_t interface = 0;
  for (const Row& row : catalogue()) {
    slot += row.interface == interface ? 0 : 1;
    interface = row.interface;
    print << slot << ' ' << row.interface << ' ' << row.operation << ' ' << row.version << ' ' << row.record
          << ' ' << row.payload << ' ' << row.payload + sizeof(MciBody) << " 0x" << std::hex << std::uppercase
          << kMciRequest << std::dec << '\n';
  }
  std::ifstream file(MKIS_GOLDEN_FOLDER "/misc_catalogue.txt");
  std::ostringstream golden;
  golden << file.rdbuf();
  ASSERT_FALSE(golden.str().empty());
  EXPECT_EQ(print.str(), golden.str());
}

using Numbers = std::vector<std::uint32_t>;

template <class Versions>
Numbers keysOf(const Versions& versions) {
  Numbers keys;
  for (const auto& [version, operation] : versions) {
    keys.push_back(version);
  }
  return keys;
}

std::map<int, Numbers> versionsOf(MiscKernelAccessorBase& accessor) {
  std::map<int, Numbers> versions;
#define MISC_INTERFACE(number, name, ...) versions[number] = keysOf(accessor.do##name());
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE
  return versions;
}

TEST(MiscCatalogue, SlotsOfProtocolOneOfferTheVersionsOfTheCatalogue) {
  std::map<int, Numbers> expected;
  for (const Row& row : catalogue()) {
    expected[static_cast<int>(row.interface)].push_back(row.version);
  }
  MiscKernelAccessorV1 accessor(NodeFile(), 1, 0);
  EXPECT_EQ(versionsOf(accessor), expected);
}

/// What protocol 0 has, by interface; those that are not here it lacks.
const std::map<int, Numbers> kProtocolZero{
    {2, {0, 1}}, {3, {0}},  {4, {0, 1, 2}}, {6, {0}},  {7, {0}},  {8, {0}},  {9, {0}},     {10, {0}},
    {11, {0}},   {13, {0}}, {14, {0}},      {16, {0}}, {12, {0}}, {15, {0}}, {26, {0, 1}}, {27, {0, 1}},
    {28, {0}},   {35, {0}}, {30, {0}},      {29, {0}}, {44, {0}}, {43, {0}}, {50, {0}},    {17, {1}},
    {18, {1}},   {19, {1}}, {20, {1, 2}},   {21, {1}}, {22, {1}}, {23, {1}}, {24, {1}},    {36, {0}},
    {37, {0}},   {38, {0}}, {39, {0}},      {51, {0}}, {52, {0}}, {64, {0}}, {53, {0}},    {54, {0}},
    {55, {0}},   {65, {0}}, {56, {0}},      {63, {0}}, {57, {0}}, {60, {0}}, {62, {0}},    {31, {0}},
    {32, {0}},   {61, {0}}, {33, {0}},      {34, {0}}, {66, {0}}, {45, {0}}, {46, {0}},    {47, {0}},
    {48, {0}},   {49, {0}}, {67, {}},       {68, {}},  {69, {}},  {70, {}},  {71, {}},     {72, {}},
    {73, {}},    {74, {}},  {75, {}},       {76, {}},
};

TEST(MiscCatalogue, SlotsOfProtocolZeroOfferItsVersions) {
  MiscKernelAccessorV0 accessor{NodeFile()};
  EXPECT_EQ(versionsOf(accessor), kProtocolZero);
}

TEST(MiscCatalogue, InterfaceThatAnOldDriverListsIsNeverTooNew) {
  for (const auto& [interface, versions] : kProtocolZero) {
    for (const std::uint32_t version : versions) {
      EXPECT_EQ(versionStrategy({versions.front(), versions.back()}, {version, version}).value(), version);
    }
  }
  // One of those whose lowest version is not 0, through the whole negotiation.
  ScriptedDriver driver;
  driver.allowOpen("/dev/ovgpu.3");
  driver.fail(0xC00C4DAE, ENOTTY);
  driver.answer(0xC0104DB0, [](std::uint8_t* r) {
    put<std::uint32_t>(r, 4, 1);
    return 0;
  });
  driver.answer(0xC1484DB1, [](std::uint8_t* r) {
    put<std::uint32_t>(r, 4, 1);
    put<std::uint32_t>(r, 8, 17);
    put<std::uint32_t>(r, 12, 1);
    return 0;
  });
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  const auto intf = provider.getIntf<MiscMkisIntfName::kQuerySablinkSpec>();
  ASSERT_TRUE(intf.ok());
  EXPECT_EQ(intf.value().version, 1);
}

/// A driver on whose node every operation of protocol 1 is performed, each with parameters of zero.
class EveryRecord : public testing::Test {
 protected:
  EveryRecord() {
    driver_.allowOpen("/dev/ovgpu.3");
    driver_.answer(kMci, [this](std::uint8_t* record) {
      calls_.emplace_back(record, record + 24 + get<std::uint32_t>(record, 12));
      return answer_(record);
    });
  }

  template <class Result, class... Params>
  static KelpReturn perform(const rusk::Callable<std::function<Result(Params...)>>& operation) {
    return operation(Params{}...).state();
  }

  /// The state of each version of each interface, in the order of the catalogue.
  std::vector<KelpReturn> performAll() {
    MiscKernelAccessorV1 accessor(NodeFile::open("/dev/ovgpu.3"), 5, 1);
    std::vector<KelpReturn> states;
#define MISC_INTERFACE(number, name, ...)                        \
  for (const auto& [version, operation] : accessor.do##name()) { \
    states.push_back(perform(operation));                        \
  }
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE
    return states;
  }

  ScriptedDriver driver_;
  LogCapture log_;
  std::vector<std::vector<std::uint8_t>> calls_;
  std::function<int(std::uint8_t*)> answer_;
};

TEST_F(EveryRecord, GoesOutWithItsHeaderAndNothingElse) {
  answer_ = [](std::uint8_t* record) {
    put<std::uint32_t>(record, 4, 5);
    return 0;
  };
  for (const KelpReturn state : performAll()) {
    EXPECT_EQ(state, KelpReturn::kNotSupported);
  }
  const auto rows = catalogue();
  ASSERT_EQ(calls_.size(), rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(rows[i].record);
    std::vector<std::uint8_t> expected(40 + rows[i].payload);
    put<std::uint16_t>(expected.data(), 0, 5);
    put<std::uint16_t>(expected.data(), 2, 1);
    put<std::uint32_t>(expected.data(), 4, 13);
    put<std::uint32_t>(expected.data(), 8, 2);
    put<std::uint32_t>(expected.data(), 12, static_cast<std::uint32_t>(16 + rows[i].payload));
    put<std::uint16_t>(expected.data(), 24, static_cast<std::uint16_t>(rows[i].interface));
    put<std::uint8_t>(expected.data(), 26, static_cast<std::uint8_t>(rows[i].version));
    put<std::uint32_t>(expected.data(), 28, static_cast<std::uint32_t>(rows[i].payload));
    if (rows[i].interface == 39) {
      put<std::uint32_t>(expected.data(), 40, 4);
    }
    if (rows[i].interface == 30) {
      put<std::uint32_t>(expected.data(), 44, get<std::uint32_t>(calls_[i].data(), 44));
    }
    EXPECT_EQ(calls_[i], expected);
  }
}

TEST_F(EveryRecord, ThatFailsLogsItsNameAndErrno) {
  answer_ = [](std::uint8_t*) { return EIO; };
  for (const KelpReturn state : performAll()) {
    EXPECT_EQ(state, KelpReturn::kFailure);
  }
  for (const Row& row : catalogue()) {
    EXPECT_EQ(log_.count(">> access< " + row.record + " > ioctl return error =  -1 , errno =  5 "), 1U)
        << row.record;
  }
  EXPECT_EQ(log_.count(", access error is  1 "), catalogue().size());
}

TEST_F(EveryRecord, ThatIsRefusedHasOneLineOfItsOwn) {
  answer_ = [](std::uint8_t* record) {
    put<std::uint32_t>(record, 4, 11);
    return 0;
  };
  for (const KelpReturn state : performAll()) {
    EXPECT_EQ(state, KelpReturn::kReadFailed);
  }
  EXPECT_EQ(log_.count(", access error is  8 "), catalogue().size());
  std::map<std::string, int> lines;
  for (const auto& [level, line] : log_.lines) {
    EXPECT_EQ(level, static_cast<int>(LogLevel::kError));
    ++lines[line.substr(line.find(">> "))];
  }
  EXPECT_EQ(lines.size(), 68U) << "a subject for each operation";
  EXPECT_EQ(lines[">> failed to query device description, access error is  8 "], 2)
      << "one of either version";
  EXPECT_EQ(lines[">> failed to query process gpu utilization, access error is  8 "], 2);
  EXPECT_EQ(lines[">> failed to set ecc mode, access error is  8 "], 1);
}

TEST_F(EveryRecord, ThatComesBackFullOfOnesIsRead) {
  answer_ = [](std::uint8_t* record) {
    std::memset(record + 40, 0xFF, get<std::uint32_t>(record, 28));
    put<std::uint32_t>(record, 4, 0);
    return 0;
  };
  const auto rows = catalogue();
  const auto states = performAll();
  ASSERT_EQ(states.size(), rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    // A sample is ready when the driver says 1, and all ones is not 1.
    EXPECT_EQ(states[i], rows[i].interface == 30 ? KelpReturn::kFailure : KelpReturn::kSuccess)
        << rows[i].record;
  }
}

}  // namespace
}  // namespace kelp::linux_
