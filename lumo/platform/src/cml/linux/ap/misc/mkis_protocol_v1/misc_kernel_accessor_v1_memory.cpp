#include "linux/ap/misc/mkis_protocol_v1/mci_call.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_ecc_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_memory_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_mpc_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_vgpu_records.h"

namespace kelp::linux_ {

#define MCI_device(...)
#define MCI_memory(...) MCI_SLOT(__VA_ARGS__)
#define MCI_links(...)
#define MCI_OPERATION(area, ...) MCI_##area(__VA_ARGS__)
#include "linux/ap/misc/mkis_protocol_v1/mci_operations.def"

}  // namespace kelp::linux_
