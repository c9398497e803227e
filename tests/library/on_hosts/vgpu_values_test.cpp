#include "on_hosts/values_fixture.h"

// vGPUs, seen from the host that carries them, against its description.

namespace {

using tolk_test::ask;
using tolk_test::askList;
using tolk_test::askStates;
using tolk_test::askText;
using tolk_test::Subject;
using tolk_test::ValuesFixture;

class VgpusHost : public ValuesFixture {
 protected:
  VgpusHost() : ValuesFixture("vgpus") {}

  LumoDevice* vgpu(const std::string& place) {
    LumoDevice* handle = nullptr;
    EXPECT_EQ(lumoDeviceInitVirtDevice(device(0), told(0, place + "/uuid").c_str(), &handle),
              LUMO_RETURN_SUCCESS);
    return handle;
  }
  std::string type(const std::string& place) const {
    const std::string size = told(0, place + "/max_resolution");
    const std::size_t cross = size.find('x');
    return tolds(0, {(place + "/id").c_str(), (place + "/device_api").c_str(), (place + "/name").c_str()}) +
           " " + size.substr(0, cross) + " " + size.substr(cross + 1) + " " +
           tolds(0, {(place + "/max_encode_num").c_str(), (place + "/max_decode_num").c_str(),
                     (place + "/framebuffer").c_str(), (place + "/max_instances").c_str(),
                     (place + "/max_ov_virtual_display").c_str()});
  }
};

TEST_F(VgpusHost, VgpusAreNoDevicesOfTheLibrary) {
  EXPECT_EQ(count(), 2U);
  unsigned long long word = 0;
  ASSERT_EQ(lumoDeviceGetProperty(device(0), &word), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(word & LUMO_PROPERTY_VIRTUALIZATION_CAPABLE, 1U);
  EXPECT_EQ(word & LUMO_PROPERTY_ROLE_MASK, 0U);
  ASSERT_EQ(lumoDeviceGetProperty(device(1), &word), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(word & LUMO_PROPERTY_VIRTUALIZATION_CAPABLE, 0U);
}

TEST_F(VgpusHost, AGpuOffersTypes) {
  EXPECT_EQ(ask(of(0), lumoDeviceCountSupportedVirtTypes), "2");
  EXPECT_EQ(askList(of(0), lumoDeviceCountSupportedVirtTypes, lumoDeviceGetSupportedVirtTypes),
            type("vgpu_types/0") + "; " + type("vgpu_types/1"));
  EXPECT_EQ(ask(of(0), lumoDeviceCountAvailableVirtTypes), "1");
  EXPECT_EQ(askList(of(0), lumoDeviceCountAvailableVirtTypes, lumoDeviceGetAvailableVirtTypes),
            type("vgpu_types/0"))
      << "no more of the other can be made";
  EXPECT_EQ(ask(of(0), lumoDeviceCountMaxVirtDevices, "11"), told(0, "vgpu_types/0/max_instances"));
  EXPECT_EQ(ask(of(0), lumoDeviceCountMaxVirtDevices, "12"), told(0, "vgpu_types/1/max_instances"));
  EXPECT_EQ(ask(of(0), lumoDeviceCountMaxVirtDevices, "13"), "refused 7");
  EXPECT_EQ(ask(of(0), lumoDeviceCountAvailableVirtDevices, "11"), told(0, "vgpu_types/0/available"));
  EXPECT_EQ(ask(of(0), lumoDeviceCountAvailableVirtDevices, "12"), "0");
  EXPECT_EQ(ask(of(0), lumoDeviceCountAvailableVirtDevices, "13"), "refused 7");
  EXPECT_EQ(ask(of(1), lumoDeviceCountSupportedVirtTypes), "0");
}

TEST_F(VgpusHost, AGpuCarriesVgpus) {
  char uuids[3][LUMO_UUID_SIZE];
  EXPECT_EQ(ask(of(0), lumoDeviceCountActiveVirtDevices), "2");
  EXPECT_EQ(lumoDeviceGetActiveVirtDeviceUuids(device(0), uuids[0], LUMO_UUID_SIZE, 1),
            LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_STREQ(uuids[0], "") << "cleared all the same";
  EXPECT_EQ(lumoDeviceGetActiveVirtDeviceUuids(device(0), uuids[0], 36, 3), LUMO_RETURN_INSUFFICIENT_SIZE);
  ASSERT_EQ(lumoDeviceGetActiveVirtDeviceUuids(device(0), uuids[0], LUMO_UUID_SIZE, 3), LUMO_RETURN_SUCCESS);
  const std::string first = told(0, "vgpus/0/uuid");
  const std::string second = told(0, "vgpus/1/uuid");
  EXPECT_TRUE((uuids[0] == first && uuids[1] == second) || (uuids[0] == second && uuids[1] == first));
  EXPECT_STREQ(uuids[2], "");
  LumoDevice* none = nullptr;
  EXPECT_EQ(lumoDeviceInitVirtDevice(device(1), first.c_str(), &none), LUMO_RETURN_NOT_FOUND)
      << "not of that GPU";
  EXPECT_EQ(lumoDeviceInitVirtDevice(device(0), "no such uuid", &none), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(vgpu("vgpus/0"), vgpu("vgpus/0"));
  EXPECT_NE(vgpu("vgpus/0"), vgpu("vgpus/1"));
}

TEST_F(VgpusHost, AVgpuSaysWhatItIs) {
  for (const std::string place : {"vgpus/0", "vgpus/1"}) {
    const Subject subject = Subject::of(vgpu(place));
    EXPECT_EQ(askText(subject, lumoDeviceGetUUID), told(0, place + "/uuid"));
    EXPECT_EQ(ask(subject, lumoDeviceGetType), text(LUMO_DEVICE_MEDIATED));
    EXPECT_EQ(ask(subject, lumoDeviceGetVgpuId), told(0, place + "/id"));
    EXPECT_EQ(ask(subject, lumoDeviceGetIntId), told(0, place + "/id"));
    EXPECT_EQ(ask(subject, lumoDeviceGetProperty), text(1 << LUMO_PROPERTY_ROLE_SHIFT));
    EXPECT_EQ(ask(subject, lumoDeviceIsPfmSupported), "0");
    EXPECT_EQ(ask(subject, lumoDeviceGetSupportedEventTypes), "0");
  }
  EXPECT_EQ(ask(Subject::of(vgpu("vgpus/0")), lumoDeviceGetVirtType), type("vgpu_types/0"));
  EXPECT_EQ(ask(Subject::of(vgpu("vgpus/1")), lumoDeviceGetVirtType), type("vgpu_types/1"));
  EXPECT_EQ(ask(Subject::of(vgpu("vgpus/0")), lumoDeviceGetVmPid), told(0, "vgpus/0/vm_pid"));
  EXPECT_EQ(ask(Subject::of(vgpu("vgpus/1")), lumoDeviceGetVmPid), "0") << "nobody uses it";
}

TEST_F(VgpusHost, AVgpuTellsWhatItsGuestSees) {
  const Subject first = Subject::of(vgpu("vgpus/0"));
  const Subject second = Subject::of(vgpu("vgpus/1"));
  EXPECT_EQ(ask(first, lumoGpuGetGuestUtilization), told(0, "vgpus/0/utilization"));
  EXPECT_EQ(ask(second, lumoGpuGetGuestUtilization), told(0, "vgpus/1/utilization"));
  EXPECT_EQ(ask(first, lumoMemoryGetGuestTotal), told(0, "vgpus/0/memory_total"));
  EXPECT_EQ(ask(first, lumoMemoryGetGuestUsed), told(0, "vgpus/0/memory_used"));
  EXPECT_EQ(ask(first, lumoMemoryGetGuestUtilization),
            text(number(0, "vgpus/0/memory_used") * 100 / number(0, "vgpus/0/memory_total")));
  EXPECT_EQ(ask(second, lumoMemoryGetGuestUsed), told(0, "vgpus/1/memory_used"));
  EXPECT_EQ(ask(second, lumoMemoryGetGuestUtilization), "refused 999") << "a memory of 0 bytes";
  EXPECT_EQ(ask(first, lumoDeviceGetVgpuOverCommitInfo),
            tolds(0, {"vgpus/0/overcommit", "vgpus/0/overcommit_memory"}));
  EXPECT_EQ(ask(second, lumoDeviceGetVgpuOverCommitInfo), "0 0");
  EXPECT_EQ(ask(first, lumoMemoryGetTotal), "refused 4");
  EXPECT_EQ(ask(first, lumoDeviceCountProcessMemoryUsages), "refused 4");
  EXPECT_EQ(ask(first, lumoDeviceCountProcessGpuUtilizations), "refused 4");
  EXPECT_EQ(ask(first, lumoDeviceCountSupportedVirtTypes), "refused 4") << "it carries none";
  EXPECT_EQ(ask(first, lumoDeviceCountAvailableVirtTypes), "refused 4");
  EXPECT_EQ(ask(first, lumoDeviceCountActiveVirtDevices), "refused 4");
}

TEST_F(VgpusHost, AVgpuHasSessionsOfItsOwn) {
  const Subject first = Subject::of(vgpu("vgpus/0"));
  const Subject second = Subject::of(vgpu("vgpus/1"));
  const auto session = [this](const std::string& row, unsigned id) {
    return "1 " +
           tolds(0, {(row + "/pid").c_str(), (row + "/codec").c_str(), (row + "/h_res").c_str(),
                     (row + "/v_res").c_str(), (row + "/fps").c_str(), (row + "/bitrate").c_str()}) +
           " " + text(id);
  };
  EXPECT_EQ(askStates(of(0), lumoVpuGetEncoderSessionStates), "1100000000000000")
      << "the GPU has those of all";
  EXPECT_EQ(askStates(first, lumoVpuGetEncoderSessionStates), "1000000000000000");
  EXPECT_EQ(askStates(second, lumoVpuGetEncoderSessionStates), "0100000000000000");
  EXPECT_EQ(ask(first, lumoVpuGetEncoderSessionMetrics, 0U), session("vpu_sessions/0", 0));
  EXPECT_EQ(ask(second, lumoVpuGetEncoderSessionMetrics, 1U), session("vpu_sessions/1", 1));
  EXPECT_EQ(ask(first, lumoVpuGetUtilization), "refused 4");
}

}  // namespace
