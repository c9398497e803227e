#include <gtest/gtest.h>

#include <array>

#include "linux/ap/misc/misc_mkis_provider.h"
#include "linux/ap/misc/mkis_protocol_v1/misc_kernel_accessor_v1.h"
#include "support/log_capture.h"
#include "support/scripted_driver.h"

// Agreement with the driver over the misc node. Request numbers and offsets are typed from the
// driver's tables, not taken from the records under test.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::get;
using tolk_test::LogCapture;
using tolk_test::put;
using tolk_test::ScriptedDriver;

constexpr std::uint32_t kProbeV1 = 0xC00C4DAE;
constexpr std::uint32_t kProbeV0 = 0xC0104DB0;
constexpr std::uint32_t kListV0 = 0xC1484DB1;
constexpr std::uint32_t kMci = 0xC0084DAF;

struct Listed {
  std::uint16_t name;
  std::uint8_t min;
  std::uint8_t max;
};

/// A driver of protocol 1 that answers the probe, the scan and the list, and calls by a function.
struct ProtocolOne {
  explicit ProtocolOne(std::vector<Listed> entries, std::uint16_t major = 1, std::uint16_t minor = 0)
      : listed(std::move(entries)) {
    driver.allowOpen("/dev/ovgpu.3");
    driver.answer(kProbeV1, [=](std::uint8_t* r) {
      put<std::uint16_t>(r, 0, major);
      put<std::uint16_t>(r, 2, minor);
      return 0;
    });
    driver.answer(kMci, [this](std::uint8_t* r) { return answer(r); });
  }

  int answer(std::uint8_t* r) {
    EXPECT_EQ(get<std::uint32_t>(r, 4), 13U) << "status on the way in";
    const auto pduType = get<std::uint32_t>(r, 8);
    const auto bodySize = get<std::uint32_t>(r, 12);
    put<std::uint32_t>(r, 4, status);
    if (pduType == 0) {
      EXPECT_EQ(bodySize, 24U);
      put<std::uint16_t>(r, 24, static_cast<std::uint16_t>(listed.size()));
    } else if (pduType == 1) {
      EXPECT_EQ(bodySize, (listed.size() + 1) * 12);
      EXPECT_EQ(get<std::uint16_t>(r, 24), listed.size());
      for (std::size_t i = 0; i < listed.size(); ++i) {
        put<std::uint16_t>(r, 36 + i * 12, listed[i].name);
        put<std::uint8_t>(r, 36 + i * 12 + 2, listed[i].max);
        put<std::uint8_t>(r, 36 + i * 12 + 3, listed[i].min);
      }
    } else {
      return call(r);
    }
    return 0;
  }

  ScriptedDriver driver;
  std::vector<Listed> listed;
  std::uint32_t status = 0;
  std::function<int(std::uint8_t*)> call = [](std::uint8_t*) { return EIO; };
};

TEST(MiscNegotiation, DriverThatAnswersNoProbeGetsTheDefaultList) {
  ScriptedDriver driver;
  LogCapture log;
  driver.allowOpen("/dev/ovgpu.3");
  driver.fail(kProbeV1, ENOTTY);
  driver.fail(kProbeV0, ENOTTY);
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  for (int name = 0; name <= 6; ++name) {
    const auto range = provider.getRemoteVersion(name);
    ASSERT_TRUE(range.ok());
    EXPECT_EQ(range.value().min, 0U);
    EXPECT_EQ(range.value().max, 0U);
  }
  EXPECT_EQ(provider.getRemoteVersion(7).state(), MkisError::kNotListed);
  EXPECT_EQ(provider.getIntf<MiscMkisIntfName::kQueryGpuStatus>().value().version, 0);
  EXPECT_EQ(provider.getIntf<MiscMkisIntfName::kQueryDevDesc>().state(), MkisError::kNotListed);
  EXPECT_EQ(provider.getIntf<MiscMkisIntfName::kQueryEfuseData>().state(), MkisError::kNotListed);
  EXPECT_EQ(provider.getIntf<MiscMkisIntfName::kQueryDevName>().state(), MkisError::kFailure)
      << "the protocol itself has no such interface";
  EXPECT_TRUE(
      log.has(LogLevel::kWarn, "use getMkisProbeV1 query remote mkis version failed, use v0 for a try"));
  EXPECT_TRUE(log.has(LogLevel::kError, "use getMkisProbeV1 and V0 query remote mkis version all failed"));
  EXPECT_TRUE(log.has(LogLevel::kError, "get mkis probe failed. use default mkis list"));
  EXPECT_TRUE(log.has(LogLevel::kDebug, "Faking mkis list for legacy driver !"));
}

