#include <functional>

#include "device_object.h"
#include "feature_fixture.h"
#include "fen1/fen1_gpu_feat_obj.h"
#include "fen2/fen2_gpu_feat_obj.h"
#include "fen2/fen2_pcie_feat_obj.h"
#include "objects/internal_feat_obj.h"
#include "objects/memory_feat_obj.h"
#include "objects/mpc_feat_obj.h"
#include "objects/virtual_feat_obj.h"
#include "tor1/tor1_gpu_feat_obj.h"
#include "tor1/tor1_internal_feat_obj.h"
#include "wold/wold_gpu_feat_obj.h"

// Which type of device of which family answers which question. A cell of the tables has a letter for each
// type, from physical devices to guests: y asks the driver, - answers state 6 without asking and without a
// log line.

namespace kelp {
namespace {

using tolk_test::makeCuid;

constexpr DevType kTypes[] = {DevType::kPhysical, DevType::kMpcParent, DevType::kMpcInstance,
                              DevType::kMediated, DevType::kGuest};
constexpr DevArch kArchs[] = {DevArch::kWold, DevArch::kFen1, DevArch::kFen2, DevArch::kTor1};

template <class Object>
struct Rule {
  const char* question;
  std::function<KelpReturn(const Object&)> ask;
  const char* answers[4];  ///< per family
};

class SlotRulesTest : public tolk_test::FeatureFixture {
 protected:
  /// What a question does, as a letter of the tables. No command has an answer: each fails with state 1.
  template <class Object>
  char letterOf(const Rule<Object>& rule, const Object& object) {
    platform_.asked.clear();
    log_.lines.clear();
    const KelpReturn state = rule.ask(object);
    if (state == KelpReturn::kNotSupported && platform_.asked.empty() && log_.lines.empty()) {
      return '-';
    }
    return state == KelpReturn::kFailure && platform_.asked.size() == 1 ? 'y' : '?';
  }

