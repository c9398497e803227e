#include "on_hosts/values_fixture.h"

// What a device says of itself, its place on the bus and its board, against the description of the host.

namespace {

using tolk_test::ask;
using tolk_test::askList;
using tolk_test::askText;
using tolk_test::ValuesHost;

TEST_F(ValuesHost, DevicesSayWhatTheyAre) {
  ASSERT_EQ(count(), 5U);
  for (const unsigned index : {0U, 1U, 2U, 3U, 4U}) {
    EXPECT_EQ(ask(of(index), lumoDeviceGetIndex), text(index));
    EXPECT_EQ(ask(of(index), lumoDeviceGetType), text(LUMO_DEVICE_PHYSICAL));
    EXPECT_EQ(ask(of(index), lumoDeviceInitGpu), "gpu");
    EXPECT_EQ(ask(of(index), lumoDeviceInitMemory), "memory");
    EXPECT_EQ(ask(of(index), lumoDeviceInitVpu), "vpu");
  }
  EXPECT_EQ(ask(of(kPeer), lumoDeviceGetIntId), told(kPeer, "misc"));
  EXPECT_EQ(askText(of(kTor1), lumoDeviceGetUUID), "00000000-0000-0000-0000-000000000000");
  EXPECT_EQ(askText(of(kPeer), lumoDeviceGetUUID), "00000000-0000-0000-0000-000000000005");
  EXPECT_EQ(askText(of(kPeer), lumoDeviceGetName), "OVT " + told(kPeer, "model"));
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetBrand), text(LUMO_BRAND_OVT));
  EXPECT_EQ(askText(of(kTor1), lumoDeviceGetSerialNumber), told(kTor1, "values/serial_number"));
  EXPECT_EQ(askText(of(kTor1), lumoDeviceGetOvBiosVersion), "1.2.3");
  EXPECT_EQ(askText(of(kTor1), lumoDeviceGetRtosVersion), "4.5.6");
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetProperty), text(LUMO_PROPERTY_SABLINK_CAPABLE));
  EXPECT_EQ(ask(of(kWold), lumoDeviceGetProperty), "0");
}

TEST_F(ValuesHost, DevicesSayWhatTheyConsistOf) {
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetComputeCapability), "3 1");
  EXPECT_EQ(ask(of(kFen2), lumoDeviceGetComputeCapability), "2 2");
  EXPECT_EQ(ask(of(kB230E), lumoDeviceGetComputeCapability), "2 1");
  EXPECT_EQ(ask(of(kWold), lumoDeviceGetComputeCapability), "1 0");
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetCoreCount), told(kTor1, "values/core_count"));
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetUsableCores), told(kTor1, "values/core_mask"));
  EXPECT_EQ(ask(of(kTor1), lumoDeviceCountCoreUnits), told(kTor1, "values/core_count"));
  const std::string units = askList(of(kTor1), lumoDeviceCountCoreUnits, lumoDeviceGetCoreUnits);
  EXPECT_EQ(file_.text("/gpus/0/values/units_per_core", "; "), units + "; 15; 16")
      << "the driver has room for more";
  EXPECT_EQ(ask(of(kFen2), lumoDeviceCountCoreUnits), kNotSupported);
}

TEST_F(ValuesHost, DevicesNameTheirNodes) {
  EXPECT_EQ(askText(of(kPeer), lumoDeviceGetMiscPath), "/dev/ovgpu." + told(kPeer, "misc"));
  EXPECT_EQ(askText(of(kPeer), lumoDeviceGetCardPath), "/dev/dri/card" + told(kPeer, "card"));
  EXPECT_EQ(askText(of(kPeer), lumoDeviceGetRenderPath), "/dev/dri/renderD" + told(kPeer, "render"));
  EXPECT_EQ(askText(of(kTor1), lumoDeviceGetIonPath), "/dev/ion" + told(kTor1, "values/ion_id"));
  EXPECT_EQ(askText(of(kPeer), lumoDeviceGetIonPath), kNotSupported) << "it has no such node";
}

