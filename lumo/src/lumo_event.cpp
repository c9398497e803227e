#include "device.h"
#include "entry_point.h"
#include "event_records.h"
#include "kelp_log.h"

using lumo::Device;

namespace {

/// No more than `capacity` were asked for.
LumoReturn copyEvents(const std::vector<LumoEventData>& list, LumoEventData* events, unsigned* count) {
  std::copy(list.begin(), list.end(), events);
  *count = static_cast<unsigned>(list.size());
  return LUMO_RETURN_SUCCESS;
}

}  // namespace

LumoReturn lumoDeviceGetSupportedEventTypes(LumoDevice* device, unsigned long long* types) {
  return lumo::getValue(device, types, &Device::getSupportedEventTypes);
}

LumoReturn lumoDeviceGetEventDataByEventType(LumoDevice* device, unsigned long long eventType,
                                             LumoEventData* events, unsigned capacity, unsigned* count) {
  if (device == nullptr || events == nullptr || count == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  const auto operation = [=](const Device& object, LumoReturn* status) {
    const unsigned index = object.getIndex(status);
    const std::string uuid = object.getUuid(status);
    return *status == LUMO_RETURN_SUCCESS
               ? lumo::getEventDataByEventType(index, uuid, eventType, capacity, status)
               : std::vector<LumoEventData>();
  };
  return lumo::withoutThrowing([&] {
    KELP_LOG(kInfo) << "event type" << eventType << " wanted count" << capacity;
    return lumo::tryObject(device, operation, [=](const std::vector<LumoEventData>& list) {
      return copyEvents(list, events, count);
    });
  });
}

LumoReturn lumoGetTargetUuidEventDataByEventType(const char* uuid, unsigned long long eventType,
                                                 LumoEventData* events, unsigned capacity, unsigned* count) {
  if (uuid == nullptr || events == nullptr || count == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::withoutThrowing([=] {
    constexpr unsigned kNoDevice = ~0U;
    LumoReturn status = LUMO_RETURN_SUCCESS;
    const std::vector<LumoEventData> list =
        lumo::getEventDataByEventType(kNoDevice, uuid, eventType, capacity, &status);
    return status == LUMO_RETURN_SUCCESS ? copyEvents(list, events, count) : status;
  });
}
