#include <algorithm>
#include <vector>

#include "on_hosts/values_fixture.h"

// Division of GPUs, on a host with GPUs that are divided and others that can be: Fen1 and Fen2 whole, then
// Fen1, Fen2 and Tor1 divided. Each test ends with the host as it was.

namespace {

using tolk_test::ask;
using tolk_test::askList;
using tolk_test::askText;
using tolk_test::Subject;

class DividedHost : public tolk_test::HostFixture {
 protected:
  // Devices at the beginning, of which the last six are parents and their one instance each.
  static constexpr unsigned kWold = 0;
  static constexpr unsigned kFen1 = 1;
  static constexpr unsigned kFen2 = 2;
  static constexpr unsigned kFen1Parent = 4;
  static constexpr unsigned kFen2Parent = 6;
  static constexpr unsigned kDevices = 10;

  /// What a program does after a change: devices come and go with it.
  void startAnew() {
    ASSERT_EQ(lumoLibraryShutDown(library_), LUMO_RETURN_SUCCESS);
    ASSERT_EQ(lumoLibraryInit(&library_), LUMO_RETURN_SUCCESS);
  }
  /// The same after a division in batch, which leaves nothing but the library's handle.
  void joinAnew() {
    LumoLibrary* second = nullptr;
    ASSERT_EQ(lumoLibraryInit(&second), LUMO_RETURN_SUCCESS);
    ASSERT_EQ(lumoLibraryShutDown(second), LUMO_RETURN_SUCCESS);
  }
  LumoDevice* byUuid(const std::string& uuid) {
    LumoDevice* handle = nullptr;
    EXPECT_EQ(lumoLibraryInitDeviceByUuid(library_, uuid.c_str(), &handle), LUMO_RETURN_SUCCESS) << uuid;
    return handle;
  }
  /// "mode instances" of a GPU, by its uuid.
  std::string division(const std::string& uuid) {
    const Subject subject = Subject::of(byUuid(uuid));
    return ask(subject, lumoDeviceGetMpcMode) + " " + ask(subject, lumoDeviceCountMpcInstances);
  }
  void putBack(const std::string& uuid) {
    EXPECT_EQ(lumoDeviceSetMpcMode(byUuid(uuid), 0), LUMO_RETURN_SUCCESS);
    startAnew();
  }
  LumoReturn batch(std::vector<std::pair<unsigned, unsigned>> wanted) {
    std::vector<LumoDevice*> devices;
    std::vector<unsigned> ids;
    for (const auto& [index, id] : wanted) {
      devices.push_back(device(index));
      ids.push_back(id);
    }
    return lumoLibrarySetMpcConfigurationInBatch(library_, static_cast<unsigned>(wanted.size()),
                                                 devices.data(), ids.data());
  }
};

constexpr const char* kWhole = "0 refused 4";

TEST_F(DividedHost, ModeMakesAParentWithTheLowestConfiguration) {
  ASSERT_EQ(count(), kDevices);
  const std::string gpu = uuid(device(kFen1));
  EXPECT_EQ(division(gpu), kWhole);
  EXPECT_EQ(lumoDeviceSetMpcMode(device(kFen1), 2), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoDeviceSetMpcMode(device(kFen1), 1), LUMO_RETURN_SUCCESS);
  startAnew();
  EXPECT_EQ(count(), kDevices + 1);
  EXPECT_EQ(division(gpu), "1 1");
  EXPECT_EQ(ask(Subject::of(device(kFen1)), lumoDeviceGetType), std::to_string(LUMO_DEVICE_MPC_PARENT));
  const Subject instance = Subject::of(device(kFen1 + 1));
  EXPECT_EQ(ask(instance, lumoDeviceGetType), std::to_string(LUMO_DEVICE_MPC_INSTANCE));
  EXPECT_EQ(ask(instance, lumoDeviceGetMpcMode), "1");
  EXPECT_EQ(ask(instance, lumoDeviceGetMpcInstanceIndex), "0");
  EXPECT_EQ(ask(instance, lumoDeviceGetMpcProfileInfo), "3 1c.8g 1 8192");
  EXPECT_EQ(ask(instance, lumoMemoryGetTotal), std::to_string(8192ULL << 20));
  LumoDevice* parent = nullptr;
  EXPECT_EQ(lumoDeviceGetMpcParentDevice(instance, &parent), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(parent, device(kFen1));

  EXPECT_EQ(lumoDeviceSetMpcMode(device(kFen1), 0), LUMO_RETURN_SUCCESS);
  startAnew();
  EXPECT_EQ(count(), kDevices);
  EXPECT_EQ(division(gpu), kWhole);
}

TEST_F(DividedHost, AConfigurationMakesItsInstances) {
  EXPECT_EQ(lumoDeviceSetMpcConfiguration(device(kFen2Parent), 7), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoDeviceSetMpcConfiguration(device(kFen1), 1), LUMO_RETURN_NOT_SUPPORTED) << "no parent yet";
  const std::string gpu = uuid(device(kFen2Parent));
  EXPECT_EQ(division(gpu), "1 1");
  EXPECT_EQ(lumoDeviceSetMpcConfiguration(device(kFen2Parent), 1), LUMO_RETURN_SUCCESS);
  startAnew();
  EXPECT_EQ(count(), kDevices + 1);
  EXPECT_EQ(division(gpu), "1 2");
  LumoDevice* instances[2] = {};
  ASSERT_EQ(lumoDeviceGetMpcInstances(device(kFen2Parent), instances, 2), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(instances[0], device(kFen2Parent + 1));
  EXPECT_EQ(instances[1], device(kFen2Parent + 2));
  EXPECT_NE(uuid(instances[0]), uuid(instances[1])) << "of one profile";
  EXPECT_EQ(ask(Subject::of(instances[1]), lumoDeviceGetMpcInstanceIndex), "1");
  EXPECT_EQ(ask(Subject::of(device(kFen2Parent)), lumoDeviceCountMpcInstanceByProfile, 3U), "2");
  EXPECT_EQ(ask(Subject::of(device(kFen2Parent)), lumoDeviceCountMpcInstanceByProfile, 4U), "0");
  EXPECT_EQ(lumoDeviceSetMpcConfiguration(device(kFen2Parent), 0), LUMO_RETURN_SUCCESS);
  startAnew();
  EXPECT_EQ(count(), kDevices);
}

TEST_F(DividedHost, AGpuInUseIsNotDivided) {
  const Subject other = Subject::of(device(kWold));
  EXPECT_EQ(lumoDeviceSetMpcMode(device(kFen1Parent), 1), LUMO_RETURN_SUCCESS) << "it is one";
  EXPECT_EQ(ask(other, lumoMemoryGetTotal), std::to_string(4ULL << 30)) << "open again";
}

TEST_F(DividedHost, ABatchOfNoneDoesNothing) {
  LumoDevice* device0 = device(0);
  EXPECT_EQ(batch({}), LUMO_RETURN_INVALID_ARGUMENT) << "empty lists are null pointers here";
  LumoDevice* none[1] = {device0};
  unsigned id = 0;
  EXPECT_EQ(lumoLibrarySetMpcConfigurationInBatch(library_, 0, none, &id), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(name(device0), "OVT B210") << "handles stay";
}

TEST_F(DividedHost, ABatchWithADeviceThatCannotBeDividedChangesNothing) {
  for (const unsigned index : {kWold, 5U}) {
    LumoDevice* const before = device(kFen1);
    EXPECT_EQ(batch({{kFen1, 1}, {index, 1}}), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(name(before), "OVT B230");
    EXPECT_EQ(division(uuid(before)), kWhole);
  }
}

TEST_F(DividedHost, ABatchDividesWholeAndDividedGpus) {
  const std::string whole = uuid(device(kFen1));
  const std::string divided = uuid(device(kFen2Parent));
  EXPECT_EQ(batch({{kFen1, 1}, {kFen2Parent, 1}}), LUMO_RETURN_SUCCESS);
  joinAnew();
  EXPECT_EQ(count(), kDevices + 2 + 1);
  EXPECT_EQ(division(whole), "1 2");
  EXPECT_EQ(division(divided), "1 2");
  EXPECT_EQ(lumoDeviceSetMpcConfiguration(byUuid(divided), 0), LUMO_RETURN_SUCCESS);
  startAnew();
  putBack(whole);
  EXPECT_EQ(count(), kDevices);
}

TEST_F(DividedHost, AFailedBatchTakesBackWhatItDid) {
  // In the order of their uuids; the second one has no configuration 99.
  const std::string a = uuid(device(kFen1));
  const std::string b = uuid(device(kFen1Parent));
  const bool isFirst = a < b;
  EXPECT_EQ(batch({{kFen1, isFirst ? 1U : 99U}, {kFen1Parent, isFirst ? 99U : 1U}}),
            LUMO_RETURN_INVALID_ARGUMENT);
  joinAnew();
  EXPECT_EQ(division(a), kWhole);
  EXPECT_EQ(division(b), kWhole) << "it was divided before, and leaves the mode too";
  EXPECT_EQ(lumoDeviceSetMpcMode(byUuid(b), 1), LUMO_RETURN_SUCCESS);
  startAnew();
  EXPECT_EQ(count(), kDevices);
}

TEST_F(DividedHost, ABatchDoesNotSwitchAGpuWithLinks) {
  const std::string gpu = uuid(device(kFen2));
  EXPECT_EQ(batch({{kFen2, 1}}), LUMO_RETURN_NOT_SUPPORTED);
  joinAnew();
  EXPECT_EQ(division(gpu), kWhole);
}

/// The host with one divided GPU, against its description.
class MpcHostLists : public tolk_test::HostFixture {};

TEST_F(MpcHostLists, AParentTellsWhatItCanBeDividedInto) {
  const Subject parent = Subject::of(device(1));
  EXPECT_EQ(ask(parent, lumoDeviceCountSupportedMpcProfiles), "2");
  EXPECT_EQ(askList(parent, lumoDeviceCountSupportedMpcProfiles, lumoDeviceGetSupportedMpcProfiles),
            "3 1c.16g 1 16384; 1 3c.48g 3 49152");
  EXPECT_EQ(ask(parent, lumoDeviceCountSupportedMpcConfigurations), "3");
  EXPECT_EQ(
      askList(parent, lumoDeviceCountSupportedMpcConfigurations, lumoDeviceGetSupportedMpcConfigurations),
      "0 full 1 1; 1 thirds 3 3 3 3; 2 pair 2 3 3");
  EXPECT_EQ(ask(parent, lumoDeviceGetMpcConfiguration, 1U), "1 thirds 3 3 3 3");
  EXPECT_EQ(ask(parent, lumoDeviceGetMpcConfiguration, 3U), "refused 7");
  EXPECT_EQ(ask(parent, lumoDeviceGetMpcConfigurationByName, "pair"), "2 pair 2 3 3");
  EXPECT_EQ(ask(parent, lumoDeviceGetMpcConfigurationByName, "pairs"), "refused 7");
  LumoMpcConfiguration configuration;
  EXPECT_EQ(lumoDeviceGetMpcConfigurationByName(device(1), nullptr, &configuration),
            LUMO_RETURN_INVALID_ARGUMENT);
  LumoDevice* instance = nullptr;
  EXPECT_EQ(lumoDeviceGetMpcInstanceByProfile(device(1), 3, &instance, 1), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(askList(parent, lumoDeviceCountMpcInstanceByProfile, lumoDeviceGetMpcInstanceByProfile, 3U),
            "2; 3");
  EXPECT_EQ(ask(parent, lumoDeviceGetMpcMode), "1");
  EXPECT_EQ(ask(Subject::of(device(0)), lumoDeviceGetMpcMode), "refused 4") << "it cannot be divided";
}

}  // namespace
