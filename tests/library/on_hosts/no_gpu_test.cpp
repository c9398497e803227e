#include "on_hosts/host_fixture.h"

// Machines on which there is nothing to manage.

namespace {

class NoneHost : public tolk_test::HostFixture {};

TEST_F(NoneHost, HasNoDevices) {
  EXPECT_EQ(count(), 0U);
  LumoDevice* handle = nullptr;
  EXPECT_EQ(lumoLibraryInitDeviceByIndex(library_, 0, &handle), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(lumoLibraryInitDeviceByUuid(library_, "", &handle), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, "0000:01:00.0", &handle), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(handle, nullptr);
}

TEST_F(NoneHost, HasNoDriverVersion) {
  char text[80] = "before";
  EXPECT_EQ(lumoSystemGetDriverVersion(system(), text, sizeof text), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_STREQ(text, "before");
}

TEST(UnloadedHost, DoesNotStart) {
  for (int time = 0; time < 3; ++time) {
    LumoLibrary* library = nullptr;
    EXPECT_EQ(lumoLibraryInit(&library), LUMO_RETURN_DRIVER_NOT_LOADED);
  }
}

}  // namespace
