#include "device_factory.h"

#include <algorithm>

#include "kelp_log.h"

namespace kelp {

Stated<std::shared_ptr<DeviceObj>> createDeviceOf(DevArch arch, std::span<const DeviceRow> rows,
                                                  const DevCuid& cuid,
                                                  std::shared_ptr<ModelManager> modelManager) {
  if (cuid.arch != arch) {
    KELP_LOG(kError) << "Device arch mismatch, current : " << cuid.arch << ", expected : " << arch;
    return KelpReturn::kFailure;
  }
  const auto row = std::ranges::find(rows, cuid.type, &DeviceRow::type);
  if (row == rows.end()) {
    KELP_LOG(kError) << "Unknown device type : " << cuid.type;
    return KelpReturn::kFailure;
  }
  return row->make(cuid, std::move(modelManager), row->features);
}

}  // namespace kelp
