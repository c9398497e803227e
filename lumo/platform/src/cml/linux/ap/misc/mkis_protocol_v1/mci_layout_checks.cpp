#include "linux/ap/misc/layout_check.h"
#include "linux/ap/misc/mki_probe.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_list_records.h"

// What comes before any interface call: probe, header, list. The calls' own tables are in the sources
// beside this one.

namespace kelp::linux_ {

static_assert(sizeof(MkiQueryProbeV1) == 12 && sizeof(MkiQueryProbeV0) == 16);
FIELD_AT(MkiQueryProbeV1, currentMajor, 0, 2);
FIELD_AT(MkiQueryProbeV1, currentMinor, 2, 2);
FIELD_AT(MkiQueryProbeV1, oldMajor, 4, 2);
FIELD_AT(MkiQueryProbeV1, oldMinor, 6, 2);
FIELD_AT(MkiQueryProbeV0, major, 0, 2);
FIELD_AT(MkiQueryProbeV0, minor, 2, 2);
FIELD_AT(MkiQueryProbeV0, interfaceCount, 4, 4);

static_assert(sizeof(MciHeader) == 24 && sizeof(MciBody) == 16);
FIELD_AT(MciHeader, major, 0, 2);
FIELD_AT(MciHeader, minor, 2, 2);
FIELD_AT(MciHeader, status, 4, 4);
FIELD_AT(MciHeader, pduType, 8, 4);
FIELD_AT(MciHeader, bodySize, 12, 4);
FIELD_AT(MciHeader, reserved, 16, 8);
using AnyCall = MciCall<u8[20]>;
FIELD_AT(AnyCall, body, 24, 16);
FIELD_AT(AnyCall, payload, 40, 20);
FIELD_AT(MciBody, intfName, 24 - 24, 2);
FIELD_AT(MciBody, intfVersion, 26 - 24, 1);
FIELD_AT(MciBody, payloadSize, 28 - 24, 4);

static_assert(sizeof(MkisScanPduHeaderPv1) == 48);
FIELD_AT(MkisScanPduHeaderPv1, listEntryCount, 24, 2);
FIELD_AT(MkisScanPduHeaderPv1, deviceEventTypes, 26, 2);
FIELD_AT(MkisScanPduHeaderPv1, miscNodes, 28, 2);
FIELD_AT(MkisScanPduHeaderPv1, renderNodes, 30, 2);
static_assert(sizeof(MciListHead) == 36 && sizeof(MciListEntry) == 12);
static_assert(sizeof(MciListHead) + kMciListMinEntries * sizeof(MciListEntry) == 1236);
FIELD_AT(MciListHead, listEntryCount, 24, 2);
FIELD_AT(MciListEntry, name, 0, 2);
FIELD_AT(MciListEntry, maxVersion, 2, 1);
FIELD_AT(MciListEntry, minVersion, 3, 1);

}  // namespace kelp::linux_
