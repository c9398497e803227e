#include <cstddef>

#include "linux/ap/render/render_protocol_v0/rki_records.h"

// The driver's layout tables, transcribed a second time: a slip in a record does not compile.

namespace kelp::linux_ {

#define AT(Record, field, offset, width) \
  static_assert(offsetof(Record, field) == (offset) && sizeof(Record::field) == (width))

AT(RkiMkisList, start, 0, 4);
AT(RkiMkisList, count, 4, 4);
AT(RkiMkisList, entries, 8, 20 * 16);
AT(MkiMkisListEntry, name, 0, 4);
AT(MkiMkisListEntry, version, 4, 4);

AT(RkiGetVpuInfoV0, operation, 0, 2);
AT(RkiGetVpuInfoV0, coreId, 2, 2);
AT(RkiGetVpuInfoV0, instance, 4, 4);
AT(RkiGetVpuInfoV0, reply, 8, 152);

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

static_assert(sizeof(VpuUtilReply) == 64);
AT(VpuUtilReply, cores, 0, 16 * 4);
AT(VpuCoreBusy, percent, 0, 4);

static_assert(sizeof(VpuSsMetricsReply) == 36);
AT(VpuSsMetricsReply, status, 0, 4);
AT(VpuSsMetricsReply, pid, 4, 4);
AT(VpuSsMetricsReply, codec, 8, 4);
AT(VpuSsMetricsReply, hRes, 12, 4);
AT(VpuSsMetricsReply, vRes, 16, 4);
AT(VpuSsMetricsReply, fps, 20, 4);
AT(VpuSsMetricsReply, bitrate, 24, 4);
AT(VpuSsMetricsReply, sessionId, 28, 4);

static_assert(sizeof(VpuSsStatesReplyV2) == 132);
AT(VpuSsStatesReplyV2, count, 0, 4);
AT(VpuSsStatesReplyV2, instances, 4, 32 * 4);

static_assert(sizeof(VpuSsStatesReplyV3) == 152);
AT(VpuSsStatesReplyV3, coreId, 0, 4);
AT(VpuSsStatesReplyV3, count, 4, 4);
AT(VpuSsStatesReplyV3, instances, 8, 36 * 4);
AT(VpuInstanceState, state, 0, 4);

static_assert(sizeof(VpuClockReply) == 128);
AT(VpuClockReply, cores, 0, 16 * 8);
AT(VpuCoreClock, hertz, 0, 4);

static_assert(sizeof(VpuSpecReply) == 132);
AT(VpuSpecReply, coreCount, 0, 4);
AT(VpuSpecReply, cores, 4, 16 * 8);
AT(VpuCoreSpec, kind, 0, 1);
AT(VpuCoreSpec, threadCount, 1, 1);
AT(VpuCoreSpec, maxInstances, 2, 2);
AT(VpuCoreSpec, maxClock, 4, 4);

#undef AT

}  // namespace kelp::linux_
