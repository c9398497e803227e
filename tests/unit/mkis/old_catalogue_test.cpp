#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

#include "driver_script.h"
#include "linux/ap/misc/misc_mkis_provider.h"
#include "linux/ap/misc/mkis_protocol_v0/ipc_board_records.h"
#include "linux/ap/misc/mkis_protocol_v0/ipc_sensor_records.h"
#include "linux/ap/misc/mkis_protocol_v0/misc_kernel_accessor_v0.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_device_records.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_memory_records.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_mpc_records.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_pcie_records.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_sablink_records.h"
#include "old_driver.h"
#include "support/log_capture.h"

// All interfaces of old drivers at once, and what is agreed on with drivers of all ages. The golden lists are
// worked out from the driver's tables.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::DriverScript;
using tolk_test::get;
using tolk_test::LogCapture;
using tolk_test::OldDriver;
using tolk_test::put;
using tolk_test::ScriptedDriver;

std::string golden(const std::string& name) {
  std::ifstream file(MKIS_GOLDEN_FOLDER "/" + name);
  std::ostringstream text;
  text << file.rdbuf();
  EXPECT_FALSE(text.str().empty());
  return text.str();
}

template <class... Records>
void printRecords(std::ostream& print, int slot, MiscMkisIntfName name, const char* operation) {
  (
      [&] {
        EXPECT_EQ(kInterfaceOf<Records>, static_cast<int>(name));
        print << slot << ' ' << std::dec << kInterfaceOf<Records> << ' ' << operation << ' '
              << kVersionOf<Records> << ' ' << MkiTraits<Records>::kName << " 0x" << std::hex
              << std::uppercase << MkiTraits<Records>::kRequest << std::dec << ' ' << sizeof(Records) << '\n';
      }(),
      ...);
}

template <class... Commands>
void printCommands(std::ostream& print, int slot, MiscMkisIntfName name, const char* operation) {
  ((print << slot << ' ' << static_cast<int>(name) << ' ' << operation << " 0 " << IpcTraits<Commands>::kName
          << " 0x" << std::hex << std::uppercase << IpcTraits<Commands>::kCommand << " 0x"
          << IpcTraits<Commands>::kLength << std::dec << '\n'),
   ...);
}

