#include "guest_device.h"

#include <array>
#include <cstdio>

#include "core_model.h"

namespace kelp {
namespace {

/// Length of "OVT ", the prefix of every model name.
constexpr std::size_t kPrefixLength = 4;

}  // namespace

Stated<std::string> GuestDevice::getDeviceName() const {
  if (!isInitialized()) {
    return KelpReturn::kNotInitialized;
  }
  const Stated<PcieInfo> pcie = queryPcieInfo();
  if (!pcie.ok()) {
    return pcie.state();
  }
  Stated<std::string> model = this->model().exec(QueryDevNameCmd());
  if (!model.ok() || model.value().size() <= kPrefixLength) {
    const Stated<unsigned int>& deviceId = pcie.value().deviceId;
    model = deviceId.ok() ? getListedName(deviceId.value()) : deviceId.state();
    if (!model.ok()) {
      return model.state();
    }
  }
  // In a guest the board number is the type of the vGPU.
  const Stated<unsigned int>& type = pcie.value().subsystemDeviceId;
  if (!type.ok()) {
    return type.state();
  }
  std::array<char, 16> hex{};
  std::snprintf(hex.data(), hex.size(), "%x", type.value());
  return "OV vGPU " + model.value().substr(kPrefixLength) + "-" + hex.data();
}

}  // namespace kelp