TEST(MiscNegotiation, LowestRemoteProtocolTwoIsTooNew) {
  ProtocolOne one({}, 2, 2);
  LogCapture log;
  MiscMkisProvider provider("ovgpu.3");
  EXPECT_EQ(provider.init().state(), MkisError::kRemoteTooNew);
  EXPECT_EQ(provider.getAccessor(), nullptr);
  EXPECT_TRUE(
      log.has(LogLevel::kInfo, "remote too new. local max version is  1  remote mkis min version is  2"));
  EXPECT_EQ(provider.getIntf<MiscMkisIntfName::kQueryDevDesc>().state(), MkisError::kFailure);
}

TEST(MiscNegotiation, HighestRemoteProtocolFiveWithLowestOneIsSpokenToInOne) {
  ProtocolOne one({{8, 1, 2}}, 5, 1);
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  EXPECT_EQ(one.driver.count(kMci), 2U) << "one scan, one list";
}

TEST(MiscNegotiation, HighestCommonVersionOfAnInterfaceIsChosen) {
  ProtocolOne one({{8, 1, 5}});
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  const auto intf = provider.getIntf<MiscMkisIntfName::kQueryDevDesc>();
  ASSERT_TRUE(intf.ok());
  EXPECT_EQ(intf.value().version, 2);
}

TEST(MiscNegotiation, InterfaceWhoseLowestVersionIsAboveOursIsTooNew) {
  ProtocolOne one({{8, 3, 5}});
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  const auto intf = provider.getIntf<MiscMkisIntfName::kQueryDevDesc>();
  EXPECT_EQ(intf.state(), MkisError::kRemoteTooNew);
  EXPECT_EQ(intf.value().version, -256);
}

TEST(MiscNegotiation, InterfaceThatTheDriverDoesNotListIsNotListed) {
  ProtocolOne one({{8, 1, 2}});
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  EXPECT_EQ(provider.getIntf<MiscMkisIntfName::kQueryMemUsage>().state(), MkisError::kNotListed);
}

TEST(MiscNegotiation, NameThatTheListHoldsTwiceKeepsTheFirstRange) {
  ProtocolOne one({{8, 1, 1}, {8, 2, 2}});
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  EXPECT_EQ(provider.getIntf<MiscMkisIntfName::kQueryDevDesc>().value().version, 1);
}

TEST(MiscNegotiation, ListOfMoreThanAHundredEntriesIsTakenWhole) {
  std::vector<Listed> entries;
  for (std::uint16_t name = 0; name < 1000; ++name) {
    entries.push_back({static_cast<std::uint16_t>(name + 100), 0, 0});
  }
  entries.push_back({8, 2, 2});
  ProtocolOne one(entries);
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  EXPECT_TRUE(provider.getRemoteVersion(8).ok());
  EXPECT_TRUE(provider.getRemoteVersion(1099).ok());
}

TEST(MiscNegotiation, RefusedScanFails) {
  ProtocolOne one({{8, 1, 2}});
  one.status = 10;
  LogCapture log;
  MiscMkisProvider provider("ovgpu.3");
  EXPECT_EQ(provider.init().state(), MkisError::kFailure);
  EXPECT_TRUE(log.has(LogLevel::kError, "scan pdu status is 10"));
}

TEST(MiscNegotiation, RefusedOrFailedListFails) {
  ProtocolOne one({{8, 1, 2}});
  LogCapture log;
  unsigned failing = 0;
  bool refused = false;
  one.driver.answer(kMci, [&](std::uint8_t* r) {
    const auto pduType = get<std::uint32_t>(r, 8);
    const int error = one.answer(r);
    if (pduType == failing && refused) {
      put<std::uint32_t>(r, 4, 7);
    }
    return pduType == failing && !refused ? EIO : error;
  });
  MiscMkisProvider provider("ovgpu.3");
  EXPECT_EQ(provider.init().state(), MkisError::kFailure);
  EXPECT_TRUE(log.has(LogLevel::kError, ">> scan pdu ioctl failed. errno is  5 "));
  failing = 1;
  EXPECT_EQ(provider.init().state(), MkisError::kFailure);
  EXPECT_TRUE(log.has(LogLevel::kError, ">> get remote interface list ioctl failed. errno is  5 "));
  refused = true;
  EXPECT_EQ(provider.init().state(), MkisError::kFailure);
  EXPECT_TRUE(log.has(LogLevel::kError, ">> mkis list status is  7 "));
  EXPECT_EQ(provider.getAccessor(), nullptr);
}

