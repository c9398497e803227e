#include <gtest/gtest.h>

#include "linux/ap/render/render_mkis_provider.h"
#include "linux/ap/render/render_protocol_v0/render_kernel_accessor.h"
#include "support/log_capture.h"
#include "support/scripted_driver.h"

// Agreement with the driver over the DRM render node.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::get;
using tolk_test::LogCapture;
using tolk_test::put;
using tolk_test::ScriptedDriver;

constexpr std::uint32_t kProbe = 0xC010648B;
constexpr std::uint32_t kList = 0xC148648C;
constexpr std::uint32_t kInline = 0xC0A0648A;
constexpr std::uint32_t kPointer = 0xC028648A;

/// Two encoders and a decoder, as the driver's reply holds them.
void putCores(std::uint8_t* reply) {
  put<std::uint32_t>(reply, 0, 3);
  const std::uint8_t kinds[] = {0, 0, 1};
  for (std::size_t i = 0; i < 3; ++i) {
    put<std::uint8_t>(reply, 4 + i * 8, kinds[i]);
    put<std::uint8_t>(reply, 4 + i * 8 + 1, 2);
    put<std::uint16_t>(reply, 4 + i * 8 + 2, static_cast<std::uint16_t>(8 + i));
    put<std::uint32_t>(reply, 4 + i * 8 + 4, i == 2 ? 0xFFFFFFFF : 1'200'000'000);
  }
}

struct RenderDriver {
  explicit RenderDriver(std::uint32_t specVersion) {
    driver.allowOpen("/dev/dri/renderD128");
    driver.answer(kProbe, [](std::uint8_t* r) {
      put<std::uint32_t>(r, 4, 1);
      return 0;
    });
    driver.answer(kList, [=](std::uint8_t* r) {
      put<std::uint32_t>(r, 4, 1);
      put<std::uint32_t>(r, 8, 100004);
      put<std::uint32_t>(r, 12, specVersion);
      return 0;
    });
    driver.answer(kInline, [](std::uint8_t* r) {
      EXPECT_EQ(get<std::uint16_t>(r, 0), 4U);
      putCores(r + 8);
      return 0;
    });
    driver.answer(kPointer, [](std::uint8_t* r) {
      EXPECT_EQ(get<std::uint32_t>(r, 0), 4U);
      EXPECT_EQ(get<std::uint32_t>(r, 4), 132U);
      putCores(reinterpret_cast<std::uint8_t*>(get<std::uint64_t>(r, 8)));
      return 0;
    });
  }
  ScriptedDriver driver;
};

std::vector<VpuCoreSpecData> coresOf(RenderMkisProvider& provider) {
  const auto intf = provider.getIntf<RenderMkisIntfName::kQueryVpuSpec>();
  EXPECT_TRUE(intf.ok());
  return intf.value().operation().value();
}

TEST(RenderNegotiation, CoresAreReadOnceAndServedFromMemory) {
  for (const std::uint32_t version : {1U, 2U}) {
    RenderDriver render(version);
    RenderMkisProvider provider("renderD128", DevArch::kTor1);
    ASSERT_TRUE(provider.init().ok());
    ASSERT_TRUE(provider.postInit().ok());
    const auto cores = coresOf(provider);
    ASSERT_EQ(coresOf(provider).size(), 3U);
    EXPECT_EQ(render.driver.count(kInline) + render.driver.count(kPointer), 1U);
    EXPECT_EQ(cores[1].kind, VpuCoreKind::kEncoder);
    EXPECT_EQ(cores[2].kind, VpuCoreKind::kDecoder);
    EXPECT_EQ(cores[2].threadCount, 2U);
    EXPECT_EQ(cores[2].maxInstances, 10U);
    EXPECT_EQ(cores[0].maxClock.value(), 1'200'000'000U);
    EXPECT_EQ(cores[2].maxClock.state(), KelpReturn::kNotSupported);
  }
}

TEST(RenderNegotiation, VersionZeroTakesTheFamilysCoresAndSendsNothing) {
  RenderDriver render(0);
  RenderMkisProvider provider("renderD128", DevArch::kFen2);
  ASSERT_TRUE(provider.init().ok());
  ASSERT_TRUE(provider.postInit().ok());
  const auto cores = coresOf(provider);
  ASSERT_EQ(cores.size(), 6U);
  EXPECT_EQ(cores[3].kind, VpuCoreKind::kDecoder);
  EXPECT_EQ(cores[4].kind, VpuCoreKind::kEncoder);
  EXPECT_EQ(cores[4].maxInstances, 8U);
  EXPECT_EQ(render.driver.count(kInline) + render.driver.count(kPointer), 0U);
}

TEST(RenderNegotiation, FamilyWithoutFixedCoresFailsVersionZero) {
  RenderDriver render(0);
  LogCapture log;
  RenderMkisProvider provider("renderD128", DevArch::kTor1);
  ASSERT_TRUE(provider.init().ok());
  EXPECT_EQ(provider.postInit().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log.has(LogLevel::kError, ">> getVpuSpecV0: unsupported arch  4 "));
}

TEST(RenderNegotiation, UnsupportedVersionOfTheCoresStopsPostInit) {
  RenderDriver render(3);
  LogCapture log;
  RenderMkisProvider provider("renderD128", DevArch::kFen2);
  ASSERT_TRUE(provider.init().ok());
  EXPECT_EQ(provider.postInit().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log.has(LogLevel::kError,
                      ">> RenderKernelAccessor::postInit(): unsupported vpu spec interface version:  -256 "));
}

TEST(RenderNegotiation, LyingCoreCountIsCutToTheRecord) {
  RenderDriver render(2);
  render.driver.answer(kPointer, [](std::uint8_t* r) {
    put<std::uint32_t>(reinterpret_cast<std::uint8_t*>(get<std::uint64_t>(r, 8)), 0, 0xFFFFFFFF);
    return 0;
  });
  RenderMkisProvider provider("renderD128", DevArch::kFen2);
  ASSERT_TRUE(provider.init().ok());
  ASSERT_TRUE(provider.postInit().ok());
  EXPECT_EQ(coresOf(provider).size(), 16U);
}

TEST(RenderNegotiation, InterruptedProbeIsRepeated) {
  RenderDriver render(2);
  int left = 9;
  render.driver.answer(kProbe, [&](std::uint8_t* r) {
    if (left-- > 0) {
      return left % 2 == 0 ? EINTR : EAGAIN;
    }
    put<std::uint32_t>(r, 4, 1);
    return 0;
  });
  RenderMkisProvider provider("renderD128", DevArch::kFen2);
  ASSERT_TRUE(provider.init().ok());
  EXPECT_EQ(render.driver.count(kProbe), 10U);
}

TEST(RenderNegotiation, ProbeThatIsBusyForEverFallsBackToTheDefaultList) {
  RenderDriver render(2);
  LogCapture log;
  render.driver.fail(kProbe, EAGAIN);
  RenderMkisProvider provider("renderD128", DevArch::kFen2);
  ASSERT_TRUE(provider.init().ok());
  EXPECT_TRUE(log.has(LogLevel::kError, "through mkis0.0 query mkis version failed"));
  for (int name = 100000; name <= 100004; ++name) {
    EXPECT_TRUE(provider.getRemoteVersion(name).ok());
  }
}

TEST(RenderNegotiation, ProtocolOtherThanZeroIsTooNew) {
  RenderDriver render(2);
  render.driver.answer(kProbe, [](std::uint8_t* r) {
    put<std::uint16_t>(r, 0, 2);
    put<std::uint16_t>(r, 2, 1);
    return 0;
  });
  RenderMkisProvider provider("renderD128", DevArch::kFen2);
  EXPECT_EQ(provider.init().state(), MkisError::kRemoteTooNew);
}

TEST(RenderNegotiation, CoresAreLoggedInOneLine) {
  RenderDriver render(2);
  LogCapture log;
  RenderMkisProvider provider("renderD128", DevArch::kFen2);
  ASSERT_TRUE(provider.init().ok());
  ASSERT_TRUE(provider.postInit().ok());
  EXPECT_TRUE(
      log.has(LogLevel::kInfo,
              ">> RenderKernelAccessor::postInit(): arch =  3 , coreCount =  3 ,  { 0/2/8 0/2/9 1/2/10 "));
}

TEST(RenderNegotiation, RecordIsNotSentOnAClosedDescriptor) {
  ScriptedDriver driver;
  LogCapture log;
  RenderKernelAccessor accessor(NodeFile(), DevArch::kTor1);
  accessor.setVpuSpecVersion(2);
  EXPECT_EQ(accessor.postInit().state(), KelpReturn::kFailure);
  EXPECT_TRUE(driver.calls.empty());
  EXPECT_TRUE(log.has(LogLevel::kError, ">> access< RkiGetVpuInfoV2 fd is invalid ! "));
}

TEST(RenderNegotiation, NodeThatCannotBeOpenedFails) {
  ScriptedDriver driver;
  LogCapture log;
  driver.allowOpen("/dev/dri/renderD128", ENOENT);
  RenderMkisProvider provider("renderD128", DevArch::kFen2);
  EXPECT_EQ(provider.init().state(), MkisError::kFailure);
  EXPECT_TRUE(log.has(LogLevel::kError, "open  /dev/dri/renderD128  failed. error is  2"));
}

TEST(RenderNegotiation, FailedRequestIsLoggedWithItsNumber) {
  RenderDriver render(1);
  LogCapture log;
  render.driver.fail(kInline, EIO);
  RenderMkisProvider provider("renderD128", DevArch::kFen2);
  ASSERT_TRUE(provider.init().ok());
  EXPECT_EQ(provider.postInit().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log.has(LogLevel::kError, ", errno =  5 , ioctl:0x c0a0648a"));
  EXPECT_TRUE(log.has(LogLevel::kError, "failed to query vpu specification, access error is  1"));
}

}  // namespace
}  // namespace kelp::linux_
