#include <cstddef>

#include "linux/ap/render/render_protocol_v0/rki_records.h"

// The driver's layout tables, transcribed a second time: a slip in a record does not compile.

namespace kelp::linux_ {

#define AT(Record, field, offset, width) \
  static_assert(offsetof(Record, field) == (offset) && sizeof(Record::field) == (width))

AT(RkiGetVpuInfoV1, operation, 0, 2);
AT(RkiGetVpuInfoV1, coreId, 2, 2);
AT(RkiGetVpuInfoV1, instance, 4, 4);
AT(RkiGetVpuInfoV1, reply, 8, 152);

AT(RkiGetVpuInfoV2, operation, 0, 4);
AT(RkiGetVpuInfoV2, replySize, 4, 4);
AT(RkiGetVpuInfoV2, replyAddress, 8, 8);
AT(RkiGetVpuInfoV2, coreId, 16, 4);
AT(RkiGetVpuInfoV2, instance, 20, 4);
AT(RkiGetVpuInfoV2, vgpuId, 24, 4);
AT(RkiGetVpuInfoV2, vgpuValid, 28, 4);

static_assert(sizeof(VpuSpecReply) == 132);
AT(VpuSpecReply, coreCount, 0, 4);
AT(VpuSpecReply, cores, 4, 16 * 8);
AT(VpuCoreSpec, kind, 0, 1);
AT(VpuCoreSpec, threadCount, 1, 1);
AT(VpuCoreSpec, maxInstances, 2, 2);
AT(VpuCoreSpec, maxClock, 4, 4);

#undef AT

}  // namespace kelp::linux_