  /// `make` gives the object of a family, of the model of a device.
  template <class Object, class Make, std::size_t n>
  void check(const Rule<Object> (&rules)[n], Make make) {
    for (const Rule<Object>& rule : rules) {
      for (std::size_t family = 0; family < std::size(kArchs); ++family) {
        std::string answers;
        for (const DevType type : kTypes) {
          answers += letterOf(rule, *make(kArchs[family], modelOf(type, kArchs[family])));
        }
        EXPECT_EQ(answers, rule.answers[family]) << rule.question << " of family " << family + 1;
      }
    }
  }
};

std::unique_ptr<GpuFeatObj> makeGpu(DevArch arch, const std::shared_ptr<CoreModel>& model) {
  switch (arch) {
    case DevArch::kWold:
      return std::make_unique<WoldGpuFeatObj>(model);
    case DevArch::kFen1:
      return std::make_unique<Fen1GpuFeatObj>(model);
    case DevArch::kFen2:
      return std::make_unique<Fen2GpuFeatObj>(model);
    default:
      return std::make_unique<Tor1GpuFeatObj>(model);
  }
}

using Gpu = GpuFeatObj;

const Rule<Gpu> kGpuRules[] = {
    {"utilization",
     [](const Gpu& gpu) { return gpu.queryUtilization().state(); },
     {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
    {"engine 0",
     [](const Gpu& gpu) { return gpu.queryEngineUtilization(0).state(); },
     {"y--yy", "y--yy", "y--yy", "y--yy"}},
    {"engine 3",
     [](const Gpu& gpu) { return gpu.queryEngineUtilization(3).state(); },
     {"y--yy", "y--yy", "y--yy", "y--yy"}},
    {"engine 4",
     [](const Gpu& gpu) { return gpu.queryEngineUtilization(4).state(); },
     {"-----", "-----", "-----", "-----"}},
    {"temperature",
     [](const Gpu& gpu) { return gpu.queryTemperature().state(); },
     {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
    {"sensor 0",
     [](const Gpu& gpu) { return gpu.querySensorTemperature(0).state(); },
     {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
    {"sensor 1",
     [](const Gpu& gpu) { return gpu.querySensorTemperature(1).state(); },
     {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
    {"sensor 2",
     [](const Gpu& gpu) { return gpu.querySensorTemperature(2).state(); },
     {"-----", "-----", "-----", "-----"}},
    {"hottest sensor",
     [](const Gpu& gpu) { return gpu.queryMaxTemperature().state(); },
     {"-----", "yy---", "yy---", "yy---"}},
    {"clock", [](const Gpu& gpu) { return gpu.queryClock().state(); }, {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
    {"maximum clock",
     [](const Gpu& gpu) { return gpu.queryMaxClock().state(); },
     {"yyyyy", "yyyyy", "yyyyy", "-----"}},
    {"guest utilization",
     [](const Gpu& gpu) { return gpu.queryGuestUtilization().state(); },
     {"y-y--", "y-y--", "y-y--", "y-y--"}},
    {"memory controller",
     [](const Gpu& gpu) { return gpu.queryMemoryBusy().state(); },
     {"yy---", "yy---", "yy---", "yy---"}},
    {"core average",
     [](const Gpu& gpu) { return gpu.queryCoreAverage().state(); },
     {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
    {"busiest core",
     [](const Gpu& gpu) { return gpu.queryCoreMax().state(); },
     {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
    {"units of cores",
     [](const Gpu& gpu) { return gpu.queryUnitsOfCores(1).state(); },
     {"-----", "-----", "-----", "yyyyy"}},
    {"reset", [](const Gpu& gpu) { return gpu.reset().state(); }, {"y----", "y----", "y----", "y----"}},
    {"reset of error counts",
     [](const Gpu& gpu) { return gpu.resetHwErrorCounts().state(); },
     {"y----", "y----", "y----", "y----"}},
    {"thermal slowdown",
     [](const Gpu& gpu) { return gpu.queryThermalSlowdown().state(); },
     {"-----", "-----", "-----", "y----"}},
};

TEST_F(SlotRulesTest, Gpu) {
  check(kGpuRules, makeGpu);
}

const Rule<Gpu> kPlainGpuRules[] = {
    {"temperature",
     [](const Gpu& gpu) { return gpu.queryTemperature().state(); },
     {"-----", "-----", "-----", "-----"}},
    {"sensor 0",
     [](const Gpu& gpu) { return gpu.querySensorTemperature(0).state(); },
     {"-----", "-----", "-----", "-----"}},
    {"hottest sensor",
     [](const Gpu& gpu) { return gpu.queryMaxTemperature().state(); },
     {"yy---", "yy---", "yy---", "yy---"}},
    {"clock", [](const Gpu& gpu) { return gpu.queryClock().state(); }, {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
    {"maximum clock",
     [](const Gpu& gpu) { return gpu.queryMaxClock().state(); },
     {"yyyyy", "yyyyy", "yyyyy", "-----"}},
    {"units of cores",
     [](const Gpu& gpu) { return gpu.queryUnitsOfCores(1).state(); },
     {"-----", "-----", "-----", "-----"}},
    {"thermal slowdown",
     [](const Gpu& gpu) { return gpu.queryThermalSlowdown().state(); },
     {"-----", "-----", "-----", "-----"}},
};

TEST_F(SlotRulesTest, GpuOfNoFamily) {
  check(kPlainGpuRules,
        [](DevArch, const std::shared_ptr<CoreModel>& model) { return std::make_unique<GpuFeatObj>(model); });
}

using Mpc = MpcFeatObj;

const Rule<Mpc> kMpcRules[] = {
    {"set configuration",
     [](const Mpc& mpc) { return mpc.setConfiguration(1).state(); },
     {"-y---", "-y---", "-y---", "-y---"}},
    {"instances",
     [](const Mpc& mpc) { return mpc.queryInstances().state(); },
     {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
    {"own profile",
     [](const Mpc& mpc) { return mpc.queryInstanceProfile().state(); },
     {"--y--", "--y--", "--y--", "--y--"}},
    {"set mode",
     [](const Mpc& mpc) { return mpc.setMode(MpcMode::kOn).state(); },
     {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
};

TEST_F(SlotRulesTest, Mpc) {
  check(kMpcRules,
        [](DevArch, const std::shared_ptr<CoreModel>& model) { return std::make_unique<MpcFeatObj>(model); });
}

using Virt = VirtualFeatObj;

const Rule<Virt> kVirtualRules[] = {
    {"guest utilization",
     [](const Virt& virt) { return virt.queryGuestUtilization().state(); },
     {"---y-", "---y-", "---y-", "---y-"}},
    {"guest memory",
     [](const Virt& virt) { return virt.queryGuestMemory().state(); },
     {"---y-", "---y-", "---y-", "---y-"}},
    {"over-commit",
     [](const Virt& virt) { return virt.queryOverCommitInfo().state(); },
     {"---y-", "---y-", "---y-", "---y-"}},
};

TEST_F(SlotRulesTest, Virtual) {
  check(kVirtualRules, [](DevArch, const std::shared_ptr<CoreModel>& model) {
    return std::make_unique<VirtualFeatObj>(model);
  });
}

using Memory = MemoryFeatObj;

const Rule<Memory> kMemoryRules[] = {
    {"clock",
     [](const Memory& memory) { return memory.queryClock().state(); },
     {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
    {"speed",
     [](const Memory& memory) { return memory.querySpeed().state(); },
     {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
};

TEST_F(SlotRulesTest, Memory) {
  check(kMemoryRules, [](DevArch, const std::shared_ptr<CoreModel>& model) {
    return std::make_unique<MemoryFeatObj>(model);
  });
}

using Pcie = PcieFeatObj;

const auto startPerf = [](const Pcie& pcie) { return pcie.startPerf(100).state(); };
const auto stopPerf = [](const Pcie& pcie) { return pcie.stopPerf(1).state(); };
const auto bandWidth = [](const Pcie& pcie) { return pcie.queryBandWidth(1).state(); };

TEST_F(SlotRulesTest, TrafficCountersNeedTheClassThatHasThem) {
  const Rule<Pcie> plain[] = {
      {"start", startPerf, {"-----", "-----", "-----", "-----"}},
      {"stop", stopPerf, {"-----", "-----", "-----", "-----"}},
      {"read", bandWidth, {"-----", "-----", "-----", "-----"}},
  };
  check(plain, [](DevArch, const std::shared_ptr<CoreModel>& model) {
    return std::make_unique<PcieFeatObj>(model);
  });
  const Rule<Pcie> counting[] = {
      {"start", startPerf, {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
      {"stop", stopPerf, {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
      {"read", bandWidth, {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}},
  };
  check(counting, [](DevArch, const std::shared_ptr<CoreModel>& model) -> std::unique_ptr<PcieFeatObj> {
    return std::make_unique<Fen2PcieFeatObj>(model);
  });
}

using Internal = InternalFeatObj;

TEST_F(SlotRulesTest, UnitsOfACoreNeedTheClassThatHasThem) {
  const auto units = [](const Internal& internal) { return internal.queryUnitsOfCore(0).state(); };
  const Rule<Internal> plain[] = {{"units", units, {"-----", "-----", "-----", "-----"}}};
  check(plain, [](DevArch, const std::shared_ptr<CoreModel>& model) {
    return std::make_unique<InternalFeatObj>(model);
  });
  const Rule<Internal> telling[] = {{"units", units, {"yyyyy", "yyyyy", "yyyyy", "yyyyy"}}};
  check(telling, [](DevArch, const std::shared_ptr<CoreModel>& model) -> std::unique_ptr<InternalFeatObj> {
    return std::make_unique<Tor1InternalFeatObj>(model);
  });
}

}  // namespace
}  // namespace kelp
