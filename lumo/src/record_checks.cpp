#include <cstddef>

#include "lumo.h"

// The sizes of records that programs were compiled with, typed anew: a record that changes breaks them.

static_assert(sizeof(LumoReturn) == 4);
static_assert(sizeof(LumoLogConfiguration) == 224);
static_assert(sizeof(LumoPciInfo) == 80 && offsetof(LumoPciInfo, maxSpeed) == 56);
static_assert(sizeof(LumoPciSlotInfo) == 68);
static_assert(sizeof(LumoPcieBandWidth) == 64);
static_assert(sizeof(LumoDispIntfSpec) == 20);
static_assert(sizeof(LumoProcessMemUsage) == 32);
static_assert(sizeof(LumoProcessGpuUtilization) == 32);
static_assert(sizeof(LumoMpcProfile) == 88 && offsetof(LumoMpcProfile, name) == 24);
static_assert(sizeof(LumoMpcConfiguration) == 196 && offsetof(LumoMpcConfiguration, profileIds) == 68);
static_assert(sizeof(LumoSablinkSpec) == 12);
static_assert(sizeof(LumoSablinkLayout) == 8);
static_assert(sizeof(LumoSablinkPath) == 200);
static_assert(sizeof(LumoSablinkPerfData) == 40);
static_assert(sizeof(LumoSablinkSerdesStatus) == 68);
static_assert(sizeof(LumoVirtType) == 136 && offsetof(LumoVirtType, name) == 48 &&
              offsetof(LumoVirtType, maxWidth) == 80);
static_assert(sizeof(LumoVgpuOverCommitInfo) == 8);
static_assert(sizeof(LumoRetiredPage) == 56 && offsetof(LumoRetiredPage, location) == 24);
static_assert(sizeof(LumoMemoryEdcCounters) == 16);
static_assert(sizeof(LumoVpuUtilization) == 12);
static_assert(sizeof(LumoVpuSessionMetrics) == 32);
static_assert(sizeof(LumoXidRecord) == 168 && offsetof(LumoXidRecord, additional) == 40);
static_assert(sizeof(LumoEventData) == 232 && offsetof(LumoEventData, eventType) == 8 &&
              offsetof(LumoEventData, uuid) == 16 && offsetof(LumoEventData, record) == 64);
static_assert(sizeof(LumoPfmSample) == 16 && offsetof(LumoPfmSample, counters) == 0);
static_assert(sizeof(LumoPfmMetric) == 40);
static_assert(offsetof(LumoPfmMetricsRequest, sample1) == 0);
