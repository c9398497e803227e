#include "linux/ap/misc/mkis_protocol_v0/mki_call.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_device_records.h"
#include "linux/ap/misc/process_sample.h"

namespace kelp::linux_ {

#define MKI_device(...) MKI_SLOT(__VA_ARGS__)
#define MKI_memory(...)
#define MKI_links(...)
#define MKI_OPERATION(area, ...) MKI_##area(__VA_ARGS__)
#define SMC_OPERATION(...)
#include "linux/ap/misc/mkis_protocol_v0/mki_operations.def"

}  // namespace kelp::linux_
