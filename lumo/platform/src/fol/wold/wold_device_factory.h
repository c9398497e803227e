#pragma once

#include "device_factory.h"

namespace kelp {

class WoldDeviceFactory : public DeviceFactory {
 public:
  Stated<std::shared_ptr<DeviceObj>> createDevice(const DevCuid& cuid,
                                                  std::shared_ptr<ModelManager> modelManager) override;
};

}  // namespace kelp
