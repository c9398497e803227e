#include <algorithm>

#include "entry_point.h"
#include "vpu.h"

using lumo::Vpu;

namespace {

/// The one list that is cut to the caller's buffer, or padded.
template <class Operation>
LumoReturn getSessionStates(LumoVpu* vpu, unsigned* states, unsigned count, Operation operation) {
  if (vpu == nullptr || states == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  if (count == 0) {
    return LUMO_RETURN_INSUFFICIENT_SIZE;
  }
  return lumo::callObject(vpu, operation, [=](const std::vector<unsigned>& list) {
    const std::size_t copied = std::min<std::size_t>(list.size(), count);
    std::fill(std::copy_n(list.begin(), copied, states), states + count, LUMO_NOT_AVAILABLE);
    return LUMO_RETURN_SUCCESS;
  });
}

LumoReturn getMetrics(LumoVpu* vpu, unsigned sessionId, LumoVpuSessionMetrics* metrics,
                      kelp::VpuSsMetrics (Vpu::*operation)(unsigned, LumoReturn*) const) {
  return lumo::getValue(vpu, metrics, [=](const Vpu& object, LumoReturn* status) {
    const kelp::VpuSsMetrics session = (object.*operation)(sessionId, status);
    return LumoVpuSessionMetrics{.state = session.status,
                                 .pid = session.pid,
                                 .codec = session.codec,
                                 .hRes = session.hRes,
                                 .vRes = session.vRes,
                                 .fps = session.fps,
                                 .bitrate = session.bitrate,
                                 .sessionId = session.sessionId};
  });
}

}  // namespace

LumoReturn lumoVpuGetUtilization(LumoVpu* vpu, LumoVpuUtilization* utilization) {
  return lumo::getValue(vpu, utilization, &Vpu::getUtilization);
}

LumoReturn lumoVpuGetClock(LumoVpu* vpu, unsigned* megahertz) {
  return lumo::getValue(vpu, megahertz, &Vpu::getClock);
}

LumoReturn lumoVpuGetMaxClock(LumoVpu* vpu, unsigned* megahertz) {
  return lumo::getValue(vpu, megahertz, &Vpu::getMaxClock);
}

LumoReturn lumoVpuGetCodecCapacity(LumoVpu* vpu, unsigned* encode, unsigned* decode) {
  return lumo::getPair(vpu, encode, decode, [](const Vpu& object, LumoReturn* status) {
    const unsigned encoders = object.getEncodeCapacity(status);
    return std::pair(encoders, *status == LUMO_RETURN_SUCCESS ? object.getDecodeCapacity(status) : 0U);
  });
}

LumoReturn lumoVpuGetEncoderSessionStates(LumoVpu* vpu, unsigned* states, unsigned count) {
  return getSessionStates(vpu, states, count, &Vpu::getEncoderSessionStates);
}

LumoReturn lumoVpuGetDecoderSessionStates(LumoVpu* vpu, unsigned* states, unsigned count) {
  return getSessionStates(vpu, states, count, &Vpu::getDecoderSessionStates);
}

LumoReturn lumoVpuGetEncoderSessionMetrics(LumoVpu* vpu, unsigned sessionId, LumoVpuSessionMetrics* metrics) {
  return getMetrics(vpu, sessionId, metrics, &Vpu::getEncoderSessionMetrics);
}

LumoReturn lumoVpuGetDecoderSessionMetrics(LumoVpu* vpu, unsigned sessionId, LumoVpuSessionMetrics* metrics) {
  return getMetrics(vpu, sessionId, metrics, &Vpu::getDecoderSessionMetrics);
}

LumoReturn lumoDeviceFreeVpu(LumoVpu* vpu) {
  return lumo::ignoreRelease(vpu, "lumoDeviceFreeVpu");
}
