#include <functional>

#include "device_object.h"
#include "feature_fixture.h"
#include "virtual_device.h"

// Which type of device of which family answers which question of the device itself, as the class of all
// devices has it, and as that of vGPUs has it. Before `init` every question is answered with state 5.

namespace kelp {
namespace {

using tolk_test::makeCuid;

/// A device of any identity, without features.
class BareDevice : public DeviceObj {
 public:
  BareDevice(const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager)
      : DeviceObj(cuid, std::move(modelManager), {}) {}
};

struct DeviceRule {
  const char* question;
  std::function<KelpReturn(const DeviceObj&)> ask;
  /// For each type, from physical devices to guests: y asks the driver, k gives what is kept, - is state 6.
  const char* belowTor1;
  const char* tor1;
  char vgpu;
};

using Dev = DeviceObj;

const DeviceRule kRules[] = {
    {"vGPUs", [](const Dev& dev) { return dev.getVirtDevCuids().state(); }, "kkkkk", "kkkkk", '-'},
    {"GPU of a vGPU", [](const Dev& dev) { return dev.getVirtParentCuid().state(); }, "-----", "-----", '-'},
    {"instances", [](const Dev& dev) { return dev.getMpcInstCuids().state(); }, "-----", "-----", '-'},
    {"MPC parent", [](const Dev& dev) { return dev.getMpcParentCuid().state(); }, "-----", "-----", '-'},
    {"brand", [](const Dev& dev) { return dev.getBrand().state(); }, "kkkk-", "kkkk-", '-'},
    {"ov-bios", [](const Dev& dev) { return dev.getOvBiosVersion().state(); }, "kkkk-", "kkkk-", '-'},
    {"rtos", [](const Dev& dev) { return dev.getRtosVersion().state(); }, "kkkk-", "kkkk-", '-'},
    {"usable cores", [](const Dev& dev) { return dev.getUsableCores().state(); }, "kkkkk", "kkkkk", '-'},
    {"device id", [](const Dev& dev) { return dev.queryPciDeviceId().state(); }, "yyyyy", "yyyyy", '-'},
    {"serial", [](const Dev& dev) { return dev.getSerialNumber().state(); }, "kkkk-", "kkkk-", '-'},
    {"misc path", [](const Dev& dev) { return dev.getMiscPath().state(); }, "kkkkk", "kkkkk", '-'},
    {"card path", [](const Dev& dev) { return dev.getCardPath().state(); }, "kkkkk", "kkkkk", '-'},
    {"render path", [](const Dev& dev) { return dev.getRenderPath().state(); }, "kkkkk", "kkkkk", '-'},
    {"ion path", [](const Dev& dev) { return dev.getIonPath().state(); }, "kkkkk", "kkkkk", '-'},
    {"wide name", [](const Dev& dev) { return dev.getWideName().state(); }, "-----", "-----", '-'},
    {"MPC capable", [](const Dev& dev) { return dev.getMpcCapable().state(); }, "kkkkk", "kkkkk", 'k'},
    {"Sablink", [](const Dev& dev) { return dev.getSablinkCapable().state(); }, "kkkkk", "kkkkk", 'k'},
    {"power", [](const Dev& dev) { return dev.queryPowerUsage().state(); }, "yyyyy", "yyyyy", '-'},
    {"performance", [](const Dev& dev) { return dev.queryPerfState().state(); }, "y----", "y----", '-'},
    {"set performance", [](const Dev& dev) { return dev.setPerfState(3).state(); }, "y----", "y----", '-'},
    {"power limit", [](const Dev& dev) { return dev.queryPowerLimit(PowerLimitType::kDefault).state(); },
     "-----", "yyyyy", '-'},
    {"set power limit", [](const Dev& dev) { return dev.setPowerLimit({.limit = 1000}).state(); }, "-----",
     "y----", '-'},
    {"reset", [](const Dev& dev) { return dev.resetDevice().state(); }, "y----", "y----", '-'},
    {"reset of events", [](const Dev& dev) { return dev.resetDeviceEventMsgs().state(); }, "y----", "y----",
     '-'},
    {"PCI facts", [](const Dev& dev) { return dev.queryPcieInfo().state(); }, "yyyyy", "yyyyy", '-'},
    {"process memory", [](const Dev& dev) { return dev.queryProcessMemory().state(); }, "yyyyy", "yyyyy",
     '-'},
    {"process shares", [](const Dev& dev) { return dev.queryProcessGpuUtil(0).state(); }, "yyyyy", "yyyyy",
     '-'},
};

class DeviceRulesTest : public tolk_test::FeatureFixture {
 protected:
  DeviceRulesTest() {
    DevDesc desc;
    desc.kmdFlagA = false;
    desc.kmdFlagB = true;
    desc.kmdValue64 = 0xFUL;
    desc.miscPath = std::string("/dev/ovgpu.0");
    desc.cardPath = std::string("/dev/dri/card0");
    desc.renderPath = std::string("/dev/dri/renderD128");
    desc.ionPath = std::string("/dev/ion0");
    platform_.desc = desc;
    platform_.answer<QuerySmcFwVersionCmd>(FirmwareVersions{{"ov-bios", 1U}, {"rtos", 2U}});
    platform_.answer<QueryInfoRomCmd>(DeviceInfoRom{.serialNumber = "SN", .brand = "OVT"});
  }

