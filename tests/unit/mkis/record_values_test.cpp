#include <gtest/gtest.h>

#include "driver_script.h"
#include "linux/ap/misc/misc_mkis_provider.h"
#include "support/log_capture.h"

// Which field of a reply becomes which part of a value. Offsets are typed from the driver's tables.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::DriverScript;
using tolk_test::LogCapture;
using tolk_test::put;
using tolk_test::ScriptedDriver;

using Payload = std::function<void(std::uint8_t*)>;

/// The value that protocol 1 makes of a payload.
template <MiscMkisIntfName Name, class... Params>
auto valueOf(std::uint8_t version, const Payload& fill, Params... params) {
  constexpr auto kNumber = static_cast<std::uint16_t>(Name);
  DriverScript driver({{kNumber, version, version}});
  driver.allowOpen("/dev/ovgpu.3");
  driver.on(kNumber, [&](std::uint8_t* payload) {
    fill(payload);
    return 0U;
  });
  MiscMkisProvider provider("ovgpu.3");
  EXPECT_TRUE(provider.init().ok());
  auto reply = provider.template getIntf<Name>().value().operation(params...);
  EXPECT_TRUE(reply.ok());
  return reply.take();
}

/// The value that protocol 0 makes of a record.
template <MiscMkisIntfName Name>
auto valueOfRecord(std::uint32_t request, std::uint32_t version, const Payload& fill) {
  ScriptedDriver driver;
  driver.allowOpen("/dev/ovgpu.3");
  driver.fail(DriverScript::kProbe, ENOTTY);
  driver.answer(DriverScript::kOldProbe, [](std::uint8_t* r) {
    put<std::uint32_t>(r, 4, 1);
    return 0;
  });
  driver.answer(0xC1484DB1, [=](std::uint8_t* r) {
    put<std::uint32_t>(r, 4, 1);
    put<std::uint32_t>(r, 8, static_cast<std::uint32_t>(Name));
    put<std::uint32_t>(r, 12, version);
    return 0;
  });
  driver.answer(request, [&](std::uint8_t* r) {
    fill(r);
    return 0;
  });
  MiscMkisProvider provider("ovgpu.3");
  EXPECT_TRUE(provider.init().ok());
  auto reply = provider.template getIntf<Name>().value().operation();
  EXPECT_TRUE(reply.ok());
  return reply.take();
}

void putAscendingStatus(std::uint8_t* status) {
  for (std::uint32_t i = 0; i < 11; ++i) {
    put<std::uint32_t>(status, i * 4, i + 1);
  }
}

void expectAscendingStatus(const GpuStatus& status) {
  EXPECT_EQ(status.utilization.value(), 1.0F);
  EXPECT_EQ(status.engine0.value(), 2.0F);
  EXPECT_EQ(status.engine1.value(), 3.0F);
  EXPECT_EQ(status.engine2.value(), 4.0F);
  EXPECT_EQ(status.engine3.value(), 5.0F);
  EXPECT_EQ(status.memoryBusy.value(), 6.0F);
  EXPECT_EQ(status.coreAverage.value(), 11.0F);
}

TEST(RecordValues, GpuStatus) {
  const auto status = valueOf<MiscMkisIntfName::kQueryGpuStatus>(3, putAscendingStatus);
  expectAscendingStatus(status);
  EXPECT_EQ(status.coreMax.value(), 7.0F);
}

TEST(RecordValues, GpuStatusOfProtocolZero) {
  const auto first = valueOfRecord<MiscMkisIntfName::kQueryGpuStatus>(0xC0484D05, 0, putAscendingStatus);
  expectAscendingStatus(first);
  EXPECT_EQ(first.coreMax.state(), KelpReturn::kNotSupported);
  const auto second = valueOfRecord<MiscMkisIntfName::kQueryGpuStatus>(0xC0584D05, 1, putAscendingStatus);
  expectAscendingStatus(second);
  EXPECT_EQ(second.coreMax.value(), 7.0F);
}

void putAscendingMemory(std::uint8_t* usage) {
  for (std::uint64_t i = 0; i < 8; ++i) {
    put<std::uint64_t>(usage, i * 8, (i + 1) << 32);
  }
}

