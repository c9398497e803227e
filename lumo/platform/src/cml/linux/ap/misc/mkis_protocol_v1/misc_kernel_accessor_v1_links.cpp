#include "linux/ap/misc/mkis_protocol_v1/mci_call.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_pcie_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_sablink_records.h"

namespace kelp::linux_ {

#define MCI_device(...)
#define MCI_memory(...)
#define MCI_links(...) MCI_SLOT(__VA_ARGS__)
#define MCI_OPERATION(area, ...) MCI_##area(__VA_ARGS__)
#include "linux/ap/misc/mkis_protocol_v1/mci_operations.def"

}  // namespace kelp::linux_
