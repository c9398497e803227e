#pragma once

#include "linux/mdev/mdev_base.h"
#include "virtual_values.h"

namespace kelp::linux_ {

/// What the description of a type says. An option that it lacks has state 6.
struct MdevTypeInfo {
  Stated<std::string> maxResolution;  ///< width, "x", height
  Stated<unsigned int> maxEncodeNum;
  Stated<unsigned int> maxDecodeNum;
  Stated<unsigned long> framebuffer;  ///< MiB
  Stated<unsigned int> maxInstances;
  Stated<unsigned int> maxVirtualDisplay;
};

/// One type of vGPU that a GPU offers, "ovgpu-<number>".
class MdevType : public MdevBase {
 public:
  MdevType() = default;
  explicit MdevType(std::string path) : MdevBase(std::move(path)) {}

  /// What follows the last "-" of the folder's name; empty for a folder that is no type.
  std::string_view getId() const;

  Stated<std::string> readName() const { return readText("/name"); }
  Stated<std::string> readDeviceApi() const { return readText("/device_api"); }
  /// How many more vGPUs of the type can be made.
  Stated<unsigned int> readAvailableInstances() const;
  Stated<MdevTypeInfo> readInfo() const;
  /// Everything at once. A text that cannot be read is empty, a number then has the state of the failure.
  MdevVirtType readVirtType() const;

  /// Takes a description apart: options "key=value" parted by commas, in any order. One that is unknown,
  /// or whose value is no number, is logged and left out.
  static MdevTypeInfo decode(std::string_view description);
};

}  // namespace kelp::linux_
