#include "device.h"
#include "entry_point.h"
#include "event_records.h"
#include "kelp_log.h"
#include "library.h"
#include "process.h"

using lumo::Device;

namespace {

/// No more than `capacity` were asked for.
LumoReturn copyEvents(const std::vector<LumoEventData>& list, LumoEventData* events, unsigned* count) {
  std::copy(list.begin(), list.end(), events);
  *count = static_cast<unsigned>(list.size());
  return LUMO_RETURN_SUCCESS;
}

/// Runs an operation on an event, which lives until that has ended, whatever becomes of the library.
template <class Operation>
LumoReturn onEvent(const LumoEvent* event, Operation&& operation) {
  if (event == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::withoutThrowing([&] {
    std::shared_ptr<lumo::Library> library = lumo::currentLibrary();
    if (library == nullptr) {
      return LUMO_RETURN_UNKNOWN_ERROR;
    }
    const std::shared_ptr<LumoEvent> known = library->getEvents().find(event);
    library.reset();
    return known == nullptr ? LUMO_RETURN_INVALID_ARGUMENT : operation(known->object);
  });
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

LumoReturn lumoEventCreate(LumoEvent** event) {
  if (event == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::withoutThrowing([event] {
    const std::shared_ptr<lumo::Library> library = lumo::currentLibrary();
    if (library == nullptr) {
      return LUMO_RETURN_UNKNOWN_ERROR;
    }
    *event = library->getEvents().add(std::make_shared<LumoEvent>());
    return LUMO_RETURN_SUCCESS;
  });
}

LumoReturn lumoEventDestroy(LumoEvent* event) {
  if (event == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  const std::shared_ptr<lumo::Library> library = lumo::currentLibrary();
  if (library == nullptr) {
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  return library->getEvents().remove(event) ? LUMO_RETURN_SUCCESS : LUMO_RETURN_INVALID_ARGUMENT;
}

LumoReturn lumoEventRegister(LumoEvent* event, LumoDevice* device, unsigned long long eventTypes) {
  if (device == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return onEvent(event, [=](lumo::Event& object) {
    const std::shared_ptr<Device> registered = device->object.lock();
    return registered == nullptr ? LUMO_RETURN_UNKNOWN_ERROR
                                 : object.registerDevEvent(*registered, eventTypes);
  });
}

LumoReturn lumoEventWait(LumoEvent* event, unsigned timeoutMs, LumoEventData* data) {
  if (data == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return onEvent(event, [=](lumo::Event& object) {
    return object.setEventWait(std::chrono::milliseconds(timeoutMs), data);
  });
}
