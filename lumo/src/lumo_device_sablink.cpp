#include <algorithm>

#include "capability.h"
#include "entry_point.h"
#include "library.h"
#include "process.h"

using lumo::asNumber;
using lumo::Device;
using lumo::isSablinkCapable;
using lumo::onlyFor;
using lumo::with;

namespace {

constexpr unsigned kCapabilities = 2;
constexpr unsigned kErrorKinds = 6;

/// The device that another one names by its internal id.
std::shared_ptr<Device> findByIntId(std::uint64_t intId, LumoReturn* status) {
  const std::shared_ptr<lumo::Library> library = lumo::currentLibrary();
  std::shared_ptr<Device> device = library == nullptr ? nullptr : library->getDeviceByIntId(intId);
  if (device == nullptr) {
    *status = LUMO_RETURN_NOT_FOUND;
  }
  return device;
}

std::shared_ptr<Device> findRemote(const Device& device, unsigned link, LumoReturn* status) {
  const unsigned intId = device.getSablinkRemoteDevice(link, status);
  return *status == LUMO_RETURN_SUCCESS ? findByIntId(intId, status) : nullptr;
}

LumoSablinkPath toLumoSablinkPath(const kelp::SablinkPath& path, LumoReturn* status) {
  LumoSablinkPath record{};
  const std::size_t count = std::min<std::size_t>(path.miscIds.size(), LUMO_SABLINK_PATH_SIZE);
  for (std::size_t i = 0; i < count && *status == LUMO_RETURN_SUCCESS; ++i) {
    if (const std::shared_ptr<Device> device = findByIntId(path.miscIds[i], status)) {
      *status = lumo::giveHandle(device, &record.devices[i], LUMO_RETURN_NOT_FOUND);
    }
  }
  record.deviceCount = static_cast<unsigned>(count);
  return record;
}

std::vector<LumoSablinkPath> givePaths(const Device& device, unsigned peer, LumoReturn* status) {
  std::vector<LumoSablinkPath> records;
  for (const kelp::SablinkPath& path : device.getSablinkShortestPaths(peer, status)) {
    records.push_back(toLumoSablinkPath(path, status));
    if (*status != LUMO_RETURN_SUCCESS) {
      return {};
    }
  }
  return records;
}

/// An operation between two devices with ports, the second one named by its internal id.
template <class Operation>
auto between(const LumoDevice* other, Operation operation) {
  const auto both = [operation](Device& device, const Device& peer, LumoReturn* status) {
    using Result = std::invoke_result_t<const Operation&, Device&, unsigned, LumoReturn*>;
    if (!lumo::checkCapability(peer, isSablinkCapable, status)) {
      return Result{};
    }
    return std::invoke(operation, device, static_cast<unsigned>(peer.getIntId(status)), status);
  };
  return onlyFor(isSablinkCapable, lumo::withPeer(other, both));
}

}  // namespace

LumoReturn lumoDeviceGetSablinkSpec(LumoDevice* device, LumoSablinkSpec* spec) {
  return lumo::getValue(device, spec, onlyFor(isSablinkCapable, &Device::getSablinkSpec));
}

LumoReturn lumoDeviceGetSablinkState(LumoDevice* device, unsigned link, unsigned* state) {
  return lumo::getValue(device, state,
                        asNumber<unsigned>(onlyFor(isSablinkCapable, with(&Device::getSablinkState, link))));
}

LumoReturn lumoDeviceGetSablinkCapStatus(LumoDevice* device, unsigned link, unsigned capability,
                                         unsigned* status) {
  if (capability >= kCapabilities) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getValue(
      device, status,
      asNumber<unsigned>(onlyFor(isSablinkCapable, with(&Device::getSablinkCapStatus, link, capability))));
}

LumoReturn lumoDeviceGetSablinkErrorCounter(LumoDevice* device, unsigned link, unsigned kind,
                                            unsigned long long* count) {
  if (kind >= kErrorKinds) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getValue(device, count,
                        onlyFor(isSablinkCapable, with(&Device::getSablinkErrorCounter, link, kind)));
}

LumoReturn lumoDeviceResetSablinkErrorCounter(LumoDevice* device, unsigned link) {
  return lumo::runOperation(device, onlyFor(isSablinkCapable, with(&Device::resetSablinkErrorCounter, link)));
}

LumoReturn lumoDeviceGetSablinkRemoteDevice(LumoDevice* device, unsigned link, LumoDevice** remote) {
  return lumo::getHandle(device, remote, LUMO_RETURN_NOT_FOUND,
                         onlyFor(isSablinkCapable, with(&findRemote, link)));
}

LumoReturn lumoDeviceGetSablinkRemoteLink(LumoDevice* device, unsigned link, unsigned* remoteLink) {
  return lumo::getValue(device, remoteLink,
                        onlyFor(isSablinkCapable, with(&Device::getSablinkRemoteLink, link)));
}

LumoReturn lumoDeviceCountSablinkLayouts(LumoDevice* device, LumoDevice* other, unsigned* count) {
  if (other == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getCount(device, count, between(other, &Device::getSablinkLayouts));
}

LumoReturn lumoDeviceGetSablinkLayouts(LumoDevice* device, LumoDevice* other, LumoSablinkLayout* layouts,
                                       unsigned capacity) {
  if (other == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getList(device, layouts, capacity, between(other, &Device::getSablinkLayouts));
}

LumoReturn lumoDeviceCountSablinkShortestPaths(LumoDevice* device, LumoDevice* other, unsigned* count) {
  if (other == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getCount(device, count, between(other, &Device::getSablinkShortestPaths));
}

LumoReturn lumoDeviceGetSablinkShortestPaths(LumoDevice* device, LumoDevice* other, LumoSablinkPath* paths,
                                             unsigned capacity) {
  if (other == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getList(device, paths, capacity, between(other, &givePaths));
}

LumoReturn lumoDeviceStartSablinkPerf(LumoDevice* device, unsigned link, unsigned* session,
                                      unsigned* actualIntervalMs) {
  const auto operation = [link](const Device& object, LumoReturn* status) {
    const kelp::SablinkPerfStart start = object.startSablinkPerf(link, status);
    return std::pair(start.sessionId, start.actualInterval);
  };
  return lumo::getPair(device, session, actualIntervalMs, onlyFor(isSablinkCapable, operation));
}

LumoReturn lumoDeviceGetSablinkPerfData(LumoDevice* device, unsigned link, unsigned session,
                                        LumoSablinkPerfData* data) {
  const auto operation = [link, session](const Device& object, LumoReturn* status) {
    const kelp::SablinkPerfData counters = object.getSablinkPerfData(link, session, status);
    return LumoSablinkPerfData{.rxBytes = counters.rxBytes,
                               .txBytes = counters.txBytes,
                               .rxRate = counters.rxRate,
                               .txRate = counters.txRate,
                               .samples = counters.samples,
                               .reserved = 0};
  };
  return lumo::getValue(device, data, onlyFor(isSablinkCapable, operation));
}

LumoReturn lumoDeviceStopSablinkPerf(LumoDevice* device, unsigned link, unsigned session, unsigned* samples) {
  return lumo::getValue(device, samples,
                        onlyFor(isSablinkCapable, with(&Device::stopSablinkPerf, link, session)));
}

LumoReturn lumoDeviceGetSablinkSerdesStatus(LumoDevice* device, unsigned link,
                                            LumoSablinkSerdesStatus* status) {
  return lumo::getValue(device, status,
                        onlyFor(isSablinkCapable, with(&Device::getSablinkSerdesStatus, link)));
}