TEST_F(ValuesHost, TheBusRecordIsThatOfTheFunction) {
  LumoPciInfo info;
  ASSERT_EQ(lumoDeviceGetPciInfo(device(kTor1), &info), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(info.sbdf, told(kTor1, "address"));
  EXPECT_EQ(info.bus, 1U);
  EXPECT_EQ(info.vendorId, 0x4F56U);
  EXPECT_EQ(info.deviceId, 0x0410U);
  EXPECT_EQ(info.subsystemId, 0x56781234U) << told(kTor1, "subsystem");
  EXPECT_EQ(info.maxSpeed, static_cast<float>(number(kTor1, "link/max_speed")));
  EXPECT_EQ(info.curSpeed, static_cast<float>(number(kTor1, "link/speed")));
  EXPECT_EQ(info.maxWidth, number(kTor1, "link/max_width"));
  EXPECT_EQ(info.curWidth, number(kTor1, "link/width"));
  EXPECT_EQ(info.maxGen, 5U) << "32 GT/s";
  EXPECT_EQ(info.curGen, 4U) << "16 GT/s";
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetPcieSlotInfo),
            tolds(kTor1, {"values/slot_number", "values/slot_name"}));
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetPcieReplayCounter), told(kTor1, "values/pcie_replays"));
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetPcieBar2MemoryInfo),
            tolds(kTor1, {"values/bar2_total", "values/bar2_used", "values/bar2_free"}));
}

TEST_F(ValuesHost, TheBoardHasFansAndPower) {
  EXPECT_EQ(ask(of(kTor1), lumoDeviceCountFan), text(file_.at("/gpus/0/fans").size()));
  for (const unsigned fan : {0U, 1U}) {
    const std::string row = "fans/" + text(fan);
    EXPECT_EQ(ask(of(kTor1), lumoDeviceGetFanSpeed, fan), told(kTor1, row + "/percent"));
    EXPECT_EQ(ask(of(kTor1), lumoDeviceGetFanRpm, fan), told(kTor1, row + "/rpm"));
  }
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetFanSpeed, 2U), "refused 3");
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetFanRpm, 2U), "refused 3");
  EXPECT_EQ(ask(of(kPeer), lumoDeviceCountFan), "0");
  EXPECT_EQ(ask(of(kPeer), lumoDeviceGetFanSpeed, 0U), kNotSupported) << "a board without fans";
  EXPECT_EQ(ask(of(kPeer), lumoDeviceGetFanRpm, 0U), kNotSupported);

  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetPowerUsage), told(kTor1, "values/power/0"));
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetPowerLimit), told(kTor1, "values/power_limit/1"));
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetEnforcedPowerLimit), told(kTor1, "values/power_limit/2"));
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetDefaultPowerLimit), told(kTor1, "values/power_limit/3"));
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetPowerLimitConstraints),
            tolds(kTor1, {"values/power_limit/4", "values/power_limit/5"}));
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetPerformanceState), told(kTor1, "values/pstate"));
}

TEST_F(ValuesHost, TheBoardHasDisplays) {
  EXPECT_EQ(ask(of(kTor1), lumoDeviceCountDisplayInterface), text(file_.at("/gpus/0/displays").size()));
  LumoDispIntfSpec spec;
  for (const unsigned display : {0U, 1U}) {
    const std::string row = "displays/" + text(display);
    ASSERT_EQ(lumoDeviceGetDisplayInterfaceSpec(device(kTor1), display, &spec), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(spec.type, number(kTor1, row + "/type"));
    EXPECT_EQ(spec.hRes, number(kTor1, row + "/h_res"));
    EXPECT_EQ(spec.vRes, number(kTor1, row + "/v_res"));
    EXPECT_EQ(spec.pixelClock, number(kTor1, row + "/pixel_clock"));
    EXPECT_GT(spec.refreshRate, 50.0F);
    EXPECT_LT(spec.refreshRate, 75.0F);
  }
  ASSERT_EQ(lumoDeviceGetDisplayInterfaceSpec(device(kTor1), 2, &spec), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(spec.vRes, 0U) << "not known";
  EXPECT_EQ(spec.refreshRate, 0.0F);
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetDisplayInterfaceSpec, 3U), "refused 3");
  EXPECT_EQ(ask(of(kPeer), lumoDeviceCountDisplayInterface), "0");
}

