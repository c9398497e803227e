#include "command_access/lumo_access/lumo_access_factory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake_lumo.h"
#include "front_log_capture.h"

namespace tolk {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tolk_test::fakeLumo;
using tolk_test::FrontLogCapture;

class LumoAccessFactoryTest : public testing::Test {
 protected:
  void SetUp() override { fakeLumo() = {}; }

  FrontLogCapture log_;
};

TEST_F(LumoAccessFactoryTest, StartsTheLibraryAndItsSystem) {
  LumoAccessFactory factory;
  EXPECT_EQ(factory.initializeLumo(), 0);
  EXPECT_THAT(fakeLumo().calls, ElementsAre("lumoLibraryInit", "lumoLibraryInitSystem"));
  EXPECT_THAT(log_.lines, ElementsAre("T LumoAccessLibrary >> ", "T LumoAccessSystem >> ",
                                      "T initializeLumo >> ", "T setLumoLibrary >> ", "T setLumoSystem >> "));
}

TEST_F(LumoAccessFactoryTest, EndsTheLibraryAfterTheSystem) {
  {
    LumoAccessFactory factory;
    factory.initializeLumo();
    fakeLumo().calls.clear();
    log_.lines.clear();
  }
  EXPECT_THAT(fakeLumo().calls, ElementsAre("lumoLibraryFreeSystem", "lumoLibraryShutDown"));
  EXPECT_THAT(log_.lines, ElementsAre("T ~LumoAccessSystem >> ", "T ~LumoAccessLibrary >> "));
}

TEST_F(LumoAccessFactoryTest, ReleasesNothingThatItNeverHad) {
  { LumoAccessFactory factory; }
  EXPECT_THAT(fakeLumo().calls, IsEmpty());
}

TEST_F(LumoAccessFactoryTest, MissingDriverIsOne) {
  fakeLumo().fail("lumoLibraryInit", {LUMO_RETURN_DRIVER_NOT_LOADED});
  LumoAccessFactory factory;
  EXPECT_EQ(factory.initializeLumo(), 1);
  EXPECT_EQ(factory.getAccessLibrary()->getLumoLibrary(), nullptr);
  EXPECT_THAT(log_.of('E'), ElementsAre("initializeLumo >> dirver not load "));
}

TEST_F(LumoAccessFactoryTest, EveryOtherFailureOfTheStartIs999) {
  fakeLumo().fail("lumoLibraryInit", {LUMO_RETURN_INSUFFICIENT_MEMORY});
  LumoAccessFactory factory;
  EXPECT_EQ(factory.initializeLumo(), 999);
  EXPECT_EQ(factory.getAccessLibrary()->getLumoLibrary(), nullptr);
  EXPECT_THAT(log_.of('E'), ElementsAre("initializeLumo >> lumoLibraryInit() failed, ret =  8 "));
}

TEST_F(LumoAccessFactoryTest, MissingSystemIs999AndTheLibraryIsStillReleased) {
  fakeLumo().fail("lumoLibraryInitSystem", {LUMO_RETURN_DRIVER_NOT_LOADED});
  {
    LumoAccessFactory factory;
    EXPECT_EQ(factory.initializeLumo(), 999);
  }
  EXPECT_THAT(log_.of('E'), ElementsAre("initializeLumo >> lumoLibraryInitSystem() failed, ret =  1 "));
  EXPECT_THAT(fakeLumo().calls,
              ElementsAre("lumoLibraryInit", "lumoLibraryInitSystem", "lumoLibraryShutDown"));
}

TEST_F(LumoAccessFactoryTest, DeviceTakesItsPartsInOrder) {
  LumoAccessFactory factory;
  factory.initializeLumo();
  fakeLumo().lines.clear();
  log_.lines.clear();
  fakeLumo().set("lumoLibraryInitDeviceByIndex", tolk_test::device(5));
  const auto device = factory.getAccessDeviceById(5);
  ASSERT_TRUE(device);
  EXPECT_THAT(fakeLumo().lines,
              ElementsAre("lumoLibraryInitDeviceByIndex(library 0, 5)", "lumoDeviceInitGpu(device 5)",
                          "lumoDeviceInitVpu(device 5)", "lumoDeviceInitMemory(device 5)"));
  EXPECT_THAT(log_.lines, ElementsAre("T getAccessDeviceById >> devId =  5 "));
  const auto& modules = device->getLumoModuleSet();
  EXPECT_TRUE(modules.device && modules.gpu && modules.vpu && modules.memory);
}

TEST_F(LumoAccessFactoryTest, DeviceByUuidIsTheSameDeviceByItsText) {
  LumoAccessFactory factory;
  factory.initializeLumo();
  fakeLumo().lines.clear();
  log_.lines.clear();
  EXPECT_TRUE(factory.getAccessDeviceByUuid("the uuid"));
  EXPECT_THAT(fakeLumo().lines, ElementsAre("lumoLibraryInitDeviceByUuid(library 0, \"the uuid\")",
                                            "lumoDeviceInitGpu(device 0)", "lumoDeviceInitVpu(device 0)",
                                            "lumoDeviceInitMemory(device 0)"));
  EXPECT_THAT(log_.lines, ElementsAre("T getAccessDeviceByUuid >> uuid =  the uuid "));
}

TEST_F(LumoAccessFactoryTest, UnknownUuidLeavesNoDeviceAndOneErrorLine) {
  fakeLumo().fail("lumoLibraryInitDeviceByUuid", {LUMO_RETURN_NOT_FOUND});
  LumoAccessFactory factory;
  EXPECT_FALSE(factory.getAccessDeviceByUuid("x"));
  EXPECT_THAT(log_.of('E'), ElementsAre("getAccessDeviceByUuid >> Init device failed, uuid =  x "));
}

struct LostPart {
  const char* entryPoint;
  const char* line;
  unsigned callsMade;
};

class LostPartTest : public LumoAccessFactoryTest, public testing::WithParamInterface<LostPart> {};

TEST_P(LostPartTest, LeavesNoDeviceAndOneErrorLine) {
  fakeLumo().fail(GetParam().entryPoint, {LUMO_RETURN_NOT_FOUND});
  LumoAccessFactory factory;
  EXPECT_FALSE(factory.getAccessDeviceById(5));
  EXPECT_THAT(log_.of('E'), ElementsAre(GetParam().line));
  EXPECT_EQ(fakeLumo().calls.size(), GetParam().callsMade);
}

INSTANTIATE_TEST_SUITE_P(
    LumoAccessFactoryTest, LostPartTest,
    testing::Values(LostPart{"lumoLibraryInitDeviceByIndex",
                             "getAccessDeviceById >> Init device failed, devId =  5 ", 1},
                    LostPart{"lumoDeviceInitGpu", "makeDevice >> Init gpu failed, ret =  7 ", 2},
                    LostPart{"lumoDeviceInitVpu", "makeDevice >> Init vpu failed, ret =  7 ", 3},
                    LostPart{"lumoDeviceInitMemory", "makeDevice >> Init memory failed, ret =  7 ", 4}),
    [](const auto& test) { return test.param.entryPoint; });

TEST_F(LumoAccessFactoryTest, LogOfTheLibraryComesThroughTheCallback) {
  fakeLumo().log.fileLevel = 2;
  fakeLumo().log.maxFileLines = 10000;
  EXPECT_EQ(LumoAccessFactory::configureLog(), 0);
  EXPECT_EQ(fakeLumo().log.callbackLevel, 4u);
  EXPECT_EQ(fakeLumo().log.fileLevel, 2u);
  EXPECT_EQ(fakeLumo().log.maxFileLines, 10000u);
  EXPECT_THAT(log_.lines, ElementsAre("I configureLog >> orvane-tolk version :  2.4.0 "));

  log_.lines.clear();
  ASSERT_NE(fakeLumo().log.callback, nullptr);
  fakeLumo().log.callback("a line of the library", 21);
  EXPECT_THAT(log_.lines, ElementsAre("I logCallBack >> a line of the library "));
}

TEST_F(LumoAccessFactoryTest, LogThatCannotBeReadIsNotWritten) {
  fakeLumo().fail("lumoLogGetConfiguration", {LUMO_RETURN_INVALID_ARGUMENT});
  EXPECT_EQ(LumoAccessFactory::configureLog(), 999);
  EXPECT_THAT(fakeLumo().calls, ElementsAre("lumoLogGetConfiguration"));
  EXPECT_THAT(log_.of('E'), ElementsAre("configureLog >> get configuration of lumo's log failed, ret =  3 "));
}

TEST_F(LumoAccessFactoryTest, LogThatCannotBeWrittenIs999) {
  fakeLumo().fail("lumoLogSetConfiguration", {LUMO_RETURN_NOT_SUPPORTED});
  EXPECT_EQ(LumoAccessFactory::configureLog(), 999);
  EXPECT_THAT(log_.of('E'), ElementsAre("configureLog >> configure lumo's log failed, ret =  4 "));
}

}  // namespace
}  // namespace tolk
