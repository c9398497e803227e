#pragma once

#include "linux/ap/misc/interface_record.h"
#include "linux/ap/mki_access.h"

namespace kelp::linux_ {

/// MKI_CALL(record, interface, version, request number): a record that serves an interface. It is the whole
/// argument of its request, without header and status.
#define MKI_CALL(Record, interfaceName, interfaceVersion, requestNumber) \
  MKI_RECORD(Record, requestNumber);                                     \
  INTERFACE_RECORD(Record, interfaceName, interfaceVersion)

}  // namespace kelp::linux_
