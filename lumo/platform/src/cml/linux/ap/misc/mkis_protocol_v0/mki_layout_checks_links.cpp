#include "linux/ap/misc/layout_check.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_pcie_records.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_sablink_records.h"

// The driver's tables of PCI Express and Sablink, transcribed a second time.

namespace kelp::linux_ {

CALL_IS(MkiGetPciConfigSpaceV0, 6, 0, 264);
REQUEST_IS(MkiGetPciConfigSpaceV0, 0x81084DA9, 264);
FIELD_AT(MkiGetPciConfigSpaceV0, configSpace, 0, 264);

CALL_IS(MkiGetP2pStatusV0, 7, 0, 48);
REQUEST_IS(MkiGetP2pStatusV0, 0x80304DAB, 48);
FIELD_AT(MkiGetP2pStatusV0, peer, 0, 4);
FIELD_AT(MkiGetP2pStatusV0, capability, 4, 4);
FIELD_AT(MkiGetP2pStatusV0, status, 8, 4);

CALL_IS(MkiPciePerStartV0, 26, 0, 8);
REQUEST_IS(MkiPciePerStartV0, 0xC0084DC0, 8);
FIELD_AT(MkiPciePerStartV0, interval, 0, 4);
FIELD_AT(MkiPciePerStartV0, sessionId, 4, 4);
CALL_IS(MkiPciePerStartV1, 26, 1, 12);
REQUEST_IS(MkiPciePerStartV1, 0xC00C4DC0, 12);
FIELD_AT(MkiPciePerStartV1, interval, 0, 4);
FIELD_AT(MkiPciePerStartV1, sessionId, 4, 4);
FIELD_AT(MkiPciePerStartV1, actualInterval, 8, 4);

CALL_IS(MkiPciePerReadV0, 27, 0, 64);
REQUEST_IS(MkiPciePerReadV0, 0xC0404DC1, 64);
FIELD_AT(MkiPciePerReadV0, sessionId, 4, 4);
FIELD_AT(MkiPciePerReadV0, rxBytes, 8, 8);
FIELD_AT(MkiPciePerReadV0, txBytes, 16, 8);
FIELD_AT(MkiPciePerReadV0, rxRate, 24, 8);
FIELD_AT(MkiPciePerReadV0, txRate, 32, 8);
FIELD_AT(MkiPciePerReadV0, state, 40, 4);
FIELD_AT(MkiPciePerReadV0, rxMin, 52, 4);
FIELD_AT(MkiPciePerReadV0, rxMean, 56, 4);
FIELD_AT(MkiPciePerReadV0, rxMax, 60, 4);
CALL_IS(MkiPciePerReadV1, 27, 1, 104);
REQUEST_IS(MkiPciePerReadV1, 0xC0684DC1, 104);
FIELD_AT(MkiPciePerReadV1, sessionId, 4, 4);
FIELD_AT(MkiPciePerReadV1, rxBytes, 8, 8);
FIELD_AT(MkiPciePerReadV1, txBytes, 16, 8);
FIELD_AT(MkiPciePerReadV1, rxRate, 24, 8);
FIELD_AT(MkiPciePerReadV1, txRate, 32, 8);
FIELD_AT(MkiPciePerReadV1, state, 40, 4);
FIELD_AT(MkiPciePerReadV1, rxMin, 52, 4);
FIELD_AT(MkiPciePerReadV1, rxMean, 56, 4);
FIELD_AT(MkiPciePerReadV1, rxMax, 60, 4);
FIELD_AT(MkiPciePerReadV1, txMin, 64, 4);
FIELD_AT(MkiPciePerReadV1, txMean, 68, 4);
FIELD_AT(MkiPciePerReadV1, txMax, 72, 4);
FIELD_AT(MkiPciePerReadV1, samples, 92, 4);

CALL_IS(MkiPciePerStopV0, 28, 0, 8);
REQUEST_IS(MkiPciePerStopV0, 0xC0084DC2, 8);
FIELD_AT(MkiPciePerStopV0, sessionId, 0, 4);
FIELD_AT(MkiPciePerStopV0, samples, 4, 4);

CALL_IS(MkiGetPciSlotInfoV0, 31, 0, 64);
REQUEST_IS(MkiGetPciSlotInfoV0, 0x80404DAA, 64);
FIELD_AT(MkiGetPciSlotInfoV0, slotNumber, 0, 4);
FIELD_AT(MkiGetPciSlotInfoV0, slotName, 4, 40);

CALL_IS(MkiPcieReplayCounterV0, 35, 0, 32);
REQUEST_IS(MkiPcieReplayCounterV0, 0x80204DE0, 32);
FIELD_AT(MkiPcieReplayCounterV0, replays, 0, 8);

CALL_IS(MkiGetSablinkSpecV1, 17, 1, 12);
REQUEST_IS(MkiGetSablinkSpecV1, 0x800C4DC0, 12);
FIELD_AT(MkiGetSablinkSpecV1, linkCount, 0, 4);
FIELD_AT(MkiGetSablinkSpecV1, linkSpeed, 4, 4);
FIELD_AT(MkiGetSablinkSpecV1, version, 8, 4);

CALL_IS(MkiGetSablinkCapStatusV1, 18, 1, 12);
REQUEST_IS(MkiGetSablinkCapStatusV1, 0x800C4DC1, 12);
FIELD_AT(MkiGetSablinkCapStatusV1, link, 0, 4);
FIELD_AT(MkiGetSablinkCapStatusV1, capability, 4, 4);
FIELD_AT(MkiGetSablinkCapStatusV1, status, 8, 4);

CALL_IS(MkiGetSablinkStateV1, 19, 1, 8);
REQUEST_IS(MkiGetSablinkStateV1, 0x80084DC2, 8);
FIELD_AT(MkiGetSablinkStateV1, link, 0, 4);
FIELD_AT(MkiGetSablinkStateV1, state, 4, 4);

CALL_IS(MkiGetSablinkErrCntV1, 20, 1, 16);
REQUEST_IS(MkiGetSablinkErrCntV1, 0x80104DC3, 16);
FIELD_AT(MkiGetSablinkErrCntV1, link, 0, 4);
FIELD_AT(MkiGetSablinkErrCntV1, kind, 4, 4);
FIELD_AT(MkiGetSablinkErrCntV1, value, 8, 8);
CALL_IS(MkiGetSablinkErrCntV2, 20, 2, 16);
REQUEST_IS(MkiGetSablinkErrCntV2, 0x80104DC3, 16);
FIELD_AT(MkiGetSablinkErrCntV2, link, 0, 4);
FIELD_AT(MkiGetSablinkErrCntV2, kind, 4, 4);
FIELD_AT(MkiGetSablinkErrCntV2, value, 8, 8);

CALL_IS(MkiResetSablinkErrConfV1, 21, 1, 4);
REQUEST_IS(MkiResetSablinkErrConfV1, 0x40044DC4, 4);
FIELD_AT(MkiResetSablinkErrConfV1, link, 0, 4);

CALL_IS(MkiGetSablinkLayoutV1, 22, 1, 136);
REQUEST_IS(MkiGetSablinkLayoutV1, 0x80884DC5, 136);
FIELD_AT(MkiGetSablinkLayoutV1, count, 0, 4);
FIELD_AT(MkiGetSablinkLayoutV1, peer, 4, 4);
ROWS_AT(MkiGetSablinkLayoutV1, rows, 8, 16, 8);
FIELD_AT(MkiSablinkLayoutRow, localPort, 0, 4);
FIELD_AT(MkiSablinkLayoutRow, remotePort, 4, 4);

CALL_IS(MkiGetSablinkRemoteDevV1, 23, 1, 36);
REQUEST_IS(MkiGetSablinkRemoteDevV1, 0x80244DC6, 36);
FIELD_AT(MkiGetSablinkRemoteDevV1, link, 0, 4);
FIELD_AT(MkiGetSablinkRemoteDevV1, remoteSbdf, 4, 8);
FIELD_AT(MkiGetSablinkRemoteDevV1, remoteLink, 12, 4);
FIELD_AT(MkiGetSablinkRemoteDevV1, remoteMiscId, 16, 2);

CALL_IS(MkiGetSablinkShortestPathsV1, 24, 1, 1096);
REQUEST_IS(MkiGetSablinkShortestPathsV1, 0x84484DC7, 1096);
FIELD_AT(MkiGetSablinkShortestPathsV1, count, 0, 4);
FIELD_AT(MkiGetSablinkShortestPathsV1, peer, 4, 4);
ROWS_AT(MkiGetSablinkShortestPathsV1, rows, 8, 16, 68);
FIELD_AT(MkiSablinkPathRow, deviceCount, 0, 4);
ROWS_AT(MkiSablinkPathRow, miscIds, 4, 16, 4);

CALL_IS(MkiSablinkPerfStartV0, 36, 0, 12);
REQUEST_IS(MkiSablinkPerfStartV0, 0xC00C4DC8, 12);
FIELD_AT(MkiSablinkPerfStartV0, link, 0, 4);
FIELD_AT(MkiSablinkPerfStartV0, sessionId, 4, 4);
FIELD_AT(MkiSablinkPerfStartV0, actualInterval, 8, 4);

CALL_IS(MkiSablinkPerfReadV0, 37, 0, 48);
REQUEST_IS(MkiSablinkPerfReadV0, 0xC0304DC9, 48);
FIELD_AT(MkiSablinkPerfReadV0, selector, 0, 8);
FIELD_AT(MkiSablinkPerfReadV0, rxBytes, 8, 8);
FIELD_AT(MkiSablinkPerfReadV0, txBytes, 16, 8);
FIELD_AT(MkiSablinkPerfReadV0, rxRate, 24, 8);
FIELD_AT(MkiSablinkPerfReadV0, txRate, 32, 8);
FIELD_AT(MkiSablinkPerfReadV0, samples, 40, 4);

CALL_IS(MkiSablinkPerfStopV0, 38, 0, 12);
REQUEST_IS(MkiSablinkPerfStopV0, 0xC00C4DCA, 12);
FIELD_AT(MkiSablinkPerfStopV0, selector, 0, 8);
FIELD_AT(MkiSablinkPerfStopV0, samples, 8, 4);

CALL_IS(MkiGetSablinkSerdesStatusV0, 39, 0, 68);
REQUEST_IS(MkiGetSablinkSerdesStatusV0, 0xC0444DCB, 68);
FIELD_AT(MkiGetSablinkSerdesStatusV0, laneCount, 0, 4);
FIELD_AT(MkiGetSablinkSerdesStatusV0, link, 4, 4);
ROWS_AT(MkiGetSablinkSerdesStatusV0, rows, 4, 4, 16);
FIELD_AT(MkiSablinkLaneRow, state, 0, 4);
FIELD_AT(MkiSablinkLaneRow, eyeWidth, 4, 4);
FIELD_AT(MkiSablinkLaneRow, eyeHeight, 8, 4);
FIELD_AT(MkiSablinkLaneRow, bitErrors, 12, 4);

}  // namespace kelp::linux_
