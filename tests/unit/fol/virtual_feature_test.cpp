#include "objects/virtual_feat_obj.h"

#include "feature_fixture.h"

namespace kelp {
namespace {

MdevVirtType typeOf(const std::string& id, Stated<unsigned long> maxInstances) {
  MdevVirtType type;
  type.id = id;
  type.name = "OVT B230-" + id;
  type.maxInstances = maxInstances;
  return type;
}

class VirtualFeatureTest : public tolk_test::FeatureFixture {
 protected:
  const std::shared_ptr<CoreModel>& carrier() { return modelOf(DevType::kPhysical, DevArch::kFen1); }
  const std::shared_ptr<CoreModel>& vgpu(std::uint64_t id) {
    return modelOf(DevType::kMediated, DevArch::kFen1, id);
  }
};

TEST_F(VirtualFeatureTest, AGpuReadsOnceWhatItOffers) {
  platform_.answer<QuerySupportedVirtTypesCmd>(
      std::vector<MdevVirtType>{typeOf("11", 8UL), typeOf("12", 4UL)});
  const VirtualFeatObj virt(carrier());
  EXPECT_EQ(platform_.asked, (std::vector<std::string>{"QuerySupportedVirtTypes"}));
  ASSERT_EQ(virt.getSupportedTypes().value().size(), 2U);
  EXPECT_EQ(virt.getSupportedTypes().value()[1].name, "OVT B230-12");
  EXPECT_EQ(virt.getMaxInstances("11").value(), 8U);
  EXPECT_EQ(virt.getMaxInstances("12").value(), 4U);
  EXPECT_EQ(virt.getVirtType().state(), KelpReturn::kNotSupported);
  EXPECT_EQ(platform_.asked.size(), 1U);
}

TEST_F(VirtualFeatureTest, ATypeThatIsNotOfferedHasNoInstances) {
  platform_.answer<QuerySupportedVirtTypesCmd>(
      std::vector<MdevVirtType>{typeOf("11", KelpReturn::kReadFailed)});
  const VirtualFeatObj virt(carrier());
  EXPECT_EQ(virt.getMaxInstances("1").state(), KelpReturn::kNotFound);
  EXPECT_EQ(virt.getMaxInstances("11").state(), KelpReturn::kReadFailed);
}

TEST_F(VirtualFeatureTest, AnUnreadableOfferKeepsItsState) {
  platform_.answer<QuerySupportedVirtTypesCmd>(KelpReturn::kReadFailed);
  const VirtualFeatObj virt(carrier());
  EXPECT_EQ(virt.getSupportedTypes().state(), KelpReturn::kReadFailed);
  EXPECT_EQ(virt.getMaxInstances("11").state(), KelpReturn::kReadFailed);
}

TEST_F(VirtualFeatureTest, AVgpuReadsOnceWhatItIs) {
  platform_.answer<QueryVirtTypeCmd>(typeOf("11", 8UL));
  const VirtualFeatObj virt(vgpu(7));
  EXPECT_EQ(platform_.asked, (std::vector<std::string>{"QueryVirtType"}));
  EXPECT_EQ(virt.getVirtType().value().name, "OVT B230-11");
  EXPECT_EQ(virt.getSupportedTypes().state(), KelpReturn::kNotSupported);
  EXPECT_EQ(platform_.asked.size(), 1U);
}

TEST_F(VirtualFeatureTest, AVgpuIsAskedForByItsNumber) {
  std::vector<unsigned int> ids;
  platform_.answerBy<QueryVgpuUtilCmd>([&](const DevCuid&, const QueryVgpuUtilCmd& cmd) {
    ids.push_back(std::get<0>(cmd.params));
    return Stated<unsigned int>(12U);
  });
  platform_.answerBy<QueryVgpuMemInfoCmd>([&](const DevCuid&, const QueryVgpuMemInfoCmd& cmd) {
    ids.push_back(std::get<0>(cmd.params));
    GuestMemoryUsage usage;
    usage.total = 2048UL;
    usage.used = KelpReturn::kNotSupported;
    return Stated<GuestMemoryUsage>(usage);
  });
  platform_.answerBy<QueryVgpuOverCommitCmd>([&](const DevCuid&, const QueryVgpuOverCommitCmd& cmd) {
    ids.push_back(std::get<0>(cmd.params));
    return Stated<VgpuOverCommitInfo>(VgpuOverCommitInfo{.enabled = 1, .systemMemory = 64});
  });
  const VirtualFeatObj virt(vgpu(7));
  EXPECT_EQ(virt.queryGuestUtilization().value(), 12U);
  EXPECT_EQ(virt.queryGuestMemory().value().total.value(), 2048U);
  EXPECT_EQ(virt.queryGuestMemory().value().used.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(virt.queryOverCommitInfo().value().systemMemory, 64U);
  EXPECT_EQ(ids, (std::vector<unsigned int>{7, 7, 7, 7}));
}

}  // namespace
}  // namespace kelp