  char letterOf(const DeviceRule& rule, const DeviceObj& device) {
    platform_.asked.clear();
    const KelpReturn state = rule.ask(device);
    if (state == KelpReturn::kNotSupported) {
      return platform_.asked.empty() ? '-' : '?';
    }
    if (state == KelpReturn::kNotInitialized) {
      return '5';
    }
    if (state == KelpReturn::kFailure) {
      return platform_.asked.size() == 1 ? 'y' : '?';
    }
    return platform_.asked.empty() ? 'k' : '?';
  }

  template <class Device>
  std::shared_ptr<DeviceObj> make(DevType type, DevArch arch) {
    return std::make_shared<Device>(makeCuid(type, arch), manager_);
  }

  std::shared_ptr<ModelManager> manager_ = std::make_shared<ModelManager>();
};

TEST_F(DeviceRulesTest, EachTypeAnswersWhatItHas) {
  for (const DeviceRule& rule : kRules) {
    for (const DevArch arch : {DevArch::kWold, DevArch::kFen1, DevArch::kFen2, DevArch::kTor1}) {
      std::string before;
      std::string after;
      for (const DevType type : {DevType::kPhysical, DevType::kMpcParent, DevType::kMpcInstance,
                                 DevType::kMediated, DevType::kGuest}) {
        const std::shared_ptr<DeviceObj> device = make<BareDevice>(type, arch);
        before += letterOf(rule, *device);
        ASSERT_TRUE(device->init().ok());
        after += letterOf(rule, *device);
      }
      EXPECT_EQ(before, "55555") << rule.question;
      EXPECT_EQ(after, arch < DevArch::kTor1 ? rule.belowTor1 : rule.tor1)
          << rule.question << " of family " << static_cast<int>(arch);
    }
  }
}

TEST_F(DeviceRulesTest, AVgpuRefusesWhatOnlyTheWholeGpuKnows) {
  for (const DeviceRule& rule : kRules) {
    for (const DevArch arch : {DevArch::kWold, DevArch::kFen1, DevArch::kFen2}) {
      const std::shared_ptr<DeviceObj> device = make<VirtualDevice>(DevType::kMediated, arch);
      EXPECT_EQ(letterOf(rule, *device), '5') << rule.question;
      ASSERT_TRUE(device->init().ok());
      EXPECT_EQ(letterOf(rule, *device), rule.vgpu) << rule.question;
    }
  }
}

TEST_F(DeviceRulesTest, AVgpuHasNoName) {
  platform_.answer<QueryDevNameCmd>(std::string("OVT B230"));
  const std::shared_ptr<DeviceObj> device = make<VirtualDevice>(DevType::kMediated, DevArch::kFen1);
  EXPECT_EQ(device->getDeviceName().state(), KelpReturn::kNotInitialized);
  ASSERT_TRUE(device->init().ok());
  EXPECT_EQ(device->getDeviceName().state(), KelpReturn::kNotSupported);
}

}  // namespace
}  // namespace kelp
