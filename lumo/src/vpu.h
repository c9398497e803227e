#pragma once

#include <array>
#include <vector>

#include "component.h"
#include "device.h"
#include "vpu_values.h"

namespace kelp {
class VpuFeatObj;
}

namespace lumo {

/// The video engine of a device. Its constructor sorts the cores by kind.
class Vpu : public Component<unsigned int, Device> {
 public:
  Vpu(unsigned int index, const std::shared_ptr<Device>& owner);

  virtual LumoVpuUtilization getUtilization(LumoReturn* status) const;
  /// Megahertz of the core that is shown for all.
  virtual unsigned int getClock(LumoReturn* status) const;
  /// Megahertz.
  virtual unsigned int getMaxClock(LumoReturn* status) const;
  /// Sessions that can run at the same time.
  virtual unsigned int getEncodeCapacity(LumoReturn* status) const;
  virtual unsigned int getDecodeCapacity(LumoReturn* status) const;
  /// By session id: LUMO_VPU_SESSION_..., or LUMO_NOT_AVAILABLE for a slot that the driver does not state.
  virtual std::vector<unsigned int> getEncoderSessionStates(LumoReturn* status) const;
  virtual std::vector<unsigned int> getDecoderSessionStates(LumoReturn* status) const;
  virtual kelp::VpuSsMetrics getEncoderSessionMetrics(unsigned int sessionId, LumoReturn* status) const;
  virtual kelp::VpuSsMetrics getDecoderSessionMetrics(unsigned int sessionId, LumoReturn* status) const;

  /// Ids of the cores of one kind, in ascending order.
  const std::vector<unsigned int>& getCoreIds(kelp::VpuCoreKind kind) const {
    return coreIds_.at(static_cast<std::size_t>(kind));
  }

 private:
  /// A session slot of a core.
  struct Slot {
    unsigned int core = 0;
    unsigned int instance = 0;
  };

  /// Whether the engine has cores at all, which every operation wants to know.
  bool hasCores(LumoReturn* status) const;
  std::shared_ptr<kelp::VpuFeatObj> enterCores(LumoReturn* status, std::source_location operation) const;
  std::shared_ptr<kelp::VpuFeatObj> enterSessions(LumoReturn* status, std::source_location operation) const;
  unsigned int countSlots(const kelp::VpuFeatObj& feature, unsigned int core, LumoReturn* status) const;
  unsigned int getCapacity(kelp::VpuCoreKind kind, LumoReturn* status, std::source_location operation) const;
  std::vector<unsigned int> getSessionStates(kelp::VpuCoreKind kind, LumoReturn* status,
                                             std::source_location operation) const;
  Slot getIdxBySessionId(const kelp::VpuFeatObj& feature, kelp::VpuCoreKind kind, unsigned int sessionId,
                         LumoReturn* status) const;
  kelp::VpuSsMetrics getSessionMetrics(kelp::VpuCoreKind kind, unsigned int sessionId, LumoReturn* status,
                                       std::source_location operation) const;

  std::array<std::vector<unsigned int>, 3> coreIds_;
  std::vector<unsigned int> showcase_;  ///< all cores; the first one's clock is shown
};

}  // namespace lumo
