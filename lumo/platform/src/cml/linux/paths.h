#pragma once

// Where the operating system and the ovgpu driver show themselves.

namespace kelp::linux_ {

inline constexpr const char* kDeviceFolder = "/dev";
inline constexpr const char* kFirstMiscNode = "/dev/ovgpu.0";
inline constexpr const char* kAcceleratorNode = "/dev/ac_dev";
inline constexpr const char* kNeuralNode = "/dev/npucore";
inline constexpr const char* kDrmDeviceFolder = "/dev/dri";

inline constexpr const char* kMiscPrefix = "ovgpu.";
inline constexpr const char* kCardPrefix = "card";
inline constexpr const char* kRenderPrefix = "renderD";

/// One folder per PCI function.
inline constexpr const char* kPciDevicesFolder = "/sys/bus/pci/devices";
/// One link per function that the driver is bound to; gone when the driver is unloaded.
inline constexpr const char* kPciDriverFolder = "/sys/bus/pci/drivers/ovgpu";
/// Below a function: a folder per misc node, and a folder per DRM node.
inline constexpr const char* kMiscFolder = "/misc";
inline constexpr const char* kDrmFolder = "/drm";
/// Below an SR-IOV virtual function: the link to the physical one.
inline constexpr const char* kPhysicalFunction = "/physfn";

inline constexpr const char* kDriverModeFile = "/sys/module/ovgpu/parameters/ovgpu_driver_mode";
inline constexpr const char* kDisableVpu = "disable_vpu";
inline constexpr const char* kDisableVpuFile = "/sys/module/ovgpu/parameters/disable_vpu";
/// There while the driver of the video engine is loaded.
inline constexpr const char* kVideoDriverFolder = "/sys/bus/platform/drivers/ovgpu_vde";

inline constexpr const char* kDriverProcFolder = "/proc/driver/vela/";
inline constexpr const char* kDriverVersionFile = "/proc/driver/vela/version";
/// One folder per GPU, and in it the name of its misc node.
inline constexpr const char* kProcGpuPrefix = "gpu";
inline constexpr const char* kProcDeviceName = "/devname";

inline constexpr const char* kProcFolder = "/proc/";
inline constexpr const char* kMountsFile = "/proc/mounts";
inline constexpr const char* kInitCgroupFile = "/proc/1/cgroup";
inline constexpr const char* kCgroupFolder = "/sys/fs/cgroup";

/// One link per function that can carry mediated devices, and in it a folder per type that it offers.
inline constexpr const char* kMediatedParentsFolder = "/sys/class/mdev_bus";
inline constexpr const char* kMediatedTypesFolder = "/mdev_supported_types";
/// One link per mediated device, named by its uuid.
inline constexpr const char* kMediatedDevicesFolder = "/sys/bus/mdev/devices";
/// Below a mediated device: the link to its type, and what the driver knows of it.
inline constexpr const char* kMediatedTypeLink = "/mdev_type";
inline constexpr const char* kVgpuIdFile = "/ovgpu_vgpu/vgpu_id";
inline constexpr const char* kVmPidFile = "/ovgpu_vgpu/vm_pid";

/// One link per InfiniBand adapter.
inline constexpr const char* kInfinibandFolder = "/sys/class/infiniband/";

}  // namespace kelp::linux_