TEST(MiscNegotiation, EveryEntryOfTheListIsLogged) {
  ProtocolOne one({{8, 1, 2}, {67, 0, 0}});
  LogCapture log;
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  EXPECT_TRUE(log.has(LogLevel::kInfo,
                      ">> remote interface list index  0  name id is  8  version range is [ 1 - 2 ] "));
  EXPECT_TRUE(log.has(LogLevel::kInfo,
                      ">> remote interface list index  1  name id is  67  version range is [ 0 - 0 ] "));
}

TEST(MiscNegotiation, NodeThatCannotBeOpenedFailsWithItsErrno) {
  ScriptedDriver driver;
  LogCapture log;
  driver.allowOpen("/dev/ovgpu.3", EACCES);
  MiscMkisProvider provider("ovgpu.3");
  EXPECT_EQ(provider.init().state(), MkisError::kFailure);
  EXPECT_TRUE(log.has(LogLevel::kError, "open  /dev/ovgpu.3  failed. value is  -1  errno is  13"));
  EXPECT_TRUE(driver.calls.empty());
}

TEST(MiscNegotiation, ResetNegotiatesEverythingAnew) {
  ProtocolOne one({{8, 1, 1}});
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  one.listed = {{8, 2, 2}};
  ASSERT_TRUE(provider.reset().ok());
  EXPECT_EQ(provider.getIntf<MiscMkisIntfName::kQueryDevDesc>().value().version, 2);
}

/// A driver of protocol 0 whose list pages are made by a function.
struct ProtocolZero {
  explicit ProtocolZero(std::uint32_t interfaceCount, ScriptedDriver::Answer page) {
    driver.allowOpen("/dev/ovgpu.3");
    driver.fail(kProbeV1, ENOTTY);
    driver.answer(kProbeV0, [=](std::uint8_t* r) {
      put<std::uint32_t>(r, 4, interfaceCount);
      return 0;
    });
    driver.answer(kListV0, std::move(page));
  }
  ScriptedDriver driver;
};

TEST(MiscNegotiation, ProtocolZeroListIsFetchedPageByPage) {
  ProtocolZero zero(45, [](std::uint8_t* r) {
    const auto start = get<std::uint32_t>(r, 0);
    EXPECT_EQ(get<std::uint32_t>(r, 4), 20U);
    const std::uint32_t count = std::min(20U, 45 - start);
    put<std::uint32_t>(r, 4, count);
    for (std::uint32_t i = 0; i < count; ++i) {
      put<std::uint32_t>(r, 8 + i * 16, start + i);
      put<std::uint32_t>(r, 8 + i * 16 + 4, start + i == 2 ? 1 : 0);
    }
    return 0;
  });
  LogCapture log;
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  EXPECT_EQ(zero.driver.count(kListV0), 3U);
  EXPECT_TRUE(provider.getRemoteVersion(44).ok());
  EXPECT_EQ(provider.getIntf<MiscMkisIntfName::kQueryGpuStatus>().value().version, 1);
  EXPECT_TRUE(log.has("Got mkis list entries number:  45"));
}

TEST(MiscNegotiation, ProtocolZeroPageThatBringsNothingNewIsADeadLock) {
  ProtocolZero zero(3, [](std::uint8_t* r) {
    put<std::uint32_t>(r, 4, 0);
    return 0;
  });
  LogCapture log;
  MiscMkisProvider provider("ovgpu.3");
  EXPECT_EQ(provider.init().state(), MkisError::kFailure);
  EXPECT_TRUE(log.has(LogLevel::kError, "Dead lock detected !!!"));
}

