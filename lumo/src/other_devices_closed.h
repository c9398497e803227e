#pragma once

#include <memory>
#include <utility>

#include "dev_cuid.h"
#include "device_manager.h"

namespace lumo {

/// Keeps the nodes of every device but one closed while it lives: the driver refuses a reset, and a
/// change that makes its devices anew, while another device is open. No other device may be asked then.
class OtherDevicesClosed {
 public:
  OtherDevicesClosed(std::shared_ptr<kelp::DeviceManager> manager, const kelp::DevCuid& target)
      : manager_(std::move(manager)), target_(target) {
    manager_->closeOtherDevices(target_);
  }
  ~OtherDevicesClosed() { manager_->reopenOtherDevices(target_); }

  OtherDevicesClosed(const OtherDevicesClosed&) = delete;
  OtherDevicesClosed& operator=(const OtherDevicesClosed&) = delete;

 private:
  std::shared_ptr<kelp::DeviceManager> manager_;
  kelp::DevCuid target_;
};

}  // namespace lumo