TEST_F(ValuesHost, ProcessesComeInOrderOfTheirNumber) {
  const auto row = [this](const std::string& place) {
    return tolds(kTor1, {(place + "/pid").c_str(), (place + "/kind").c_str(), (place + "/gpu_memory").c_str(),
                         (place + "/system_memory").c_str()});
  };
  const auto byNumber = [](std::string text) {
    for (const auto& [kind, number] : {std::pair{"graphics", "0"}, {"compute", "1"}}) {
      const std::size_t at = text.find(kind);
      text = at == std::string::npos ? text : text.replace(at, std::string(kind).size(), number);
    }
    return text;
  };
  EXPECT_EQ(ask(of(kTor1), lumoDeviceCountProcessMemoryUsages), "3");
  EXPECT_EQ(askList(of(kTor1), lumoDeviceCountProcessMemoryUsages, lumoDeviceGetProcessMemoryUsages),
            byNumber(row("processes/2")) + "; " + byNumber(row("processes/1")) + "; " +
                byNumber(row("processes/0")));
  EXPECT_EQ(ask(of(kTor1), lumoDeviceCountProcessGpuUtilizations), "2") << "one of them does not use the GPU";
  EXPECT_EQ(askList(of(kTor1), lumoDeviceCountProcessGpuUtilizations, lumoDeviceGetProcessGpuUtilizations),
            "4100 0 1900000002 1 2 3 4; 4242 1 1900000001 12 34 56 78");
  EXPECT_EQ(ask(of(kPeer), lumoDeviceCountProcessMemoryUsages), "0");
  EXPECT_EQ(ask(of(kPeer), lumoDeviceCountProcessGpuUtilizations), "0");
}

TEST_F(ValuesHost, ProcessesHaveNames) {
  char name[64] = "before";
  ASSERT_EQ(lumoSystemGetProcessName(system(), 4242, name, sizeof name), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(name, file_.text("/processes/4242/cmdline/0"));
  ASSERT_EQ(lumoSystemGetProcessName(system(), 4100, name, sizeof name), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(name, "") << "a kernel thread has none";
}

TEST_F(ValuesHost, StoredEventsComeNewestFirst) {
  const auto stored = [this](unsigned capacity) {
    return tolk_test::askEvents([&](LumoEventData* events, unsigned, unsigned* written) {
      return lumoDeviceGetEventDataByEventType(device(kTor1), LUMO_EVENT_XID, events, capacity, written);
    });
  };
  const std::string head = "0 1 00000000-0000-0000-0000-000000000000 1 ";
  const std::string newest = head + "31 17 1763660000 4242 mmu fault at 0x7f00";
  EXPECT_EQ(stored(1), newest);
  EXPECT_EQ(stored(3), newest + "; " + head + "13 8 1763650000 0 ");
  unsigned written = 0;
  LumoEventData events[8];
  EXPECT_EQ(lumoDeviceGetEventDataByEventType(device(kTor1), LUMO_EVENT_XID, events, 8, &written),
            LUMO_RETURN_SUCCESS);
  EXPECT_EQ(written, file_.at("/gpus/0/xid_records").size());
  EXPECT_EQ(ask(of(kTor1), lumoDeviceGetSupportedEventTypes), text(LUMO_EVENT_XID));
}

TEST_F(ValuesHost, EventsOfARemovedGpuAreFoundByItsUuid) {
  const std::string uuid = file_.at("/xid_records").begin().key();
  const auto stored = [](const char* of) {
    return tolk_test::askEvents([&](LumoEventData* events, unsigned capacity, unsigned* written) {
      return lumoGetTargetUuidEventDataByEventType(of, LUMO_EVENT_XID, events, capacity, written);
    });
  };
  EXPECT_EQ(stored(uuid.c_str()), "4294967295 1 " + uuid + " 1 79 26 1763000079 9 gone");
  EXPECT_EQ(stored("00000000-0000-0000-0000-00000000ffff"), "refused 999");
  unsigned written = 0;
  LumoEventData event;
  EXPECT_EQ(lumoGetTargetUuidEventDataByEventType(uuid.c_str(), LUMO_EVENT_XID, &event, 1, &written),
            LUMO_RETURN_SUCCESS);
  EXPECT_EQ(written, 1U);
  EXPECT_EQ(lumoGetTargetUuidEventDataByEventType(uuid.c_str(), 2, &event, 1, &written),
            LUMO_RETURN_NOT_SUPPORTED);
}

}  // namespace