TEST(MiscNegotiation, ProtocolZeroPageOfMoreThanItHoldsFails) {
  ProtocolZero zero(30, [](std::uint8_t* r) {
    put<std::uint32_t>(r, 4, 21);
    return 0;
  });
  LogCapture log;
  MiscMkisProvider provider("ovgpu.3");
  EXPECT_EQ(provider.init().state(), MkisError::kFailure);
  EXPECT_TRUE(log.has(LogLevel::kError, "mkis list entry number overflow !"));
}

TEST(MiscNegotiation, ProtocolZeroListOfBillionsEnds) {
  ProtocolZero zero(0xFFFFFFFF, [](std::uint8_t* r) {
    const auto start = get<std::uint32_t>(r, 0);
    for (std::uint32_t i = 0; i < 20; ++i) {
      put<std::uint32_t>(r, 8 + i * 16, start + i);
    }
    return 0;
  });
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  EXPECT_LE(zero.driver.count(kListV0), 65535U / 20 + 1);
}

TEST(VersionStrategy, RemoteTooOldWhenItEndsBelowOurLowest) {
  LogCapture log;
  EXPECT_EQ(versionStrategy({2, 3}, {0, 1}).state(), MkisError::kRemoteTooOld);
  EXPECT_TRUE(
      log.has(LogLevel::kInfo, "remote too old. local min version is  2  remote mkis max version is  1"));
}

TEST(ProtocolOneCalls, BodyNamesInterfaceVersionAndSize) {
  ProtocolOne one({{56, 1, 1}}, 1, 0);
  one.call = [](std::uint8_t* r) {
    EXPECT_EQ(get<std::uint16_t>(r, 0), 1U);
    EXPECT_EQ(get<std::uint16_t>(r, 2), 0U);
    EXPECT_EQ(get<std::uint32_t>(r, 12), 40U);
    EXPECT_EQ(get<std::uint16_t>(r, 24), 56U);
    EXPECT_EQ(get<std::uint8_t>(r, 26), 1U);
    EXPECT_EQ(get<std::uint32_t>(r, 28), 24U);
    EXPECT_EQ(get<std::uint32_t>(r, 40), 1002U);
    put<std::int32_t>(r, 44, -1500);
    return 0;
  };
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  const auto intf = provider.getIntf<MiscMkisIntfName::kQueryTemper>();
  const auto temperature = intf.value().operation(QueryTemperParam{1002});
  ASSERT_TRUE(temperature.ok());
  EXPECT_FLOAT_EQ(temperature.value(), -1.5F);
}

TEST(ProtocolOneCalls, DriverStatusBecomesTheStateOfTheTable) {
  constexpr std::array<unsigned, 15> kStates{0, 9, 6, 9, 6, 6, 12, 14, 13, 16, 11, 8, 7, 1, 1};
  ProtocolOne one({{67, 0, 0}});
  LogCapture log;
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  one.call = [](std::uint8_t*) { return 0; };
  for (unsigned status = 0; status < kStates.size(); ++status) {
    one.status = status;
    const auto state = provider.getIntf<MiscMkisIntfName::kQueryPstate>().value().operation();
    EXPECT_EQ(static_cast<unsigned>(state.state()), kStates[status]) << "status " << status;
  }
  EXPECT_TRUE(log.has(LogLevel::kError, "failed to query performance state, access error is  8"));
}

TEST(ProtocolOneCalls, FailedRequestLogsTheRecordAndErrno) {
  ProtocolOne one({{67, 0, 0}});
  LogCapture log;
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  EXPECT_EQ(provider.getIntf<MiscMkisIntfName::kQueryPstate>().value().operation().state(),
            KelpReturn::kFailure);
  EXPECT_TRUE(log.has(LogLevel::kError, "access< MciGetPstateV0 > ioctl return error =  -1 , errno =  5"));
}

TEST(ProtocolOneCalls, LyingCountsAreCutToTheRecord) {
  ProtocolOne one({{4, 3, 3}, {9, 1, 1}, {10, 1, 1}, {11, 1, 1}});
  one.call = [](std::uint8_t* r) {
    const auto payload = get<std::uint32_t>(r, 28);
    std::memset(r + 40, 0xFF, payload);
    return 0;
  };
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  EXPECT_EQ(provider.getIntf<MiscMkisIntfName::kQueryProcMemState>().value().operation().value().size(), 1U)
      << "eighty rows of one pid";
  const auto profiles = provider.getIntf<MiscMkisIntfName::kQueryMpcProfList>().value().operation();
  ASSERT_EQ(profiles.value().size(), 32U);
  EXPECT_EQ(profiles.value()[31].name.size(), 32U);
  const auto configurations = provider.getIntf<MiscMkisIntfName::kQueryMpcConfList>().value().operation();
  ASSERT_EQ(configurations.value().size(), 32U);
  EXPECT_EQ(configurations.value()[31].profileIds.size(), 32U);
  EXPECT_EQ(provider.getIntf<MiscMkisIntfName::kQueryMpcInstList>().value().operation().value().size(), 17U);
}

