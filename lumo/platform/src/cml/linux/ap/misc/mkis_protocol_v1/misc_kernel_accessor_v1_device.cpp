#include "linux/ap/misc/mkis_protocol_v1/mci_board_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_call.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_device_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_gpu_records.h"
#include "linux/ap/misc/process_sample.h"

namespace kelp::linux_ {

#define MCI_device(...) MCI_SLOT(__VA_ARGS__)
#define MCI_memory(...)
#define MCI_links(...)
#define MCI_OPERATION(area, ...) MCI_##area(__VA_ARGS__)
#include "linux/ap/misc/mkis_protocol_v1/mci_operations.def"

}  // namespace kelp::linux_
