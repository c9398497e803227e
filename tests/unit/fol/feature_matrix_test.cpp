#include <cxxabi.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "device_object.h"
#include "feature_makers.h"
#include "fen1/fen1_device_factory.h"
#include "fen2/fen2_device_factory.h"
#include "guest_device.h"
#include "mpc_instance_device.h"
#include "mpc_parent_device.h"
#include "physical_device.h"
#include "support/fake_platform.h"
#include "support/log_capture.h"
#include "tor1/tor1_device_factory.h"
#include "virtual_device.h"
#include "wold/wold_device_factory.h"

// Every kind of device of every family with its features and their classes, printed and compared with
// feature_matrix.txt: the whole of what the tables of the families say, at a glance.

namespace kelp {
namespace {

template <class T>
std::string classOf(const T& object) {
  char* name = abi::__cxa_demangle(typeid(object).name(), nullptr, nullptr, nullptr);
  const std::string text = name;
  std::free(name);
  return text.substr(text.rfind(':') + 1);
}

class FeatureMatrixTest : public testing::Test {
 protected:
  template <class Feature>
  void addFeature(const char* name, const std::shared_ptr<Feature>& feature) {
    if (feature != nullptr) {
      matrix_ << "  " << name << " " << classOf(*feature) << "\n";
    }
  }

  void addDevice(const std::string& title, const std::shared_ptr<DeviceObj>& device) {
    ASSERT_TRUE(device->init().ok());
    matrix_ << title << " " << classOf(*device) << "\n";
    const Features& features = device->getFeatures();
    addFeature("disp", features.disp);
    addFeature("fan", features.fan);
    addFeature("gpu", features.gpu);
    addFeature("memory", features.memory);
    addFeature("mpc", features.mpc);
    addFeature("sablink", features.sablink);
    addFeature("pcie", features.pcie);
    addFeature("pfm", features.pfm);
    addFeature("topology", features.topology);
    addFeature("virtual", features.virt);
    addFeature("vpu", features.vpu);
    addFeature("affinity", features.affinity);
    addFeature("event", features.event);
    addFeature("ecc", features.ecc);
    addFeature("internal", features.internal);
    addFeature("display-setting", features.dispSetting);
  }

  template <class Device>
  void addAnyFamilys() {
    addDevice("any",
              std::make_shared<Device>(tolk_test::makeCuid(DevType::kPhysical, DevArch::kFen2), manager_));
  }

  template <class Factory>
  void addFamily(const char* family, DevArch arch) {
    for (const DevType type : {DevType::kPhysical, DevType::kMpcParent, DevType::kMpcInstance,
                               DevType::kMediated, DevType::kGuest}) {
      auto device = Factory().createDevice(tolk_test::makeCuid(type, arch), manager_);
      if (device.ok()) {
        addDevice(family, device.take());
      }
    }
  }

  tolk_test::FakePlatform platform_;
  const tolk_test::LogCapture log_;
  std::shared_ptr<ModelManager> manager_ = std::make_shared<ModelManager>();
  std::ostringstream matrix_;
};

TEST_F(FeatureMatrixTest, IsAsWritten) {
  addAnyFamilys<PhysicalDevice>();
  addAnyFamilys<MpcParentDevice>();
  addAnyFamilys<MpcInstanceDevice>();
  addAnyFamilys<VirtualDevice>();
  addAnyFamilys<GuestDevice>();
  addFamily<WoldDeviceFactory>("Wold", DevArch::kWold);
  addFamily<Fen1DeviceFactory>("Fen1", DevArch::kFen1);
  addFamily<Fen2DeviceFactory>("Fen2", DevArch::kFen2);
  addFamily<Tor1DeviceFactory>("Tor1", DevArch::kTor1);

  std::ifstream file(FEATURE_MATRIX);
  ASSERT_TRUE(file) << FEATURE_MATRIX;
  std::ostringstream written;
  written << file.rdbuf();
  EXPECT_EQ(matrix_.str(), written.str());
}

}  // namespace
}  // namespace kelp