TEST(ProtocolOneCalls, AllOnesIsNotAvailable) {
  ProtocolOne one({{2, 3, 3}, {3, 1, 1}});
  one.call = [](std::uint8_t* r) {
    std::memset(r + 40, 0xFF, get<std::uint32_t>(r, 28));
    put<std::uint32_t>(r, 40 + 24, 77);
    return 0;
  };
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  const auto status = provider.getIntf<MiscMkisIntfName::kQueryGpuStatus>().value().operation();
  EXPECT_EQ(status.value().utilization.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(status.value().coreMax.ok(), true);
  const auto usage = provider.getIntf<MiscMkisIntfName::kQueryMemUsage>().value().operation();
  EXPECT_EQ(usage.value().total.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(usage.value().region[3].state(), KelpReturn::kNotSupported);
}

TEST(ProtocolOneCalls, VersionTwoOfTheStatusLeavesTheBusiestCoreUnread) {
  ProtocolOne one({{2, 2, 2}});
  one.call = [](std::uint8_t* r) {
    put<std::uint32_t>(r, 40 + 24, 77);
    return 0;
  };
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  const auto status = provider.getIntf<MiscMkisIntfName::kQueryGpuStatus>().value().operation();
  EXPECT_EQ(status.value().coreMax.state(), KelpReturn::kNotSupported);
}

TEST(ProtocolOneCalls, DescriptionWithoutNodesSaysSo) {
  ProtocolOne one({{8, 2, 2}});
  std::uint32_t devType = 0;
  one.call = [&](std::uint8_t* r) {
    put<std::uint16_t>(r, 40, 3);
    put<std::uint32_t>(r, 40 + 16, devType);
    put<std::uint32_t>(r, 40 + 20, 1);
    put<std::uint16_t>(r, 40 + 28, 0);
    put<std::uint16_t>(r, 40 + 30, 128);
    put<std::uint16_t>(r, 40 + 32, 9);
    put<std::uint64_t>(r, 40 + 34, (std::uint64_t{1} << 32) | (0x41U << 16));
    put<std::uint16_t>(r, 40 + 42, 65535);
    return 0;
  };
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  auto read = [&] { return provider.getIntf<MiscMkisIntfName::kQueryDevDesc>().value().operation().value(); };
  const DevDesc plain = read();
  EXPECT_EQ(plain.sbdf, "0001:41:00.0");
  EXPECT_EQ(plain.parentMiscId, 0U);
  EXPECT_TRUE(plain.kmdFlagA.value());
  EXPECT_FALSE(plain.kmdFlagB.value());
  EXPECT_EQ(plain.miscPath.value(), "/dev/ovgpu.3");
  EXPECT_EQ(plain.cardPath.value(), "/dev/dri/card0");
  EXPECT_EQ(plain.renderPath.value(), "/dev/dri/renderD128");
  EXPECT_EQ(plain.ionPath.state(), KelpReturn::kNotSupported);
  devType = 1;
  EXPECT_EQ(read().renderPath.state(), KelpReturn::kNotSupported) << "a parent has no DRM nodes";
  devType = 2;
  EXPECT_EQ(read().parentMiscId, 9U);
}

TEST(ProtocolOneCalls, RecordIsNotSentOnAClosedDescriptor) {
  ScriptedDriver driver;
  LogCapture log;
  MiscKernelAccessorV1 accessor(NodeFile(), 1, 0);
  EXPECT_EQ(accessor.doQueryPstate().begin()->second().state(), KelpReturn::kFailure);
  EXPECT_TRUE(driver.calls.empty());
  EXPECT_TRUE(log.has(LogLevel::kError, "access< MciGetPstateV0 fd is invalid !"));
}

}  // namespace
}  // namespace kelp::linux_