TEST(RecordValues, MemoryUsage) {
  const auto usage = valueOf<MiscMkisIntfName::kQueryMemUsage>(1, putAscendingMemory);
  EXPECT_EQ(usage.total.value(), 1UL << 32);
  EXPECT_EQ(usage.used.value(), 2UL << 32);
  EXPECT_EQ(usage.region[0].value(), 3UL << 32);
  EXPECT_EQ(usage.region[2].value(), 5UL << 32);
  EXPECT_EQ(usage.region[3].state(), KelpReturn::kNotSupported);
  EXPECT_EQ(usage.systemTotal.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(usage.guestReserved.state(), KelpReturn::kNotSupported);
}

TEST(RecordValues, MemoryUsageOfProtocolZero) {
  const auto usage = valueOfRecord<MiscMkisIntfName::kQueryMemUsage>(0xC0A04DA6, 0, putAscendingMemory);
  EXPECT_EQ(usage.total.value(), 1UL << 32);
  EXPECT_EQ(usage.used.value(), 2UL << 32);
  EXPECT_EQ(usage.region[0].value(), 3UL << 32);
  EXPECT_EQ(usage.region[3].value(), 6UL << 32);
  EXPECT_EQ(usage.systemTotal.value(), 7UL << 32);
  EXPECT_EQ(usage.guestReserved.value(), 8UL << 32);
}

/// Two processes whose rows begin at `first`.
void putProcesses(std::uint8_t* record, std::size_t first, std::size_t rowSize) {
  put<std::uint32_t>(record, 0, 2);
  for (std::size_t i = 0; i < 2; ++i) {
    std::uint8_t* const row = record + first + i * rowSize;
    put<std::uint64_t>(row, 0, (i + 1) << 33);
    put<std::uint64_t>(row, 8, (i + 1) << 20);
    put<std::uint32_t>(row, 16, static_cast<std::uint32_t>(i));
    put<std::uint32_t>(row, 20, static_cast<std::uint32_t>(4711 + i));
  }
}

void expectProcesses(const ProcessMemoryMap& processes) {
  ASSERT_EQ(processes.size(), 2U);
  const ProcessMemoryUsage& second = processes.at(4712);
  EXPECT_EQ(second.gpuMemory, 2UL << 33);
  EXPECT_EQ(second.systemMemory, 2UL << 20);
  EXPECT_EQ(second.kind, 1U);
  EXPECT_EQ(second.pid, 4712U);
  EXPECT_EQ(processes.at(4711).kind, 0U);
}

TEST(RecordValues, Processes) {
  expectProcesses(valueOf<MiscMkisIntfName::kQueryProcMemState>(
      3, [](std::uint8_t* payload) { putProcesses(payload, 8, 92); }));
}

TEST(RecordValues, ProcessesOfProtocolZero) {
  struct Row {
    std::uint32_t request;
    std::size_t first;
    std::size_t rowSize;
  };
  constexpr Row kVersions[] = {{0xB9884DA7, 8, 184}, {0xBC084DA7, 8, 192}, {0xA3104DA7, 16, 112}};
  std::uint32_t version = 0;
  for (const Row& row : kVersions) {
    expectProcesses(valueOfRecord<MiscMkisIntfName::kQueryProcMemState>(
        row.request, version++, [&](std::uint8_t* record) { putProcesses(record, row.first, row.rowSize); }));
  }
}

void putHeader(std::uint8_t* space) {
  put<std::uint16_t>(space, 0, 0x4F56);
  put<std::uint16_t>(space, 2, 0x0410);
  put<std::uint16_t>(space, 46, 0x1234);
}

TEST(RecordValues, ConfigurationSpace) {
  const auto info = valueOf<MiscMkisIntfName::kQueryPciConfigData>(1, putHeader);
  EXPECT_EQ(info.deviceId.value(), 0x0410U);
  EXPECT_EQ(info.subsystemDeviceId.value(), 0x1234U);
  const auto old = valueOfRecord<MiscMkisIntfName::kQueryPciConfigData>(0x81084DA9, 0, putHeader);
  EXPECT_EQ(old.deviceId.value(), 0x0410U);
  EXPECT_EQ(old.subsystemDeviceId.value(), 0x1234U);
}

TEST(RecordValues, DescriptionInBothVersions) {
  for (const std::uint8_t version : {1, 2}) {
    const auto desc = valueOf<MiscMkisIntfName::kQueryDevDesc>(version, [](std::uint8_t* payload) {
      put<std::uint16_t>(payload, 2, 12);
      put<std::uint64_t>(payload, 4, 0xF00000000000000F);
      put<std::uint32_t>(payload, 24, 1);
      put<std::uint16_t>(payload, 42, 6);
    });
    EXPECT_EQ(desc.uuid, "");
    EXPECT_EQ(desc.kmdValue32.value(), 12U);
    EXPECT_EQ(desc.kmdValue64.value(), 0xF00000000000000FUL);
    EXPECT_FALSE(desc.kmdFlagA.value());
    EXPECT_TRUE(desc.kmdFlagB.value());
    EXPECT_EQ(desc.ionPath.value(), "/dev/ion6");
    EXPECT_EQ(desc.wideName.state(), KelpReturn::kNotSupported);
  }
}

TEST(RecordValues, DescriptionOfATypeThatIsNotKnownHasNoDrmNodes) {
  const auto desc = valueOf<MiscMkisIntfName::kQueryDevDesc>(2, [](std::uint8_t* payload) {
    put<std::uint32_t>(payload, 16, 3);
    put<std::uint16_t>(payload, 32, 9);
  });
  EXPECT_EQ(desc.cardPath.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(desc.renderPath.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(desc.parentMiscId, 0U);
}

void putProfile(std::uint8_t* row) {
  put<std::uint16_t>(row, 0, 0x0103);
  std::memcpy(row + 2, "2c.32g", 7);
  put<std::uint16_t>(row, 34, 2);
  put<std::uint64_t>(row, 36, 5UL << 32);
}

void expectProfile(const MpcProfile& profile) {
  EXPECT_EQ(profile.id, 0x0103U);
  EXPECT_EQ(profile.name, "2c.32g");
  EXPECT_EQ(profile.coreCount, 2U);
  EXPECT_EQ(profile.memory, 5UL << 32);
}

TEST(RecordValues, MpcProfiles) {
  expectProfile(valueOf<MiscMkisIntfName::kQueryMpcProf>(1, putProfile));
  const auto profiles = valueOf<MiscMkisIntfName::kQueryMpcProfList>(1, [](std::uint8_t* payload) {
    put<std::uint32_t>(payload, 0, 2);
    putProfile(payload + 4 + 60);
  });
  ASSERT_EQ(profiles.size(), 2U);
  expectProfile(profiles[1]);
}

TEST(RecordValues, MpcConfigurations) {
  const auto configurations = valueOf<MiscMkisIntfName::kQueryMpcConfList>(1, [](std::uint8_t* payload) {
    put<std::uint32_t>(payload, 0, 2);
    std::uint8_t* const row = payload + 4 + 118;
    put<std::uint16_t>(row, 0, 7);
    std::memcpy(row + 2, "2x2c", 5);
    put<std::uint32_t>(row, 34, 2);
    put<std::uint16_t>(row, 38, 3);
    put<std::uint16_t>(row, 40, 4);
    put<std::uint16_t>(row, 42, 5);
  });
  ASSERT_EQ(configurations.size(), 2U);
  EXPECT_EQ(configurations[1].id, 7U);
  EXPECT_EQ(configurations[1].name, "2x2c");
  EXPECT_EQ(configurations[1].profileIds, (std::vector<std::uint32_t>{3, 4}));
}

TEST(RecordValues, MpcInstancesAndTheirParent) {
  const auto instances = valueOf<MiscMkisIntfName::kQueryMpcInstList>(1, [](std::uint8_t* payload) {
    put<std::uint16_t>(payload, 0, 2);
    put<std::uint16_t>(payload, 2 + 4, 300);
    put<std::uint16_t>(payload, 2 + 6, 1);
  });
  ASSERT_EQ(instances.size(), 2U);
  EXPECT_EQ(instances[1].miscId, 300U);
  EXPECT_EQ(instances[1].instanceId, 1U);
  EXPECT_EQ(valueOf<MiscMkisIntfName::kQueryMpcParent>(
                1, [](std::uint8_t* payload) { put<std::uint16_t>(payload, 0, 300); }),
            300UL);
}

TEST(RecordValues, InfoRomTextsEndWithTheirFields) {
  const auto rom = valueOf<MiscMkisIntfName::kQueryInfoRom>(1, [](std::uint8_t* payload) {
    std::memset(payload, 'S', 64);
    std::memcpy(payload + 64, "OVT\0junk", 8);
  });
  EXPECT_EQ(rom.serialNumber, std::string(64, 'S'));
  EXPECT_EQ(rom.brand, "OVT");
}

TEST(RecordValues, DeviceNameEndsWithItsField) {
  const auto name = valueOf<MiscMkisIntfName::kQueryDevName>(
      0, [](std::uint8_t* payload) { std::memset(payload, 'N', 64); });
  EXPECT_EQ(name, std::string(48, 'N'));
}

TEST(RecordValues, EccMode) {
  const auto mode = valueOf<MiscMkisIntfName::kQueryEccMode>(
      1, [](std::uint8_t* payload) { put<std::uint8_t>(payload, 4, 1); });
  EXPECT_EQ(mode.current, EccMode::kOff);
  EXPECT_EQ(mode.pending, EccMode::kOn);
}

TEST(RecordValues, FirmwareHasTheFirstSixComponents) {
  const auto versions = valueOf<MiscMkisIntfName::kQuerySmcFwVersion>(1, [](std::uint8_t* payload) {
    for (std::uint32_t i = 0; i < 6; ++i) {
      put<std::uint32_t>(payload, i * 4, i == 3 ? 0xFFFFFFFF : 10203 + i);
    }
  });
  ASSERT_EQ(versions.size(), 6U);
  EXPECT_EQ(versions.at("ov-bios").value(), 10203U);
  EXPECT_EQ(versions.at("rtos").value(), 10204U);
  EXPECT_EQ(versions.at("vbios").value(), 10205U);
  EXPECT_EQ(versions.at("var").state(), KelpReturn::kNotSupported);
  EXPECT_EQ(versions.at("mgbl").value(), 10207U);
  EXPECT_EQ(versions.at("entry").value(), 10208U);
}

TEST(RecordValues, MemoryPropertiesUnpackTheirFields) {
  const auto spec = valueOf<MiscMkisIntfName::kQueryDdrCap>(1, [](std::uint8_t* payload) {
    put<std::uint64_t>(payload, 0, 2'000'000'000);
    put<std::uint8_t>(payload, 9, 0x31);
    put<std::uint16_t>(payload, 14, 0x200C);
  });
  EXPECT_EQ(spec.maxClock.value(), 2'000'000'000UL);
  EXPECT_EQ(spec.type.value(), 1U);
  EXPECT_EQ(spec.vendor.value(), "Hynix");
  EXPECT_EQ(spec.channelCount.value(), 12U);
  EXPECT_EQ(spec.channelWidth.value(), 32U);
  EXPECT_EQ(spec.size.state(), KelpReturn::kNotSupported);
}

TEST(RecordValues, MemoryPropertiesThatAreUnknownSaySo) {
  const auto spec = valueOf<MiscMkisIntfName::kQueryDdrCap>(
      1, [](std::uint8_t* payload) { put<std::uint8_t>(payload, 9, 0x0F); });
  EXPECT_EQ(spec.maxClock.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(spec.type.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(spec.vendor.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(spec.channelCount.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(spec.channelWidth.state(), KelpReturn::kNotSupported);
  const auto other = valueOf<MiscMkisIntfName::kQueryDdrCap>(
      1, [](std::uint8_t* payload) { put<std::uint8_t>(payload, 9, 0x40); });
  EXPECT_EQ(other.type.value(), 0U);
  EXPECT_EQ(other.vendor.state(), KelpReturn::kNotSupported);
}

TEST(RecordValues, EfuseWindowIsThatOfTheReply) {
  const auto data = valueOf<MiscMkisIntfName::kQueryEfuseData>(
      1,
      [](std::uint8_t* payload) {
        EXPECT_EQ(tolk_test::get<std::uint32_t>(payload, 0), 2048U);
        EXPECT_EQ(tolk_test::get<std::uint32_t>(payload, 4), 512U);
        put<std::uint32_t>(payload, 0, 64);
        put<std::uint32_t>(payload, 4, 0xFFFFFFFF);
        put<std::uint32_t>(payload, 8 + 31 * 4, 77);
      },
      QueryEfuseDataParam{.startBit = 2048, .bitCount = 512});
  EXPECT_EQ(data.startBit, 64U);
  EXPECT_EQ(data.bitCount, 1024U) << "cut to the words that there are";
  ASSERT_EQ(data.words.size(), 32U);
  EXPECT_EQ(data.words[31], 77U);
}

TEST(RecordValues, FailedRecordOfProtocolZeroLogsItsNameAndErrno) {
  ScriptedDriver driver;
  LogCapture log;
  driver.allowOpen("/dev/ovgpu.3");
  driver.fail(DriverScript::kProbe, ENOTTY);
  driver.fail(DriverScript::kOldProbe, ENOTTY);
  driver.fail(0xC0484D05, EIO);
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  const auto status = provider.getIntf<MiscMkisIntfName::kQueryGpuStatus>().value().operation();
  EXPECT_EQ(status.state(), KelpReturn::kFailure);
  EXPECT_TRUE(
      log.has(LogLevel::kError, ">> access< MkiGetDeviceStatusV0 > ioctl return error =  -1 , errno =  5 "));
  EXPECT_TRUE(log.has(LogLevel::kError, ">> failed to query gpu status, access error is  1 "));
}

}  // namespace
}  // namespace kelp::linux_
