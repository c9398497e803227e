#include "device.h"
#include "entry_point.h"
#include "kelp_log.h"
#include "library.h"
#include "process.h"

using lumo::Device;
using lumo::Library;
using lumo::with;

namespace {

constexpr unsigned kModes = 2;

LumoReturn refuse(const char* reason) {
  KELP_LOG(kError) << reason;
  return LUMO_RETURN_INVALID_ARGUMENT;
}

/// Whether two samples make metrics.
LumoReturn checkSamples(Library& library, const LumoPfmMetricsRequest& request) {
  if (request.sample1 == request.sample2) {
    return refuse("sample1 equal to sample2");
  }
  if (!library.getSamples().find(request.sample1) || !library.getSamples().find(request.sample2) ||
      request.sample1->counters == nullptr || request.sample2->counters == nullptr) {
    return refuse("pfm sample invalid");
  }
  if (request.sample1->deviceId != request.sample2->deviceId || request.count == 0) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return request.count > LUMO_PFM_MAX_METRICS ? LUMO_RETURN_INSUFFICIENT_SIZE : LUMO_RETURN_SUCCESS;
}

}  // namespace

LumoReturn lumoDeviceIsPfmSupported(LumoDevice* device, unsigned* supported) {
  return lumo::getValue(device, supported, [](const Device& object, LumoReturn*) {
    LumoReturn ignored = LUMO_RETURN_SUCCESS;
    return object.isPfmSupported(&ignored) ? 1U : 0U;
  });
}

LumoReturn lumoDeviceStartPfm(LumoDevice* device, unsigned mode) {
  if (mode >= kModes) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::runOperation(device, with(&Device::startPfm, mode));
}

LumoReturn lumoDeviceStopPfm(LumoDevice* device) {
  return lumo::runOperation(device, &Device::stopPfm);
}

LumoReturn lumoPfmSampleAlloc(LumoPfmSample** sample) {
  if (sample == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  const std::shared_ptr<Library> library = lumo::currentLibrary();
  if (library == nullptr) {
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  return lumo::withoutThrowing([&] {
    *sample = library->getSamples().add(std::make_shared<LumoPfmSample>());
    return LUMO_RETURN_SUCCESS;
  });
}

LumoReturn lumoPfmSampleFree(LumoPfmSample* sample) {
  if (sample == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  const std::shared_ptr<Library> library = lumo::currentLibrary();
  if (library == nullptr) {
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  return library->getSamples().remove(sample) ? LUMO_RETURN_SUCCESS : refuse("pfmSample has not been alloc");
}

LumoReturn lumoPfmSampleGet(LumoDevice* device, LumoPfmSample* sample) {
  if (device == nullptr || sample == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  const std::shared_ptr<Library> library = lumo::currentLibrary();
  if (library == nullptr) {
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  if (!library->getSamples().find(sample)) {
    return refuse("pfmSample has not been alloc");
  }
  return lumo::runOperation(device, with(&Device::getPfmSample, sample));
}

LumoReturn lumoPfmMetricsGet(LumoPfmMetricsRequest* request) {
  if (request == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  const std::shared_ptr<Library> library = lumo::currentLibrary();
  if (library == nullptr) {
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  LumoReturn status = checkSamples(*library, *request);
  if (status != LUMO_RETURN_SUCCESS) {
    return status;
  }
  const unsigned long long deviceId = request->sample1->deviceId;
  const std::shared_ptr<Device> device = library->getDeviceByIntId(deviceId);
  if (device == nullptr) {
    KELP_LOG(kError) << "get device id" << deviceId << "handle failed";
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  for (unsigned i = 0; i < request->count && status == LUMO_RETURN_SUCCESS; ++i) {
    device->getPfmMetrics(&request->metrics[i], *request->sample1, *request->sample2, &status);
  }
  return status;
}
