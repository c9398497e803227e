#pragma once

#include <string>

#include "host_tree.h"

namespace tolk_test {

/// A virtualisation host: GPUs that carry vGPUs, the types that they offer and the vGPUs that exist.
class MediatedHost : public HostTree {
 protected:
  static constexpr const char* kDescription =
      "max_resolution=4096x2160,max_encode_num=2,max_decode_num=4,framebuffer=2048,max_instances=8,"
      "max_ov_virtual_display=2\n";

  static std::string place(const std::string& sbdf) { return "/sys/devices/pci0000:00/" + sbdf; }

  /// Registers a bound function as one that can carry vGPUs.
  void carrier(const std::string& sbdf) const {
    link("/sys/class/mdev_bus/" + sbdf, place(sbdf));
    folder(place(sbdf) + "/mdev_supported_types");
    folder("/sys/bus/mdev/devices");
  }

  void type(const std::string& sbdf, const std::string& id, const std::string& available = "3\n") const {
    const std::string folder = typeFolder(sbdf, id);
    file(folder + "/name", "OVT B230-" + id + "Q\n");
    file(folder + "/device_api", "vfio-pci\n");
    file(folder + "/available_instances", available);
    file(folder + "/description", kDescription);
  }
  static std::string typeFolder(const std::string& sbdf, const std::string& id) {
    return place(sbdf) + "/mdev_supported_types/ovgpu-" + id;
  }

  void vgpu(const std::string& sbdf, const std::string& uuid, const std::string& vgpuId,
            const std::string& typeId) const {
    const std::string folder = place(sbdf) + "/" + uuid;
    file(folder + "/ovgpu_vgpu/vgpu_id", vgpuId);
    file(folder + "/ovgpu_vgpu/vm_pid", "4242\n");
    link(folder + "/mdev_type", typeFolder(sbdf, typeId));
    link("/sys/bus/mdev/devices/" + uuid, folder);
  }
};

}  // namespace tolk_test
