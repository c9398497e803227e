#include "handles.h"
#include "calls/ask.h"
#include "calls/operations.h"
#include "on_hosts/host_fixture.h"

// Null pointers and dead handles, in every function that takes one.

namespace {

using tolk_test::ask;
using tolk_test::Operation;
using tolk_test::Subject;

class BareHostHandles : public tolk_test::HostFixture {
 protected:
  static std::vector<Operation> all() {
    std::vector<Operation> operations(tolk_test::readings().begin(), tolk_test::readings().end());
    operations.insert(operations.end(), tolk_test::changes().begin(), tolk_test::changes().end());
    return operations;
  }
};

TEST_F(BareHostHandles, EveryPointerIsNeeded) {
  const Subject subject = Subject::of(device(0), device(1));
  for (const Operation& operation : all()) {
    const std::vector<LumoReturn> codes = operation.nulls(subject);
    EXPECT_GE(codes.size(), 1U);
    for (std::size_t left = 0; left < codes.size(); ++left) {
      EXPECT_EQ(codes[left], LUMO_RETURN_INVALID_ARGUMENT) << operation.name << ", pointer " << left;
    }
  }
}

TEST_F(BareHostHandles, AHandleWhoseObjectIsGoneAnswersSo) {
  LumoDevice gone;
  LumoGpu gpu;
  LumoMemory memory;
  LumoVpu vpu;
  Subject dead;
  dead.device = &gone;
  dead.gpu = &gpu;
  dead.memory = &memory;
  dead.vpu = &vpu;
  dead.other = device(1);
  for (const Operation& operation : all()) {
    const std::string answer = operation.ask(dead);
    EXPECT_EQ(answer.substr(0, answer.find('|')), "refused 999") << operation.name;
    // That a pointer is missing comes first.
    for (const LumoReturn code : operation.nulls(dead)) {
      EXPECT_EQ(code, LUMO_RETURN_INVALID_ARGUMENT) << operation.name;
    }
  }
  LumoSystem system;
  char text[64];
  EXPECT_EQ(lumoSystemGetDriverVersion(&system, text, sizeof text), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(lumoSystemGetProcessName(&system, 1, text, sizeof text), LUMO_RETURN_UNKNOWN_ERROR);
}

TEST_F(BareHostHandles, TheOtherHandleOfTwoIsLookedAtToo) {
  LumoDevice gone;
  const Subject live = Subject::of(device(0));
  for (LumoDevice* const other : {&gone, static_cast<LumoDevice*>(nullptr)}) {
    const std::string code = other == nullptr ? "refused 3" : "refused 999";
    EXPECT_EQ(ask(live, lumoDeviceGetTopologyLevel, other), code);
    EXPECT_EQ(ask(live, lumoDeviceGetP2PStatus, other, 0U), code);
    EXPECT_EQ(tolk_test::askList(live, lumoDeviceCountSablinkLayouts, lumoDeviceGetSablinkLayouts, other),
              code);
    EXPECT_EQ(tolk_test::askList(live, lumoDeviceCountSablinkShortestPaths, lumoDeviceGetSablinkShortestPaths,
                                 other),
              code);
  }
}

TEST_F(BareHostHandles, ReleaseCallsTakeAnyHandleButNull) {
  EXPECT_EQ(lumoDeviceFreeVirtDevice(device(0)), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoDeviceFreeVirtDevice(nullptr), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(name(device(0)), "OVT B250A") << "it frees nothing";
}

TEST_F(BareHostHandles, AskingTwiceGivesOneHandle) {
  LumoLibrary* second = nullptr;
  ASSERT_EQ(lumoLibraryInit(&second), LUMO_RETURN_SUCCESS);
  EXPECT_NE(second, library_);
  LumoDevice* again = nullptr;
  ASSERT_EQ(lumoLibraryInitDeviceByIndex(second, 1, &again), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(again, device(1));
  const Subject once = Subject::of(again);
  const Subject twice = Subject::of(device(1));
  EXPECT_EQ(once.gpu, twice.gpu);
  EXPECT_EQ(once.memory, twice.memory);
  EXPECT_EQ(once.vpu, twice.vpu);
  EXPECT_NE(once.gpu, Subject::of(device(0)).gpu);
  LumoSystem* sameSystem = nullptr;
  EXPECT_EQ(lumoLibraryInitSystem(second, &sameSystem), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(sameSystem, system());
  EXPECT_EQ(lumoLibraryShutDown(second), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(utilization(1), "0") << "handles live as long as one of the library's does";
}

}  // namespace
