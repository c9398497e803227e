#pragma once

#include <string>
#include <vector>

#include "lumo.h"

/// The faults that the driver's log daemon has stored, a file per GPU. The file of a GPU stays when the GPU
/// is taken out. Nothing is kept between calls, which may run on several threads.
namespace lumo {

/// The file of a GPU's stored events, null for an unknown type.
const char* eventFileName(unsigned long long eventType);

/// The newest `count` events of a GPU, newest first; `deviceIndex` goes into them. Code 4 for an unknown
/// type, 999 for a file that is not there or not as it should be.
std::vector<LumoEventData> getEventDataByEventType(unsigned int deviceIndex, const std::string& uuid,
                                                   unsigned long long eventType, unsigned int count,
                                                   LumoReturn* status);

/// The newest `count` records of one such file, oldest first.
std::vector<LumoXidRecord> readXidRecords(const std::string& path, unsigned int count, LumoReturn* status);

}  // namespace lumo
