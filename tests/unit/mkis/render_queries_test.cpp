#include <gtest/gtest.h>

#include "linux/ap/render/render_mkis_provider.h"
#include "linux/ap/render/render_protocol_v0/render_kernel_accessor.h"
#include "support/log_capture.h"
#include "support/scripted_driver.h"

// What the video engine is asked over the DRM render node, and what its answers become. Request numbers
// and offsets are typed from the driver's tables.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::get;
using tolk_test::LogCapture;
using tolk_test::put;
using tolk_test::ScriptedDriver;

using Name = RenderMkisIntfName;

constexpr std::uint32_t kProbe = 0xC010648B;
constexpr std::uint32_t kList = 0xC148648C;
constexpr std::uint32_t kInline = 0xC0A0648A;
constexpr std::uint32_t kPointer = 0xC028648A;
constexpr std::uint32_t kAllOnes = 0xFFFFFFFF;

constexpr std::uint32_t kUtilization = 0;
constexpr std::uint32_t kMetrics = 1;
constexpr std::uint32_t kStates = 2;
constexpr std::uint32_t kClock = 3;
constexpr std::uint32_t kCoreProperties = 4;

/// One request, whatever its record.
struct Asked {
  std::uint32_t operation;
  std::uint32_t coreId;
  std::uint32_t instance;
  // Of the record with an address alone.
  std::uint32_t replySize = 0;
  std::uint32_t vgpuId = 0;
  std::uint32_t vgpuValid = 0;
};

/// A render node whose interfaces are all listed in one version; by default its engine has two encoders
/// and an absent third core, and answers the rest with zeros.
class VideoEngine {
 public:
  /// Fills a zeroed reply; the result is 0 or the errno that the call fails with.
  using Reply = std::function<int(const Asked& asked, std::uint8_t* reply)>;

  explicit VideoEngine(std::uint32_t version, std::optional<std::uint32_t> vgpuId = std::nullopt)
      : provider("renderD128", DevArch::kFen2, vgpuId) {
    driver.allowOpen("/dev/dri/renderD128");
    driver.answer(kProbe, [](std::uint8_t* r) {
      put<std::uint32_t>(r, 4, 5);
      return 0;
    });
    driver.answer(kList, [version](std::uint8_t* r) {
      put<std::uint32_t>(r, 4, 5);
      for (std::uint32_t i = 0; i < 5; ++i) {
        // Version 3 is known of the session states alone.
        put<std::uint32_t>(r, 8 + i * 16, 100000 + i);
        put<std::uint32_t>(r, 12 + i * 16, i == 2 ? version : std::min(version, 2U));
      }
      return 0;
    });
    driver.answer(kInline, [this](std::uint8_t* r) {
      asked.push_back({get<std::uint16_t>(r, 0), get<std::uint16_t>(r, 2), get<std::uint32_t>(r, 4)});
      return answer(r + 8);
    });
    driver.answer(kPointer, [this](std::uint8_t* r) {
      asked.push_back({get<std::uint32_t>(r, 0), get<std::uint32_t>(r, 16), get<std::uint32_t>(r, 20),
                       get<std::uint32_t>(r, 4), get<std::uint32_t>(r, 24), get<std::uint32_t>(r, 28)});
      return answer(reinterpret_cast<std::uint8_t*>(get<std::uint64_t>(r, 8)));
    });
  }

  /// Negotiates and forgets what was asked for that.
  void start() {
    ASSERT_TRUE(provider.init().ok());
    ASSERT_TRUE(provider.postInit().ok());
    asked.clear();
  }

  template <Name name, class... Params>
  auto query(const Params&... params) {
    const auto intf = provider.getIntf<name>();
    EXPECT_TRUE(intf.ok());
    return intf.value().operation(params...);
  }

  ScriptedDriver driver;
  RenderMkisProvider provider;
  std::vector<Asked> asked;
  Reply reply = [](const Asked&, std::uint8_t*) { return 0; };

