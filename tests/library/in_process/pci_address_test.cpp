#include "in_process/lumo_fixture.h"
#include "pci_sbdf.h"
#include "pci_text.h"

// Addresses whose parts are all different, and texts that are none.

namespace {

using rusk::LogLevel;

class PciAddressTest : public tolk_test::LumoFixture {
 protected:
  /// One GPU at an address, with its PCI record.
  LumoPciInfo infoOf(std::uint64_t sbdf, const std::string& text) {
    kelp::DevCuid cuid = tolk_test::makeCuid(kelp::DevType::kPhysical, kelp::DevArch::kTor1);
    cuid.sbdf = sbdf;
    platform_.pcieCuids = kelp::DevCuidSet{cuid};
    platform_.desc = describe("uuid", text);
    kelp::PcieInfo reply;
    for (auto* field : {&reply.vendorId, &reply.deviceId, &reply.subsystemVendorId, &reply.subsystemDeviceId,
                        &reply.maxLinkWidth, &reply.curLinkWidth, &reply.maxLinkGen, &reply.curLinkGen}) {
      *field = 1U;
    }
    reply.maxLinkSpeed = 2.5F;
    reply.curLinkSpeed = 2.5F;
    platform_.answer<kelp::QueryPcieInfoCmd>(reply);
    mustStart();
    LumoPciInfo info{};
    EXPECT_EQ(lumoDeviceGetPciInfo(device(0), &info), LUMO_RETURN_SUCCESS);
    return info;
  }
};

TEST_F(PciAddressTest, DomainBusAndDeviceAreThoseOfTheAddress) {
  const LumoPciInfo info = infoOf(kelp::packSbdf(0x10000, 0x41, 0x1F, 3), "10000:41:1f.3");
  EXPECT_STREQ(info.sbdf, "10000:41:1f.3");
  EXPECT_EQ(info.domain, 0x10000U);
  EXPECT_EQ(info.bus, 0x41U);
  EXPECT_EQ(info.device, 0x1FU);
}

TEST_F(PciAddressTest, AnAddressIsShownAsTheSystemSpellsIt) {
  EXPECT_STREQ(infoOf(kelp::packSbdf(0, 0xAB, 0, 0), "0000:AB:00.0").sbdf, "0000:AB:00.0");
}

TEST_F(PciAddressTest, ADeviceIsFoundInEverySpellingOfItsAddress) {
  infoOf(kelp::packSbdf(0xA, 0xBC, 0x1D, 0), "000a:bc:1d.0");
  for (const char* text : {"000a:bc:1d.0", "000A:BC:1D.0", "0000000a:bc:1d.0", "000a:bc:1d:0"}) {
    LumoDevice* found = nullptr;
    EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, text, &found), LUMO_RETURN_SUCCESS) << text;
    EXPECT_EQ(found, device(0));
  }
}

TEST_F(PciAddressTest, ATextThatIsNoAddressIsLogged) {
  EXPECT_EQ(lumo::formatOutputPciStr("nowhere"), "");
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Check pci sbdf nowhere  format failed "));
}

}  // namespace
