#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "dev_cuid.h"
#include "features.h"
#include "lumo_def.h"
#include "resource.h"

namespace kelp {
class DeviceObj;
}

namespace lumo {

class Gpu;
class Memory;
class Vpu;

/// One device, known by a key: its uuid, or its address when it has no uuid of its own.
///
/// Owned by the library; callers reach it through a handle that does not keep it alive. Operations may
/// run on several threads: the mutex guards the children alone, all else is fixed when the library is
/// started. On a failure an operation stores the code and returns a default.
class Device : public Resource<std::string, Gpu, Memory, Vpu> {
 public:
  /// Makes a device together with its GPU, memory and VPU. `mpcParent` is null but for an MPC instance.
  static std::shared_ptr<Device> create(std::string key, std::shared_ptr<kelp::DeviceObj> deviceObj,
                                        const std::shared_ptr<Device>& mpcParent);

  kelp::DevType getType() const { return getCuid().type; }
  const kelp::DevCuid& getCuid() const;
  const kelp::Features& getFeatures() const;
  /// Identities of an MPC parent's instances.
  kelp::Stated<std::vector<kelp::DevCuid>> listMpcInstCuids() const;
  /// The model name for a part of the device, empty when there is none.
  std::string readName() const;

  virtual std::string getName(LumoReturn* status) const;
  /// Empty for a device without one.
  virtual std::string getUuid(LumoReturn* status) const;
  virtual LumoPciInfo getPciInfo(LumoReturn* status) const;
  virtual unsigned int getPerformanceState(LumoReturn* status) const;
  /// In ascending order of pid.
  virtual std::vector<LumoProcessMemUsage> getProcessLevelMemoryInfo(LumoReturn* status) const;
  virtual unsigned int getMpcInstanceIndex(LumoReturn* status) const;
  virtual LumoMpcProfile getMpcInstanceProfileInfo(LumoReturn* status) const;
  /// The LUMO_PROPERTY bits.
  virtual unsigned long long getProperty(LumoReturn* status) const;
  virtual std::shared_ptr<Device> getMpcParent(LumoReturn* status) const;
  virtual LumoReturn addMpcChild(const std::shared_ptr<Device>& child);
  /// In ascending order of internal id.
  virtual std::vector<std::shared_ptr<Device>> getMpcChildren(LumoReturn* status) const;

  /// Position in the library's order, all ones until it has one.
  unsigned int getIndex(LumoReturn* status) const;
  void setIndex(unsigned int index) { index_ = index; }

 protected:
  Device(std::string key, std::shared_ptr<kelp::DeviceObj> deviceObj,
         const std::shared_ptr<Device>& mpcParent);

 private:
  std::shared_ptr<kelp::DeviceObj> deviceObj_;
  mutable std::mutex mutex_;
  std::weak_ptr<Device> mpcParent_;
  std::unordered_map<std::string, std::shared_ptr<Device>> mpcChildren_;
  unsigned int index_ = ~0U;
};

}  // namespace lumo