TEST(OldCatalogue, IsTheGoldenOne) {
  std::ostringstream print;
  print << "slot interface operation version record request size, or command and length\n";
  int slot = 6;
#define MKI_OPERATION(area, name, action, ...) \
  printRecords<__VA_ARGS__>(print, slot++, MiscMkisIntfName::k##name, "do" #name);
#define SMC_OPERATION(name, ...) \
  printCommands<__VA_ARGS__>(print, slot++, MiscMkisIntfName::k##name, "do" #name);
#include "linux/ap/misc/mkis_protocol_v0/mki_operations.def"
#undef MKI_OPERATION
#undef SMC_OPERATION
  EXPECT_EQ(print.str(), golden("old_catalogue.txt"));
}

/// A driver on whose node every operation is performed, each with parameters of zero.
class EveryOldRecord : public testing::Test {
 protected:
  EveryOldRecord() : accessor_(NodeFile::open(OldDriver::kNode)) {
#define MKI_OPERATION(area, name, action, ...) announce<__VA_ARGS__>();
#define SMC_OPERATION(name, ...)
#include "linux/ap/misc/mkis_protocol_v0/mki_operations.def"
#undef MKI_OPERATION
#undef SMC_OPERATION
  }

  template <class... Records>
  void announce() {
    (driver_.answer(MkiTraits<Records>::kRequest,
                    [this](std::uint8_t* record) { return answer_(record, sizeof(Records)); }),
     ...);
  }

  template <class Result, class... Params>
  static KelpReturn perform(const rusk::Callable<std::function<Result(Params...)>>& operation) {
    return operation(Params{}...).state();
  }

  /// The state of each version of each interface that has a record, by "interface version".
  std::map<std::string, KelpReturn> performAll() {
    std::map<std::string, KelpReturn> states;
#define MKI_OPERATION(area, name, ...)                                                                    \
  for (const auto& [version, operation] : accessor_.do##name()) {                                         \
    states[std::to_string(static_cast<int>(MiscMkisIntfName::k##name)) + " " + std::to_string(version)] = \
        perform(operation);                                                                               \
  }
#define SMC_OPERATION(name, ...)
#include "linux/ap/misc/mkis_protocol_v0/mki_operations.def"
#undef MKI_OPERATION
#undef SMC_OPERATION
    return states;
  }

  OldDriver driver_{{}};
  LogCapture log_;
  MiscKernelAccessorV0 accessor_;
  std::function<int(std::uint8_t*, std::size_t)> answer_;
};

TEST_F(EveryOldRecord, ThatFailsLogsItsNameAndErrnoAndOneLineOfItsOwn) {
  answer_ = [](std::uint8_t*, std::size_t) { return EIO; };
  const auto states = performAll();
  EXPECT_EQ(states.size(), 50U);
  for (const auto& [record, state] : states) {
    EXPECT_EQ(state, KelpReturn::kFailure) << record;
  }
  EXPECT_EQ(log_.count("> ioctl return error =  -1 , errno =  5 "), states.size());
  EXPECT_EQ(log_.count(", access error is  1 "), states.size());
  EXPECT_EQ(log_.count(">> failed to query process memory, access error is  1 "), 3U);
}

TEST_F(EveryOldRecord, ThatComesBackFullOfOnesIsRead) {
  answer_ = [](std::uint8_t* record, std::size_t size) {
    std::memset(record, 0xFF, size);
    return 0;
  };
  for (const auto& [record, state] : performAll()) {
    // A sample is ready when the driver says 1, and all ones is not 1.
    EXPECT_EQ(state, record == "30 0" ? KelpReturn::kFailure : KelpReturn::kSuccess) << record;
  }
}

TEST_F(EveryOldRecord, IsCalledInTheLogWhatTheNewerOneIsCalled) {
  std::map<std::string, std::string> actions;
#define MCI_OPERATION(area, name, action, ...) actions[#name] = action;
#include "linux/ap/misc/mkis_protocol_v1/mci_operations.def"
#undef MCI_OPERATION
#define MKI_OPERATION(area, name, action, ...) EXPECT_EQ(actions[#name], action);
#define SMC_OPERATION(name, ...)
#include "linux/ap/misc/mkis_protocol_v0/mki_operations.def"
#undef MKI_OPERATION
#undef SMC_OPERATION
}

// Drivers of all ages. A column per driver, a row per interface: the version that is agreed on, or why none
// is.

const char* whyNone(MkisError error) {
  switch (error) {
    case MkisError::kNotListed:
      return "unlisted";
    case MkisError::kRemoteTooNew:
      return "new";
    case MkisError::kRemoteTooOld:
      return "old";
    default:
      return "none";
  }
}

struct Column {
  std::string protocol;
  std::vector<std::string> cells;
};

Column columnOf(MiscMkisProvider& provider) {
  Column column;
  const auto done = provider.init();
  const MiscKernelAccessorBase* const accessor = provider.getAccessor();
  column.protocol = accessor == nullptr                                              ? whyNone(done.state())
                    : dynamic_cast<const MiscKernelAccessorV0*>(accessor) != nullptr ? "0"
                                                                                     : "1";
#define MISC_INTERFACE(number, name, ...)                                                        \
  {                                                                                              \
    const auto intf = provider.getIntf<MiscMkisIntfName::k##name>();                             \
    std::string cell =                                                                           \
        intf.ok() ? std::to_string(intf.value().version) : std::string(whyNone(intf.state()));   \
    column.cells.push_back(intf.ok() && !intf.value().operation ? cell + "?" : std::move(cell)); \
  }
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE
  return column;
}

std::vector<int> allNumbers() {
  std::vector<int> numbers;
#define MISC_INTERFACE(number, ...) numbers.push_back(number);
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE
  return numbers;
}

Column oldDriver(std::vector<OldDriver::Entry> listed) {
  OldDriver driver(std::move(listed));
  MiscMkisProvider provider("ovgpu.3");
  return columnOf(provider);
}

Column newDriver(std::uint16_t lowest, std::uint16_t highest, std::vector<tolk_test::Listed> listed) {
  DriverScript driver(std::move(listed));
  driver.allowOpen(OldDriver::kNode);
  driver.currentMinor = lowest;
  driver.currentMajor = highest;
  MiscMkisProvider provider("ovgpu.3");
  return columnOf(provider);
}

Column oldDriverOfVersion(std::uint32_t version) {
  std::vector<OldDriver::Entry> listed;
  for (const int number : allNumbers()) {
    listed.push_back({static_cast<std::uint32_t>(number), version});
  }
  return oldDriver(std::move(listed));
}

Column newDriverOfRange(std::uint16_t lowest, std::uint16_t highest, std::uint8_t min, std::uint8_t max) {
  std::vector<tolk_test::Listed> listed;
  for (const int number : allNumbers()) {
    listed.push_back({static_cast<std::uint16_t>(number), min, max});
  }
  return newDriver(lowest, highest, std::move(listed));
}

Column driverWithoutProbes() {
  ScriptedDriver driver;
  driver.allowOpen(OldDriver::kNode);
  driver.fail(DriverScript::kProbe, ENOTTY);
  driver.fail(DriverScript::kOldProbe, ENOTTY);
  MiscMkisProvider provider("ovgpu.3");
  return columnOf(provider);
}

TEST(Negotiation, NameThatAnOldListHoldsTwiceKeepsItsFirstVersion) {
  OldDriver driver({{2, 1}, {2, 0}, {3, 0}});
  driver.answer(DriverScript::kOldProbe, [](std::uint8_t* r) {
    put<std::uint32_t>(r, 4, 2);
    return 0;
  });
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  EXPECT_EQ(provider.getIntf<MiscMkisIntfName::kQueryGpuStatus>().value().version, 1);
  EXPECT_EQ(provider.getIntf<MiscMkisIntfName::kQueryMemUsage>().value().version, 0);
}

TEST(Negotiation, WithDriversOfAllAgesIsTheGoldenOne) {
  const std::vector<std::pair<const char*, Column>> drivers{
      {"no-probe", driverWithoutProbes()},
      {"old-v0", oldDriverOfVersion(0)},
      {"old-v1", oldDriverOfVersion(1)},
      {"old-v2", oldDriverOfVersion(2)},
      {"old-few", oldDriver({{2, 1}, {3, 0}, {4, 2}, {6, 0}, {999, 0}})},
      {"p0-p1", newDriverOfRange(0, 1, 0, 255)},
      {"p1-v1", newDriverOfRange(1, 1, 1, 1)},
      {"p1-p5", newDriverOfRange(1, 5, 2, 9)},
      {"p1-few", newDriver(0, 1, {{8, 1, 5}, {60, 3, 5}, {2, 0, 1}, {76, 0, 0}, {76, 0, 1}})},
      {"p2", newDriverOfRange(2, 2, 0, 255)},
  };
  std::ostringstream print;
  print << "interface";
  for (const auto& [name, column] : drivers) {
    print << ' ' << name;
  }
  print << "\nprotocol";
  for (const auto& [name, column] : drivers) {
    print << ' ' << column.protocol;
  }
  print << '\n';
  const std::vector<int> numbers = allNumbers();
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    print << numbers[i];
    for (const auto& [name, column] : drivers) {
      print << ' ' << column.cells[i];
    }
    print << '\n';
  }
  EXPECT_EQ(print.str(), golden("negotiation.txt"));
}

}  // namespace
}  // namespace kelp::linux_
