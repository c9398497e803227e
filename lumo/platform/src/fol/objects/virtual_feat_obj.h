#pragma once

#include <string>
#include <vector>

#include "kelp_return.h"
#include "objects/feat_obj.h"
#include "virtual_values.h"

namespace kelp {

/// Division of a GPU into vGPUs, seen from the host: by the GPU that carries them, and by one of them.
/// What a GPU can offer is read once, by the constructor; a read that failed is kept as a state.
class VirtualFeatObj : public FeatObj<VirtualFeatObj> {
 public:
  explicit VirtualFeatObj(const std::shared_ptr<CoreModel>& model);

  // Of the GPU that carries vGPUs.
  virtual Stated<std::vector<std::string>> readActiveUuids() const;
  /// The types of which one more vGPU can be made.
  virtual Stated<std::vector<MdevVirtType>> readAvailableTypes() const;
  /// The most vGPUs of a type, named by its id; state 7 for a type that is not offered.
  virtual Stated<unsigned int> getMaxInstances(const std::string& typeId) const;
  virtual Stated<std::vector<MdevVirtType>> getSupportedTypes() const;
  /// How many more vGPUs of a type, named by its id, can be made now.
  Stated<unsigned int> readAvailableInstances(const std::string& typeId) const;

  // Of a vGPU.
  virtual Stated<MdevVirtType> getVirtType() const;
  /// Unique on its GPU.
  virtual Stated<unsigned int> readVgpuId() const;
  /// Process of the virtual machine, 0 while none uses the vGPU.
  virtual Stated<unsigned int> readVmPid() const;
  /// Percent.
  virtual Stated<unsigned int> queryGuestUtilization() const;
  virtual Stated<GuestMemoryUsage> queryGuestMemory() const;
  virtual Stated<VgpuOverCommitInfo> queryOverCommitInfo() const;

 private:
  Stated<std::vector<MdevVirtType>> supportedTypes_;
  Stated<MdevVirtType> activeType_;
};

}  // namespace kelp
