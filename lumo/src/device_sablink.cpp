#include <algorithm>

#include "device.h"
#include "objects/sablink_feat_obj.h"

// The links of a device to others.

namespace lumo {

using kelp::Features;
using kelp::SablinkFeatObj;
using kelp::SablinkState;

bool Device::checkSablink(unsigned int link, LumoReturn* status, std::source_location operation) const {
  const kelp::SablinkSpec spec = ask(&Features::sablink, status, &SablinkFeatObj::querySpec, operation);
  if (*status == LUMO_RETURN_SUCCESS && link >= spec.linkCount) {
    *status = LUMO_RETURN_INVALID_ARGUMENT;
  }
  return *status == LUMO_RETURN_SUCCESS;
}

bool Device::checkSablinkUp(unsigned int link, LumoReturn* status, std::source_location operation) const {
  if (!checkSablink(link, status, operation)) {
    return false;
  }
  const SablinkState state = ask(
      &Features::sablink, status, [link](const SablinkFeatObj& feature) { return feature.queryState(link); },
      operation);
  if (*status == LUMO_RETURN_SUCCESS && state != SablinkState::kUp && state != SablinkState::kDowngraded) {
    *status = LUMO_RETURN_NOT_FOUND;
  }
  return *status == LUMO_RETURN_SUCCESS;
}

LumoSablinkSpec Device::getSablinkSpec(LumoReturn* status) const {
  const kelp::SablinkSpec spec = ask(&Features::sablink, status, &SablinkFeatObj::querySpec);
  return {.linkCount = spec.linkCount, .linkSpeed = spec.linkSpeed, .version = spec.version};
}

SablinkState Device::getSablinkState(unsigned int link, LumoReturn* status) const {
  if (!checkSablink(link, status, std::source_location::current())) {
    return SablinkState::kDown;
  }
  return ask(&Features::sablink, status,
             [link](const SablinkFeatObj& feature) { return feature.queryState(link); });
}

kelp::SablinkCapStatus Device::getSablinkCapStatus(unsigned int link, unsigned int capability,
                                                   LumoReturn* status) const {
  const SablinkState state = getSablinkState(link, status);
  if (*status != LUMO_RETURN_SUCCESS || (state != SablinkState::kUp && state != SablinkState::kDowngraded)) {
    return kelp::SablinkCapStatus::kNo;
  }
  return ask(&Features::sablink, status, [=](const SablinkFeatObj& feature) {
    return feature.queryCapStatus({.link = link, .capability = capability});
  });
}

void Device::resetSablinkErrorCounter(unsigned int link, LumoReturn* status) const {
  if (checkSablink(link, status, std::source_location::current())) {
    ask(&Features::sablink, status,
        [link](const SablinkFeatObj& feature) { return feature.resetErrorCounter(link); });
  }
}

unsigned long Device::getSablinkErrorCounter(unsigned int link, unsigned int kind, LumoReturn* status) const {
  if (!checkSablink(link, status, std::source_location::current())) {
    return 0;
  }
  return ask(&Features::sablink, status, [=](const SablinkFeatObj& feature) {
    return feature.queryErrorCounter({.link = link, .kind = kind});
  });
}

unsigned int Device::getSablinkRemoteDevice(unsigned int link, LumoReturn* status) const {
  if (!checkSablink(link, status, std::source_location::current())) {
    return 0;
  }
  return ask(&Features::sablink, status,
             [link](const SablinkFeatObj& feature) { return feature.queryRemoteDevice(link); });
}

unsigned int Device::getSablinkRemoteLink(unsigned int link, LumoReturn* status) const {
  if (!checkSablink(link, status, std::source_location::current())) {
    return 0;
  }
  return ask(&Features::sablink, status,
             [link](const SablinkFeatObj& feature) { return feature.queryRemoteLink(link); });
}

std::vector<LumoSablinkLayout> Device::getSablinkLayouts(unsigned int peer, LumoReturn* status) const {
  std::vector<LumoSablinkLayout> layouts;
  for (const kelp::SablinkLayout& layout :
       ask(&Features::sablink, status,
           [peer](const SablinkFeatObj& feature) { return feature.queryLayouts(peer); })) {
    layouts.push_back({.localPort = layout.localPort, .remotePort = layout.remotePort});
  }
  return layouts;
}

std::vector<kelp::SablinkPath> Device::getSablinkShortestPaths(unsigned int peer, LumoReturn* status) const {
  return ask(&Features::sablink, status,
             [peer](const SablinkFeatObj& feature) { return feature.queryShortestPaths(peer); });
}

kelp::SablinkPerfStart Device::startSablinkPerf(unsigned int link, LumoReturn* status) const {
  if (!checkSablinkUp(link, status, std::source_location::current())) {
    return {};
  }
  return ask(&Features::sablink, status,
             [link](const SablinkFeatObj& feature) { return feature.startPerf(link); });
}

kelp::SablinkPerfData Device::getSablinkPerfData(unsigned int link, unsigned int session,
                                                 LumoReturn* status) const {
  if (!checkSablinkUp(link, status, std::source_location::current())) {
    return {};
  }
  return ask(&Features::sablink, status, [=](const SablinkFeatObj& feature) {
    return feature.queryBandWidth({.link = link, .sessionId = session});
  });
}

unsigned int Device::stopSablinkPerf(unsigned int link, unsigned int session, LumoReturn* status) const {
  if (!checkSablinkUp(link, status, std::source_location::current())) {
    return 0;
  }
  return ask(&Features::sablink, status,
             [=](const SablinkFeatObj& feature) {
               return feature.stopPerf({.link = link, .sessionId = session});
             })
      .samples;
}

LumoSablinkSerdesStatus Device::getSablinkSerdesStatus(unsigned int link, LumoReturn* status) const {
  if (!checkSablinkUp(link, status, std::source_location::current())) {
    return {};
  }
  const kelp::SablinkSerdesStatus serdes =
      ask(&Features::sablink, status,
          [link](const SablinkFeatObj& feature) { return feature.querySerdesStatus(link); });
  LumoSablinkSerdesStatus record{};
  record.laneCount = std::min<unsigned int>(serdes.laneCount, LUMO_SABLINK_LANES);
  for (unsigned int i = 0; i < record.laneCount; ++i) {
    const kelp::SablinkLaneStatus& lane = serdes.lanes[i];
    record.lanes[i] = {.state = lane.state,
                       .eyeWidth = lane.eyeWidth,
                       .eyeHeight = lane.eyeHeight,
                       .bitErrors = lane.bitErrors};
  }
  return record;
}

}  // namespace lumo
