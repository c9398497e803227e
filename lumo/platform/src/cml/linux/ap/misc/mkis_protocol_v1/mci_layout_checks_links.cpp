#include "linux/ap/misc/layout_check.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_pcie_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_sablink_records.h"

// The driver's tables of PCI Express and Sablink, transcribed a second time.

namespace kelp::linux_ {

CALL_IS(MciGetPciConfigSpaceV1, 6, 1, 272);
FIELD_AT(MciGetPciConfigSpaceV1, configSpace, 0, 264);

CALL_IS(MciGetP2pStatusV1, 7, 1, 28);
FIELD_AT(MciGetP2pStatusV1, peer, 0, 4);
FIELD_AT(MciGetP2pStatusV1, capability, 4, 4);
FIELD_AT(MciGetP2pStatusV1, status, 8, 4);

CALL_IS(MciPciePerStartV2, 26, 2, 28);
FIELD_AT(MciPciePerStartV2, interval, 0, 4);
FIELD_AT(MciPciePerStartV2, sessionId, 4, 4);
FIELD_AT(MciPciePerStartV2, actualInterval, 8, 4);

CALL_IS(MciPciePerReadV2, 27, 2, 112);
FIELD_AT(MciPciePerReadV2, sessionId, 4, 4);
FIELD_AT(MciPciePerReadV2, rxBytes, 8, 8);
FIELD_AT(MciPciePerReadV2, txBytes, 16, 8);
FIELD_AT(MciPciePerReadV2, rxRate, 24, 8);
FIELD_AT(MciPciePerReadV2, txRate, 32, 8);
FIELD_AT(MciPciePerReadV2, state, 40, 4);
FIELD_AT(MciPciePerReadV2, rxMin, 52, 4);
FIELD_AT(MciPciePerReadV2, rxMean, 56, 4);
FIELD_AT(MciPciePerReadV2, rxMax, 60, 4);
FIELD_AT(MciPciePerReadV2, txMin, 64, 4);
FIELD_AT(MciPciePerReadV2, txMean, 68, 4);
FIELD_AT(MciPciePerReadV2, txMax, 72, 4);
FIELD_AT(MciPciePerReadV2, samples, 92, 4);

CALL_IS(MciPciePerStopV1, 28, 1, 24);
FIELD_AT(MciPciePerStopV1, sessionId, 0, 4);
FIELD_AT(MciPciePerStopV1, samples, 4, 4);

CALL_IS(MciGetPciSlotInfoV1, 31, 1, 60);
FIELD_AT(MciGetPciSlotInfoV1, slotNumber, 0, 4);
FIELD_AT(MciGetPciSlotInfoV1, slotName, 4, 40);

CALL_IS(MciPcieReplayCounterV1, 35, 1, 32);
FIELD_AT(MciPcieReplayCounterV1, replays, 0, 8);

CALL_IS(MciQueryPcieBar2MemInfoV0, 74, 0, 56);
FIELD_AT(MciQueryPcieBar2MemInfoV0, total, 0, 8);
FIELD_AT(MciQueryPcieBar2MemInfoV0, used, 8, 8);
FIELD_AT(MciQueryPcieBar2MemInfoV0, free, 16, 8);

CALL_IS(MciGetSablinkSpecV2, 17, 2, 28);
FIELD_AT(MciGetSablinkSpecV2, linkCount, 0, 4);
FIELD_AT(MciGetSablinkSpecV2, linkSpeed, 4, 4);
FIELD_AT(MciGetSablinkSpecV2, version, 8, 4);

CALL_IS(MciGetSablinkCapStatusV2, 18, 2, 28);
FIELD_AT(MciGetSablinkCapStatusV2, link, 0, 4);
FIELD_AT(MciGetSablinkCapStatusV2, capability, 4, 4);
FIELD_AT(MciGetSablinkCapStatusV2, status, 8, 4);

CALL_IS(MciGetSablinkStateV2, 19, 2, 24);
FIELD_AT(MciGetSablinkStateV2, link, 0, 4);
FIELD_AT(MciGetSablinkStateV2, state, 4, 4);

CALL_IS(MciGetSablinkErrCntV3, 20, 3, 32);
FIELD_AT(MciGetSablinkErrCntV3, link, 0, 4);
FIELD_AT(MciGetSablinkErrCntV3, kind, 4, 4);
FIELD_AT(MciGetSablinkErrCntV3, value, 8, 8);

CALL_IS(MciResetSablinkErrConfV2, 21, 2, 20);
FIELD_AT(MciResetSablinkErrConfV2, link, 0, 4);

CALL_IS(MciGetSablinkLayoutV2, 22, 2, 406);
FIELD_AT(MciGetSablinkLayoutV2, count, 0, 4);
FIELD_AT(MciGetSablinkLayoutV2, peer, 4, 2);
ROWS_AT(MciGetSablinkLayoutV2, rows, 6, 48, 8);
FIELD_AT(MciSablinkLayoutRow, localPort, 0, 4);
FIELD_AT(MciSablinkLayoutRow, remotePort, 4, 4);

CALL_IS(MciGetSablinkRemoteDevV2, 23, 2, 34);
FIELD_AT(MciGetSablinkRemoteDevV2, link, 0, 4);
FIELD_AT(MciGetSablinkRemoteDevV2, remoteSbdf, 4, 8);
FIELD_AT(MciGetSablinkRemoteDevV2, remoteLink, 12, 4);
FIELD_AT(MciGetSablinkRemoteDevV2, remoteMiscId, 16, 2);

CALL_IS(MciGetSablinkShortestPathsV2, 24, 2, 854);
FIELD_AT(MciGetSablinkShortestPathsV2, count, 0, 4);
FIELD_AT(MciGetSablinkShortestPathsV2, peer, 4, 2);
ROWS_AT(MciGetSablinkShortestPathsV2, rows, 6, 16, 52);
FIELD_AT(MciSablinkPathRow, deviceCount, 0, 4);
FIELD_AT(MciSablinkPathRow, miscIds, 4, 48);

CALL_IS(MciSablinkPerfStartV1, 36, 1, 28);
FIELD_AT(MciSablinkPerfStartV1, link, 0, 4);
FIELD_AT(MciSablinkPerfStartV1, sessionId, 4, 4);
FIELD_AT(MciSablinkPerfStartV1, actualInterval, 8, 4);

CALL_IS(MciSablinkPerfReadV1, 37, 1, 60);
FIELD_AT(MciSablinkPerfReadV1, rxBytes, 8, 8);
FIELD_AT(MciSablinkPerfReadV1, txBytes, 16, 8);
FIELD_AT(MciSablinkPerfReadV1, rxRate, 24, 8);
FIELD_AT(MciSablinkPerfReadV1, txRate, 32, 8);
FIELD_AT(MciSablinkPerfReadV1, samples, 40, 4);
FIELD_AT(MciSablinkPerfReadV1, selector, 48, 8);

CALL_IS(MciSablinkPerfStopV1, 38, 1, 28);
FIELD_AT(MciSablinkPerfStopV1, samples, 8, 4);
FIELD_AT(MciSablinkPerfStopV1, selector, 16, 8);

CALL_IS(MciGetSablinkSerdesStatusV1, 39, 1, 84);
FIELD_AT(MciGetSablinkSerdesStatusV1, laneCount, 0, 4);
FIELD_AT(MciGetSablinkSerdesStatusV1, link, 4, 4);
ROWS_AT(MciGetSablinkSerdesStatusV1, rows, 4, 4, 16);
FIELD_AT(MciSablinkLaneRow, state, 0, 4);
FIELD_AT(MciSablinkLaneRow, eyeWidth, 4, 4);
FIELD_AT(MciSablinkLaneRow, eyeHeight, 8, 4);
FIELD_AT(MciSablinkLaneRow, bitErrors, 12, 4);

}  // namespace kelp::linux_
