#include <algorithm>

#include "kelp_log.h"
#include "objects/vpu_feat_obj.h"
#include "vpu.h"

// Sessions are numbered over all cores of their kind, in order of core id, as many to a core as it can
// run. Cores of the third kind have no numbered sessions.

namespace lumo {
namespace {

constexpr unsigned int kMaxSlotsPerCore = 36;  ///< no reply of the driver states more

unsigned int sessionState(const kelp::VpuSsInstState& state) {
  return static_cast<unsigned int>(state.active ? LUMO_VPU_SESSION_ACTIVE : LUMO_VPU_SESSION_IDLE);
}

}  // namespace

using kelp::VpuCoreKind;
using kelp::VpuFeatObj;

std::shared_ptr<VpuFeatObj> Vpu::enterSessions(LumoReturn* status, std::source_location operation) const {
  // A mediated device has sessions of its own.
  std::shared_ptr<VpuFeatObj> feature = enterAny(&kelp::Features::vpu, status, operation);
  return feature != nullptr && hasCores(status) ? feature : nullptr;
}

unsigned int Vpu::countSlots(const VpuFeatObj& feature, unsigned int core, LumoReturn* status) const {
  const kelp::Stated<kelp::VpuCoreSpecData> spec = feature.getCoreSpec(core);
  if (!spec.ok()) {
    KELP_LOG(kError) << "Failed get max inst count for core[" << core << "]";
    *status = statusOf(spec.state());
    return 0;
  }
  return std::min(spec.value().maxInstances, kMaxSlotsPerCore);
}

std::vector<unsigned int> Vpu::getSessionStates(VpuCoreKind kind, LumoReturn* status,
                                                std::source_location operation) const {
  const auto feature = enterSessions(status, operation);
  if (feature == nullptr) {
    return {};
  }
  const auto cores = consumeMv(feature->querySessionStates(), status, operation);
  std::vector<unsigned int> states;
  for (const unsigned int core : getCoreIds(kind)) {
    const unsigned int slots = *status == LUMO_RETURN_SUCCESS ? countSlots(*feature, core, status) : 0;
    if (*status != LUMO_RETURN_SUCCESS) {
      return {};
    }
    if (core >= cores.size()) {
      KELP_LOG(kError) << "Core index oor, index = " << core << ", vec size = " << cores.size();
      *status = LUMO_RETURN_UNKNOWN_ERROR;
      return {};
    }
    for (unsigned int i = 0; i < slots; ++i) {
      const bool stated = i < cores[core].size() && cores[core][i].ok();
      states.push_back(stated ? sessionState(cores[core][i].value()) : LUMO_NOT_AVAILABLE);
    }
  }
  return states;
}

std::vector<unsigned int> Vpu::getEncoderSessionStates(LumoReturn* status) const {
  return getSessionStates(VpuCoreKind::kEncoder, status, std::source_location::current());
}

std::vector<unsigned int> Vpu::getDecoderSessionStates(LumoReturn* status) const {
  return getSessionStates(VpuCoreKind::kDecoder, status, std::source_location::current());
}

Vpu::Slot Vpu::getIdxBySessionId(const VpuFeatObj& feature, VpuCoreKind kind, unsigned int sessionId,
                                 LumoReturn* status) const {
  for (const unsigned int core : getCoreIds(kind)) {
    const unsigned int slots = countSlots(feature, core, status);
    if (*status != LUMO_RETURN_SUCCESS) {
      return {};
    }
    if (sessionId < slots) {
      return {.core = core, .instance = sessionId};
    }
    sessionId -= slots;
  }
  *status = LUMO_RETURN_INVALID_ARGUMENT;
  return {};
}

kelp::VpuSsMetrics Vpu::getSessionMetrics(VpuCoreKind kind, unsigned int sessionId, LumoReturn* status,
                                          std::source_location operation) const {
  const auto feature = enterSessions(status, operation);
  if (feature == nullptr) {
    return {};
  }
  const Slot slot = getIdxBySessionId(*feature, kind, sessionId, status);
  if (*status != LUMO_RETURN_SUCCESS) {
    return {};
  }
  return consumeMv(feature->querySessionMetrics({.coreId = slot.core, .instance = slot.instance}), status,
                   operation);
}

kelp::VpuSsMetrics Vpu::getEncoderSessionMetrics(unsigned int sessionId, LumoReturn* status) const {
  return getSessionMetrics(VpuCoreKind::kEncoder, sessionId, status, std::source_location::current());
}

kelp::VpuSsMetrics Vpu::getDecoderSessionMetrics(unsigned int sessionId, LumoReturn* status) const {
  return getSessionMetrics(VpuCoreKind::kDecoder, sessionId, status, std::source_location::current());
}

}  // namespace lumo