 private:
  int answer(std::uint8_t* r) {
    if (asked.back().operation == kCoreProperties) {
      put<std::uint32_t>(r, 0, 3);
      for (std::size_t i = 0; i < 3; ++i) {
        put<std::uint32_t>(r, 4 + i * 8, i == 2 ? kAllOnes : 0x00080200U);
        put<std::uint32_t>(r, 8 + i * 8, i == 2 ? kAllOnes : 1'200'000'000U);
      }
      return 0;
    }
    return reply(asked.back(), r);
  }
};

TEST(RenderQueries, UtilisationHasAValuePerCore) {
  for (const std::uint32_t version : {0U, 1U, 2U}) {
    VideoEngine engine(version);
    engine.reply = [](const Asked&, std::uint8_t* r) {
      put<std::uint32_t>(r, 0, 100);
      put<std::uint32_t>(r, 4, 37);
      put<std::uint32_t>(r, 8, kAllOnes);
      put<std::uint32_t>(r, 60, 99);
      return 0;
    };
    engine.start();
    const auto busy = engine.query<Name::kQueryVpuUtil>();
    ASSERT_TRUE(busy.ok());
    ASSERT_EQ(engine.asked.size(), 1U);
    EXPECT_EQ(engine.asked[0].operation, kUtilization);
    EXPECT_EQ(engine.asked[0].replySize, version == 2 ? 64U : 0U);
    // Version 0 has no say in the cores: the family has six of them.
    ASSERT_EQ(busy.value().size(), version == 0 ? 6U : 3U);
    EXPECT_EQ(busy.value()[0].value(), 100.0F);
    EXPECT_EQ(busy.value()[1].value(), 37.0F);
    EXPECT_EQ(busy.value()[2].state(), KelpReturn::kNotSupported);
  }
}

TEST(RenderQueries, ClockHasAValuePerCore) {
  for (const std::uint32_t version : {0U, 1U, 2U}) {
    VideoEngine engine(version);
    engine.reply = [](const Asked&, std::uint8_t* r) {
      put<std::uint32_t>(r, 0, 1'200'000'000);
      put<std::uint32_t>(r, 4, 7);
      put<std::uint32_t>(r, 8, 600'000'000);
      put<std::uint32_t>(r, 16, kAllOnes);
      return 0;
    };
    engine.start();
    const auto clocks = engine.query<Name::kQueryVpuClock>();
    ASSERT_TRUE(clocks.ok());
    ASSERT_EQ(engine.asked.size(), 1U);
    EXPECT_EQ(engine.asked[0].operation, kClock);
    EXPECT_EQ(engine.asked[0].replySize, version == 2 ? 128U : 0U);
    ASSERT_EQ(clocks.value().size(), version == 0 ? 6U : 3U);
    EXPECT_EQ(clocks.value()[0].value(), 1'200'000'000U);
    EXPECT_EQ(clocks.value()[1].value(), 600'000'000U);
    EXPECT_EQ(clocks.value()[2].state(), KelpReturn::kNotSupported);
  }
}

TEST(RenderQueries, MetricsAreThoseOfOneInstanceOfOneCore) {
  for (const std::uint32_t version : {0U, 1U, 2U}) {
    VideoEngine engine(version);
    engine.reply = [](const Asked&, std::uint8_t* r) {
      for (std::uint32_t i = 0; i < 9; ++i) {
        put<std::uint32_t>(r, i * 4, i == 0 ? 1 : 1000 + i);
      }
      return 0;
    };
    engine.start();
    const auto metrics =
        engine.query<Name::kQueryVpuSsMetrics>(QueryVpuSsMetricsParam{.coreId = 1, .instance = 7});
    ASSERT_TRUE(metrics.ok());
    ASSERT_EQ(engine.asked.size(), 1U);
    EXPECT_EQ(engine.asked[0].operation, kMetrics);
    EXPECT_EQ(engine.asked[0].coreId, 1U);
    EXPECT_EQ(engine.asked[0].instance, 7U);
    EXPECT_EQ(engine.asked[0].replySize, version == 2 ? 36U : 0U);
    const VpuSsMetrics& values = metrics.value();
    EXPECT_EQ(values.status, 1U);
    EXPECT_EQ(values.pid, 1001U);
    EXPECT_EQ(values.codec, 1002U);
    EXPECT_EQ(values.hRes, 1003U);
    EXPECT_EQ(values.vRes, 1004U);
    EXPECT_EQ(values.fps, 1005U);
    EXPECT_EQ(values.bitrate, 1006U);
    EXPECT_EQ(values.sessionId, 1007U);
  }
}

TEST(RenderQueries, MetricsWithAStatusAboveActiveAreAFailure) {
  for (const std::uint32_t status : {2U, 255U, kAllOnes}) {
    VideoEngine engine(2);
    engine.reply = [status](const Asked&, std::uint8_t* r) {
      put<std::uint32_t>(r, 0, status);
      put<std::uint32_t>(r, 4, 4242);
      return 0;
    };
    engine.start();
    const auto metrics = engine.query<Name::kQueryVpuSsMetrics>(QueryVpuSsMetricsParam{});
    EXPECT_EQ(metrics.state(), KelpReturn::kFailure);
    EXPECT_EQ(metrics.value().pid, 0U);
  }
  VideoEngine idle(2);
  idle.start();
  EXPECT_TRUE(idle.query<Name::kQueryVpuSsMetrics>(QueryVpuSsMetricsParam{}).ok());
}

TEST(RenderQueries, MetricsOfACoreThatIsNotThereAreNotAskedFor) {
  // 65536 would be core 0 in the 16 bits of the older record.
  for (const std::uint32_t coreId : {3U, 65536U, kAllOnes}) {
    VideoEngine engine(1);
    engine.start();
    EXPECT_EQ(engine.query<Name::kQueryVpuSsMetrics>(QueryVpuSsMetricsParam{.coreId = coreId, .instance = 0})
                  .state(),
              KelpReturn::kFailure);
    EXPECT_TRUE(engine.asked.empty());
  }
}

/// Where version `version` of the session states has its count and its rows.
struct StatesLayout {
  std::uint32_t version;
  std::uint32_t size;
  std::size_t count;
  std::size_t rows;
  std::size_t mostRows;
};
constexpr StatesLayout kStatesLayouts[] = {
    {0, 0, 4, 8, 36},
    {1, 0, 4, 8, 36},
    {2, 132, 0, 4, 32},
    {3, 152, 4, 8, 36},
};

TEST(RenderQueries, SessionStatesAreAskedForCoreByCore) {
  for (const StatesLayout& layout : kStatesLayouts) {
    VideoEngine engine(layout.version);
    engine.reply = [&](const Asked& asked, std::uint8_t* r) {
      put<std::uint32_t>(r, layout.count, asked.coreId + 2);
      put<std::uint32_t>(r, layout.rows, 1);
      put<std::uint32_t>(r, layout.rows + 4, asked.coreId == 0 ? 0 : kAllOnes);
      put<std::uint32_t>(r, layout.rows + 8, 2);
      return 0;
    };
    engine.start();
    const auto states = engine.query<Name::kQueryVpuSsStates>();
    ASSERT_TRUE(states.ok());
    const std::size_t cores = layout.version == 0 ? 6 : 3;
    ASSERT_EQ(states.value().size(), cores);
    ASSERT_EQ(engine.asked.size(), cores);
    for (std::uint32_t coreId = 0; coreId < cores; ++coreId) {
      EXPECT_EQ(engine.asked[coreId].operation, kStates);
      EXPECT_EQ(engine.asked[coreId].coreId, coreId);
      EXPECT_EQ(engine.asked[coreId].replySize, layout.size);
      EXPECT_EQ(states.value()[coreId].size(), coreId + 2);
    }
    EXPECT_TRUE(states.value()[0][0].value().active);
    EXPECT_TRUE(states.value()[0][1].ok());
    EXPECT_FALSE(states.value()[0][1].value().active);
    EXPECT_EQ(states.value()[1][1].state(), KelpReturn::kNotSupported) << "no session slot";
    EXPECT_FALSE(states.value()[1][2].value().active) << "active is 1 and nothing else";
  }
}

TEST(RenderQueries, LyingCountOfSessionsIsCutToTheRecord) {
  for (const StatesLayout& layout : kStatesLayouts) {
    for (const std::uint32_t count : {37U, 1000U, kAllOnes}) {
      VideoEngine engine(layout.version);
      engine.reply = [&](const Asked&, std::uint8_t* r) {
        put<std::uint32_t>(r, layout.count, count);
        put<std::uint32_t>(r, layout.rows + (layout.mostRows - 1) * 4, 1);
        return 0;
      };
      engine.start();
      const auto states = engine.query<Name::kQueryVpuSsStates>();
      ASSERT_TRUE(states.ok());
      ASSERT_EQ(states.value()[0].size(), layout.mostRows) << layout.version;
      EXPECT_TRUE(states.value()[0].back().value().active);
    }
  }
}

TEST(RenderQueries, AbsentCoreHasNoSessionSlots) {
  VideoEngine engine(3);
  engine.reply = [](const Asked& asked, std::uint8_t* r) {
    if (asked.coreId == 2) {
      std::fill_n(r, 152, std::uint8_t{0xFF});
    }
    return 0;
  };
  engine.start();
  const auto states = engine.query<Name::kQueryVpuSsStates>();
  ASSERT_TRUE(states.ok());
  EXPECT_TRUE(states.value()[0].empty());
  for (const auto& state : states.value()[2]) {
    EXPECT_EQ(state.state(), KelpReturn::kNotSupported);
  }
}

TEST(RenderQueries, QueriesOfAVgpuNameIt) {
  VideoEngine engine(2, 7);
  ASSERT_TRUE(engine.provider.init().ok());
  ASSERT_TRUE(engine.provider.postInit().ok());
  static_cast<void>(engine.query<Name::kQueryVpuUtil>());
  static_cast<void>(engine.query<Name::kQueryVpuSsMetrics>(QueryVpuSsMetricsParam{}));
  static_cast<void>(engine.query<Name::kQueryVpuSsStates>());
  static_cast<void>(engine.query<Name::kQueryVpuClock>());
  ASSERT_EQ(engine.asked.size(), 1U + 1 + 1 + 3 + 1);
  for (const Asked& asked : engine.asked) {
    EXPECT_EQ(asked.vgpuId, 7U);
    EXPECT_EQ(asked.vgpuValid, 1U);
  }
}

TEST(RenderQueries, QueriesOfAWholeDeviceNameNoVgpu) {
  VideoEngine engine(2);
  engine.start();
  static_cast<void>(engine.query<Name::kQueryVpuUtil>());
  EXPECT_EQ(engine.asked[0].vgpuId, 0U);
  EXPECT_EQ(engine.asked[0].vgpuValid, 0U);
}

TEST(RenderQueries, FailuresAreLoggedInTheWordsOfEachQuery) {
  for (const std::uint32_t version : {0U, 1U, 2U, 3U}) {
    LogCapture log;
    VideoEngine engine(version);
    engine.reply = [](const Asked&, std::uint8_t*) { return EIO; };
    engine.start();
    EXPECT_EQ(engine.query<Name::kQueryVpuUtil>().state(), KelpReturn::kFailure);
    EXPECT_TRUE(log.has(LogLevel::kError, ">> failed to query vpu core utilization, access error is  1 "));
    EXPECT_EQ(engine.query<Name::kQueryVpuClock>().state(), KelpReturn::kFailure);
    EXPECT_TRUE(log.has(LogLevel::kError, ">> failed to query vpu core clock, access error is  1 "));
    EXPECT_EQ(engine.query<Name::kQueryVpuSsMetrics>(QueryVpuSsMetricsParam{}).state(), KelpReturn::kFailure);
    EXPECT_TRUE(log.has(LogLevel::kError, ">> failed to query vpu session metrics, access error is  1 "));
    EXPECT_EQ(engine.query<Name::kQueryVpuSsStates>().state(), KelpReturn::kFailure);
    EXPECT_TRUE(log.has(LogLevel::kError, ">> failed to query vpu session states, access error is  1 "));
    EXPECT_TRUE(log.has(LogLevel::kError,
                        version == 0 ? ">> access< RkiGetVpuInfoV0 > ioctl return error =  -1 , errno =  5 , "
                                       "ioctl:0x c0a0648a "
                        : version == 1
                            ? ">> access< RkiGetVpuInfoV1 > ioctl return error =  -1 , errno =  5 , "
                              "ioctl:0x c0a0648a "
                            : ">> access< RkiGetVpuInfoV2 > ioctl return error =  -1 , errno =  5 , "
                              "ioctl:0x c028648a "));
  }
}

TEST(RenderQueries, FirstCoreThatFailsEndsTheSessionStates) {
  VideoEngine engine(3);
  engine.reply = [](const Asked& asked, std::uint8_t*) { return asked.coreId == 1 ? EIO : 0; };
  engine.start();
  const auto states = engine.query<Name::kQueryVpuSsStates>();
  EXPECT_EQ(states.state(), KelpReturn::kFailure);
  EXPECT_TRUE(states.value().empty());
  EXPECT_EQ(engine.asked.size(), 2U);
}

TEST(RenderQueries, OnlyTheSessionStatesHaveAFourthVersion) {
  RenderKernelAccessor accessor(NodeFile(), DevArch::kFen2);
  const auto highest = [](const auto& versions) {
    EXPECT_EQ(versions.begin()->first, 0U);
    EXPECT_EQ(versions.size(), versions.rbegin()->first + 1U);
    return versions.rbegin()->first;
  };
  EXPECT_EQ(highest(accessor.getVpuUtil()), 2U);
  EXPECT_EQ(highest(accessor.getVpuSsMetrics()), 2U);
  EXPECT_EQ(highest(accessor.getVpuSsStates()), 3U);
  EXPECT_EQ(highest(accessor.getVpuClock()), 2U);
  EXPECT_EQ(highest(accessor.getVpuSpec()), 2U);
}

TEST(RenderQueries, ClosedDescriptorMakesNoRequest) {
  VideoEngine engine(2);
  LogCapture log;
  engine.start();
  engine.provider.getAccessor()->deinit();
  const std::size_t calls = engine.driver.calls.size();
  EXPECT_EQ(engine.query<Name::kQueryVpuUtil>().state(), KelpReturn::kFailure);
  EXPECT_EQ(engine.query<Name::kQueryVpuSsStates>().state(), KelpReturn::kFailure);
  EXPECT_EQ(engine.query<Name::kQueryVpuClock>().state(), KelpReturn::kFailure);
  EXPECT_EQ(engine.driver.calls.size(), calls);
  EXPECT_TRUE(log.has(LogLevel::kError, ">> access< RkiGetVpuInfoV2 fd is invalid ! "));
}

TEST(RenderQueries, CoresOfOldDriversAreFixedByFamily) {
  struct Row {
    std::uint32_t count;
    VpuCoreKind kind;
    std::uint32_t threads;
    std::uint32_t instances;
  };
  const std::pair<DevArch, std::vector<Row>> families[] = {
      {DevArch::kWold, {{1, VpuCoreKind::kDecoder, 1, 16}, {1, VpuCoreKind::kEncoder, 1, 8}}},
      {DevArch::kFen1, {{2, VpuCoreKind::kDecoder, 2, 16}, {2, VpuCoreKind::kEncoder, 2, 8}}},
      {DevArch::kFen2, {{4, VpuCoreKind::kDecoder, 2, 16}, {2, VpuCoreKind::kEncoder, 2, 8}}},
  };
  for (const auto& [arch, rows] : families) {
    ScriptedDriver driver;
    RenderKernelAccessor accessor(NodeFile(), arch);
    accessor.setVpuSpecVersion(0);
    ASSERT_TRUE(accessor.postInit().ok());
    const auto cores = accessor.getVpuSpec().at(0)().value();
    std::size_t i = 0;
    for (const Row& row : rows) {
      for (std::uint32_t n = 0; n < row.count; ++n, ++i) {
        ASSERT_LT(i, cores.size());
        EXPECT_EQ(cores[i].kind, row.kind);
        EXPECT_EQ(cores[i].threadCount, row.threads);
        EXPECT_EQ(cores[i].maxInstances, row.instances);
        EXPECT_EQ(cores[i].maxClock.state(), KelpReturn::kNotSupported);
      }
    }
    EXPECT_EQ(i, cores.size());
    EXPECT_TRUE(driver.calls.empty());
  }
}

}  // namespace
}  // namespace kelp::linux_
