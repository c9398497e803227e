#include "sim_actions.h"
#include "sim_board.h"
#include "sim_record_rows.h"

// ---- fields that records share

static const SimField statusFields[] = {
    OUT(0, 4, UTILIZATION), OUT(4, 4, ENGINE0),      OUT(8, 4, ENGINE1),       OUT(12, 4, ENGINE2),
    OUT(16, 4, ENGINE3),    OUT(20, 4, MEMORY_BUSY), OUT(40, 4, CORE_AVERAGE), OUT(24, 4, CORE_MAX),
};
enum { kStatusFieldsBeforeCoreMax = 7 };

static const SimField memoryFields[] = {
    OUT(0, 8, MEMORY_TOTAL),    OUT(8, 8, MEMORY_USED),     OUT(16, 8, MEMORY_REGION0),
    OUT(24, 8, MEMORY_REGION1), OUT(32, 8, MEMORY_REGION2),
};
static const SimField memoryFieldsOld[] = {
    OUT(0, 8, MEMORY_TOTAL),    OUT(8, 8, MEMORY_USED),     OUT(16, 8, MEMORY_REGION0),
    OUT(24, 8, MEMORY_REGION1), OUT(32, 8, MEMORY_REGION2), OUT(40, 8, MEMORY_REGION3),
    OUT(48, 8, SYSTEM_TOTAL),   OUT(56, 8, GUEST_RESERVED),
};

static const SimField processRow[] = {
    OUT(0, 8, PROCESS_GPU_MEMORY),
    OUT(8, 8, PROCESS_SYSTEM_MEMORY),
    OUT(16, 4, PROCESS_KIND),
    OUT(20, 4, PROCESS_PID),
};
ROWS(processRows3, 0, 4, PROCESS_COUNT, 8, 92, 80, processRow);
ROWS(processRowsOld0, 0, 4, PROCESS_COUNT, 8, 184, 80, processRow);
ROWS(processRowsOld1, 0, 4, PROCESS_COUNT, 8, 192, 80, processRow);
ROWS(processRowsOld2, 0, 4, PROCESS_COUNT, 16, 112, 80, processRow);

static const SimField configSpaceFields[] = {OUT_BYTES(0, 264, CONFIG_SPACE)};

static const SimField p2pFields[] = {IN_KEY(0, 4), IN_KEY(4, 4), OUT(8, 4, P2P_STATUS)};

static const SimField descriptionFields[] = {
    OUT(0, 2, MISC_ID),      OUT(2, 2, CORE_COUNT),   OUT(4, 8, CORE_MASK),
    OUT(16, 4, DEVICE_TYPE), OUT(20, 4, MPC_CAPABLE), OUT(24, 4, SABLINK_CAPABLE),
    OUT(28, 2, CARD_ID),     OUT(30, 2, RENDER_ID),   OUT_OPTIONAL(32, 2, PARENT_MISC_ID),
    OUT(34, 8, ADDRESS),     OUT(42, 2, ION_ID),
};
enum { kDescriptionFieldsBeforeIon = 10 };

static const SimField profileRow[] = {
    OUT(0, 2, PROFILE_ID),
    OUT_BYTES(2, 32, PROFILE_NAME),
    OUT(34, 2, PROFILE_CORES),
    OUT(36, 8, PROFILE_MEMORY),
};
ROWS(profileRows, 0, 4, PROFILE_COUNT, 4, 60, 32, profileRow);
ROWS(profileRowsOld, 0, 4, PROFILE_COUNT, 4, 50, 32, profileRow);

static const SimField configurationRow[] = {
    OUT(0, 2, CONFIGURATION_ID),
    OUT_BYTES(2, 32, CONFIGURATION_NAME),
    OUT(34, 4, CONFIGURATION_SIZE),
    OUT_ARRAY(38, 2, 32, CONFIGURATION_PROFILES),
};
ROWS(configurationRows, 0, 4, CONFIGURATION_COUNT, 4, 118, 32, configurationRow);
ROWS(configurationRowsOld, 0, 4, CONFIGURATION_COUNT, 4, 102, 32, configurationRow);

static const SimField instanceRow[] = {OUT(0, 2, INSTANCE_MISC_ID), OUT(2, 2, INSTANCE_INDEX)};
ROWS(instanceRows, 0, 2, INSTANCE_COUNT, 2, 4, 17, instanceRow);

static const SimField parentFields[] = {OUT(0, 2, PARENT_MISC_ID)};

static const SimField ownProfileFields[] = {
    OUT(0, 2, OWN_PROFILE_ID),
    OUT_BYTES(2, 32, OWN_PROFILE_NAME),
    OUT(34, 2, OWN_PROFILE_CORES),
    OUT(36, 8, OWN_PROFILE_MEMORY),
};

static const SimField currentFields[] = {
    OUT(0, 2, CURRENT_ID),
    OUT_BYTES(2, 32, CURRENT_NAME),
    OUT(34, 4, CURRENT_SIZE),
    OUT_ARRAY(38, 2, 32, CURRENT_PROFILES),
};
enum { kCurrentFieldsOfOldRecord = 1 };

static const SimField sablinkSpecFields[] = {OUT(0, 4, SABLINK_LINKS), OUT(4, 4, SABLINK_SPEED),
                                             OUT(8, 4, SABLINK_VERSION)};
static const SimField sablinkCapabilityFields[] = {IN_KEY(0, 4), IN_KEY(4, 4), OUT(8, 4, SABLINK_CAPABILITY)};
static const SimField sablinkStateFields[] = {IN_KEY(0, 4), OUT(4, 4, SABLINK_STATE)};
static const SimField sablinkErrorFields[] = {IN_KEY(0, 4), IN_KEY(4, 4), OUT(8, 8, SABLINK_ERRORS)};

static const SimField peerFields[] = {IN_KEY(4, 2)};
static const SimField peerFieldsOld[] = {IN_KEY(4, 4)};
static const SimField layoutRow[] = {OUT(0, 4, SABLINK_LOCAL_PORT), OUT(4, 4, SABLINK_REMOTE_PORT)};
ROWS(layoutRows, 0, 4, SABLINK_LAYOUT_COUNT, 6, 8, 48, layoutRow);
ROWS(layoutRowsOld, 0, 4, SABLINK_LAYOUT_COUNT, 8, 8, 16, layoutRow);

static const SimField remoteDeviceFields[] = {
    IN_KEY(0, 4),
    OUT(4, 8, SABLINK_REMOTE_ADDRESS),
    OUT(12, 4, SABLINK_REMOTE_LINK),
    OUT(16, 2, SABLINK_REMOTE_MISC_ID),
};

static const SimField pathRow[] = {OUT(0, 4, SABLINK_PATH_LENGTH), OUT_ARRAY(4, 2, 24, SABLINK_PATH_DEVICES)};
static const SimField pathRowOld[] = {OUT(0, 4, SABLINK_PATH_LENGTH),
                                      OUT_ARRAY(4, 4, 16, SABLINK_PATH_DEVICES)};
ROWS(pathRows, 0, 4, SABLINK_PATH_COUNT, 6, 52, 16, pathRow);
ROWS(pathRowsOld, 0, 4, SABLINK_PATH_COUNT, 8, 68, 16, pathRowOld);

static const SimField serdesFields[] = {IN_CONSTANT(0, 4, 4), IN_KEY(4, 4)};
static const SimField serdesRow[] = {
    OUT(0, 4, SERDES_STATE),
    OUT(4, 4, SERDES_EYE_WIDTH),
    OUT(8, 4, SERDES_EYE_HEIGHT),
    OUT(12, 4, SERDES_BIT_ERRORS),
};
ROWS(serdesRows, 0, 4, SERDES_LANES, 4, 16, 4, serdesRow);

static const SimField slotFields[] = {OUT(0, 4, SLOT_NUMBER), OUT_BYTES(4, 40, SLOT_NAME)};
static const SimField infoRomFields[] = {OUT_BYTES(0, 64, SERIAL_NUMBER), OUT_BYTES(64, 64, BRAND)};

static const SimField vgpuUtilizationFields[] = {IN_KEY(0, 4), OUT(4, 4, VGPU_UTILIZATION)};
static const SimField vgpuMemoryFields[] = {IN_KEY(0, 4), OUT(4, 8, VGPU_MEMORY_TOTAL),
                                            OUT(12, 8, VGPU_MEMORY_USED)};

static const SimField replayFields[] = {OUT(0, 8, PCIE_REPLAYS)};

static const SimField retiredCountFields[] = {OUT_AS(0, 4, RETIRED_COUNT, 0), OUT_AS(4, 4, RETIRED_COUNT, 1)};
// The fields that select lie where the row has bytes that nobody reads.
static const SimField retiredPageFields[] = {
    IN_KEY(24, 4),
    IN_KEY(28, 4),
    OUT(0, 8, RETIRED_COUNT),
    OUT_OPTIONAL(8, 8, RETIRED_ADDRESS),
    OUT_OPTIONAL(16, 8, RETIRED_TIMESTAMP),
    OUT_OPTIONAL(36, 4, RETIRED_CAUSE),
    OUT_OPTIONAL(40, 8, RETIRED_LOCATION),
    OUT_OPTIONAL(48, 8, RETIRED_ERRORS),
};
static const SimField retiringPageFields[] = {
    IN_KEY(24, 4),
    OUT(0, 8, RETIRING_COUNT),
    OUT_OPTIONAL(8, 8, RETIRING_ADDRESS),
    OUT_OPTIONAL(16, 8, RETIRING_TIMESTAMP),
    OUT_OPTIONAL(28, 4, RETIRING_CAUSE),
    OUT_OPTIONAL(32, 8, RETIRING_LOCATION),
    OUT_OPTIONAL(40, 8, RETIRING_ERRORS),
    OUT_OPTIONAL(48, 8, RETIRING_LAST_ERROR),
};

static const SimField eccModeFields[] = {OUT(0, 4, ECC_CURRENT), OUT(4, 1, ECC_PENDING)};
static const SimField setEccModeFields[] = {IN_STORE(0, 4, ECC_PENDING, 1)};

// ---- fields of protocol 1 alone

static const SimField clockFields[] = {IN_KEY(0, 4), OUT(4, 8, CLOCK)};
static const SimField firmwareFields[] = {OUT_ARRAY(0, 4, 6, FIRMWARE)};
static const SimField fanCountFields[] = {OUT(0, 4, FAN_COUNT)};
static const SimField fanSpeedFields[] = {IN_KEY(16, 4), IN_KEY(20, 4), OUT(8, 4, FAN_SPEED)};
static const SimField powerFields[] = {IN_KEY(0, 4), OUT(4, 4, POWER)};
static const SimField temperatureFields[] = {IN_KEY(0, 4), OUT(4, 4, TEMPERATURE)};
static const SimField memorySpecFields[] = {
    OUT(0, 8, MEMORY_CLOCK_MAX),          OUT_BITS(9, 1, MEMORY_TYPE, 0, 4),
    OUT_BITS(9, 1, MEMORY_VENDOR, 4, 4),  OUT_BITS(14, 2, CHANNEL_COUNT, 0, 8),
    OUT_BITS(14, 2, CHANNEL_WIDTH, 8, 8),
};
static const SimField gpuSpecFields1[] = {
    OUT(0, 1, CORE_COUNT),
    OUT(1, 1, CLUSTER_COUNT),
    OUT_ARRAY(2, 1, 1, UNITS_PER_CORE),
    OUT(3, 2, CORE_CLOCK_MAX),
};
static const SimField gpuSpecFields2[] = {OUT_ARRAY(2, 1, 16, UNITS_PER_CORE)};
static const SimField displayRow[] = {
    OUT(0, 1, DISPLAY_TYPE),
    OUT(1, 4, DISPLAY_H_RES),
    OUT(5, 4, DISPLAY_V_RES),
    OUT(9, 4, DISPLAY_PIXEL_CLOCK),
};
ROWS(displayRows, 0, 2, DISPLAY_COUNT, 2, 17, 8, displayRow);
static const SimField efuseFields[] = {IN_LIMIT(4, 4, 1024), OUT(0, 4, EFUSE_START), OUT(4, 4, EFUSE_BITS),
                                       OUT_ARRAY(8, 4, 32, EFUSE_WORDS)};
static const SimField memoryTemperatureFields1[] = {OUT(0, 4, MEMORY_TEMPERATURE),
                                                    OUT(8, 8, MEMORY_CHANNEL_MASK)};
static const SimField memoryTemperatureFields2[] = {OUT(0, 4, MEMORY_TEMPERATURE)};
static const SimField edcRow[] = {
    OUT(0, 4, EDC_READ_ERRORS),
    OUT(4, 4, EDC_WRITE_ERRORS),
    OUT(8, 4, EDC_READ_RETRIES),
    OUT(12, 4, EDC_WRITE_RETRIES),
};
ROWS(edcRows, 0, 4, EDC_CHANNELS, 4, 16, 24, edcRow);
static const SimField edcTotalFields[] = {OUT_ARRAY(0, 4, 4, EDC_TOTAL)};
static const SimField voltageFields[] = {IN_KEY(0, 4), OUT(4, 4, VOLTAGE)};
static const SimField temperatureLimitFields[] = {OUT_SIGNED(8, 4, TEMPERATURE_SLOWDOWN),
                                                  OUT_SIGNED(12, 4, TEMPERATURE_SHUTDOWN)};
static const SimField pstateFields[] = {OUT(0, 4, PSTATE)};
static const SimField setPstateFields[] = {IN_STORE(0, 4, PSTATE, 15)};
static const SimField eccErrorFields[] = {IN_KEY(0, 4), IN_KEY(4, 4), IN_KEY(8, 4), OUT(12, 8, ECC_ERRORS)};
static const SimField nameFields[] = {OUT_BYTES(0, 48, NAME)};
static const SimField powerLimitFields[] = {IN_KEY(0, 4), OUT(4, 4, POWER_LIMIT)};
static const SimField slowdownFields[] = {OUT(0, 4, SLOWDOWN_COUNT), OUT(4, 4, SLOWDOWN_TIME)};
static const SimField bar2Fields[] = {OUT(0, 8, BAR2_TOTAL), OUT(8, 8, BAR2_USED), OUT(16, 8, BAR2_FREE)};
static const SimField overcommitFields[] = {IN_KEY(0, 4), OUT(4, 4, OVERCOMMIT),
                                            OUT(8, 4, OVERCOMMIT_MEMORY)};
// What is asked of a setter is the action's to look at.
static const SimField powerSetFields0[] = {IN_KEY(0, 4)};
static const SimField powerSetFields1[] = {IN_KEY(0, 4), IN_KEY(4, 4)};
static const SimField setConfigurationFields[] = {IN_KEY(0, 2)};
static const SimField switchMpcFields[] = {IN_KEY(0, 1)};
static const SimField linkFields[] = {IN_KEY(0, 4)};
static const SimField clearEccFields[] = {IN_KEY(0, 4)};
static const SimField clearCountsFields[] = {IN_KEY(16, 4), IN_KEY(20, 4)};
static const SimField clearCountsFieldsOld[] = {IN_KEY(0, 4), IN_KEY(4, 4)};

// ---- fields of measurements

static const SimField pcieStartFields[] = {IN_KEY(0, 4)};
static const SimField pcieReadFields[] = {
    IN_KEY(4, 4),
    OUT(24, 8, PCIE_RX_RATE),
    OUT(32, 8, PCIE_TX_RATE),
    OUT(40, 4, PCIE_PERF_STATE),
    OUT(52, 4, PCIE_RX_MIN),
    OUT(56, 4, PCIE_RX_MEAN),
    OUT(60, 4, PCIE_RX_MAX),
    OUT(64, 4, PCIE_TX_MIN),
    OUT(68, 4, PCIE_TX_MEAN),
    OUT(72, 4, PCIE_TX_MAX),
};
enum { kPcieReadFieldsToRxMax = 7 };
static const SimField pcieStopFields[] = {IN_KEY(0, 4)};
static const SimField sablinkReadFields[] = {
    IN_KEY(48, 4),
    IN_KEY(52, 4),
    OUT(24, 8, SABLINK_RX_RATE),
    OUT(32, 8, SABLINK_TX_RATE),
};
static const SimField sablinkReadFieldsOld[] = {
    IN_KEY(0, 4),
    IN_KEY(4, 4),
    OUT(24, 8, SABLINK_RX_RATE),
    OUT(32, 8, SABLINK_TX_RATE),
};
static const SimField sablinkStopFields[] = {IN_KEY(16, 4), IN_KEY(20, 4)};
static const SimField sablinkStopFieldsOld[] = {IN_KEY(0, 4), IN_KEY(4, 4)};

// A sample is asked for and fetched; version 1 knows no environment.
static const SimField sampleFields1[] = {IN_KEY(0, 4)};
static const SimField sampleFields2[] = {IN_KEY(0, 4), IN_KEY(4, 4)};
static const SimRows sampleRows = {.countOffset = 36, .countWidth = 4, .base = 40, .stride = 60, .max = 80};
static const SimRows sampleRowsOld = {
    .countOffset = 36, .countWidth = 4, .base = 48, .stride = 40, .max = 80};

// ---- records

// Interface, version, payload bytes, nodes that answer, what the device needs, fields.
static const SimRecord records1[] = {
    RECORD1_FIRST(2, 2, 92, kAny, 0, statusFields, kStatusFieldsBeforeCoreMax),
    RECORD1(2, 3, 92, kAny, 0, statusFields),
    RECORD1(3, 1, 72, kAny, 0, memoryFields),
    LIST1(4, 3, 7384, kAny, 0, processRows3),
    RECORD1(6, 1, 272, kAny, 0, configSpaceFields),
    RECORD1(7, 1, 28, kAny, SIM_NEEDS_PEER, p2pFields),
    RECORD1(8, 1, 60, kAny, 0, descriptionFields),
    RECORD1(8, 2, 60, kAny, 0, descriptionFields),
    LIST1(9, 1, 1940, kParent, 0, profileRows),
    LIST1(10, 1, 3796, kParent, 0, configurationRows),
    LIST1(11, 1, 86, kParent, 0, instanceRows),
    ACTION1(12, 1, 18, kParent, 0, setConfigurationFields, simSetConfiguration),
    RECORD1(13, 1, 18, kInstance, 0, parentFields),
    RECORD1(14, 1, 60, kInstance, 0, ownProfileFields),
    ACTION1(15, 1, 17, kPlain | kParent, 0, switchMpcFields, simSwitchMpc),
    RECORD1(16, 1, 118, kParent, 0, currentFields),
    RECORD1(17, 2, 28, kAny, kSablink, sablinkSpecFields),
    RECORD1(18, 2, 28, kAny, kLink, sablinkCapabilityFields),
    RECORD1(19, 2, 24, kAny, kLink, sablinkStateFields),
    RECORD1(20, 3, 32, kAny, kLink, sablinkErrorFields),
    ACTION1(21, 2, 20, kAny, kLink, linkFields, simResetLink),
    LIST1_OF(22, 2, 406, kAny, kPeer, peerFields, layoutRows),
    RECORD1(23, 2, 34, kAny, kLink, remoteDeviceFields),
    LIST1_OF(24, 2, 854, kAny, kPeer, peerFields, pathRows),
    ACTION1(26, 2, 28, kAny, 0, pcieStartFields, simStartPcie),
    ACTION1(27, 2, 112, kAny, 0, pcieReadFields, simReadPcie),
    ACTION1(28, 1, 24, kAny, 0, pcieStopFields, simStopPcie),
    ACTION1_BARE(29, 1, 20, kAny, 0, simResetGpu),
    ACTION1_ROWS(30, 1, 4856, kAny, SIM_OWN_ROWS, sampleFields1, sampleRows, simSampleProcesses),
    ACTION1_ROWS(30, 2, 4856, kAny, SIM_OWN_ROWS, sampleFields2, sampleRows, simSampleProcesses),
    RECORD1(31, 1, 60, kAny, 0, slotFields),
    RECORD1(32, 1, 256, kAny, 0, infoRomFields),
    RECORD1(33, 1, 24, kAny, SIM_NEEDS_KEY, vgpuUtilizationFields),
    RECORD1(34, 1, 36, kAny, SIM_NEEDS_KEY, vgpuMemoryFields),
    RECORD1(35, 1, 32, kAny, 0, replayFields),
    ACTION1(36, 1, 28, kAny, kLink, linkFields, simStartSablink),
    ACTION1(37, 1, 60, kAny, kLink, sablinkReadFields, simReadSablink),
    ACTION1(38, 1, 28, kAny, kLink, sablinkStopFields, simStopSablink),
    LIST1_OF(39, 1, 84, kAny, kLink, serdesFields, serdesRows),
    ACTION1_BARE(43, 1, 16, kAny, 0, simDropEvents),
    ACTION1(44, 1, 24, kAny, 0, clearCountsFields, simClearCounts),
    RECORD1(45, 1, 24, kAny, 0, retiredCountFields),
    RECORD1(46, 1, 56, kAny, 0, retiredPageFields),
    RECORD1(47, 1, 56, kAny, 0, retiringPageFields),
    RECORD1(48, 1, 21, kAny, 0, eccModeFields),
    RECORD1(49, 1, 20, kAny, 0, setEccModeFields),
    ACTION1_BARE(50, 1, 16, kAny, 0, simResetDevice),
    RECORD1(51, 1, 28, kAny, 0, clockFields),
    RECORD1(52, 1, 40, kAny, 0, firmwareFields),
    RECORD1(53, 1, 20, kAny, 0, fanCountFields),
    RECORD1(54, 1, 28, kAny, 0, fanSpeedFields),
    RECORD1(55, 1, 24, kAny, 0, powerFields),
    RECORD1(56, 1, 24, kAny, 0, temperatureFields),
    RECORD1(57, 1, 24, kAny, 0, memorySpecFields),
    RECORD1(60, 1, 12, kAny, 0, gpuSpecFields1),
    RECORD1(60, 2, 44, kAny, 0, gpuSpecFields2),
    LIST1(61, 1, 154, kAny, 0, displayRows),
    RECORD1(62, 1, 152, kAny, 0, efuseFields),
    RECORD1(63, 1, 212, kAny, 0, memoryTemperatureFields1),
    RECORD1(63, 2, 20, kAny, 0, memoryTemperatureFields2),
    LIST1(64, 1, 404, kAny, 0, edcRows),
    RECORD1(64, 2, 32, kAny, 0, edcTotalFields),
    RECORD1(65, 1, 24, kAny, 0, voltageFields),
    RECORD1(66, 1, 32, kAny, 0, temperatureLimitFields),
    RECORD1(67, 0, 20, kAny, 0, pstateFields),
    RECORD1(68, 0, 20, kAny, 0, setPstateFields),
    RECORD1(69, 0, 36, kAny, 0, eccErrorFields),
    ACTION1(70, 0, 20, kAny, 0, clearEccFields, simClearEcc),
    RECORD1(71, 0, 64, kAny, 0, nameFields),
    RECORD1(72, 0, 24, kAny, 0, powerLimitFields),
    RECORD1(73, 0, 24, kAny, 0, slowdownFields),
    RECORD1(74, 0, 56, kAny, 0, bar2Fields),
    RECORD1(75, 0, 44, kAny, SIM_NEEDS_KEY, overcommitFields),
    ACTION1(76, 0, 20, kAny, 0, powerSetFields0, simSetPowerLimit),
    ACTION1(76, 1, 20, kAny, 0, powerSetFields1, simSetPowerLimit),
};

// Request, interface, version, bytes, nodes that answer, what the device needs, fields.
static const SimRecord records0[] = {
    RECORD0_FIRST(0xC0484D05, 2, 0, 72, kAny, 0, statusFields, kStatusFieldsBeforeCoreMax),
    RECORD0(0xC0584D05, 2, 1, 88, kAny, 0, statusFields),
    RECORD0(0xC0A04DA6, 3, 0, 160, kAny, 0, memoryFieldsOld),
    LIST0(0xB9884DA7, 4, 0, 14728, kAny, 0, processRowsOld0),
    LIST0(0xBC084DA7, 4, 1, 15368, kAny, 0, processRowsOld1),
    LIST0(0xA3104DA7, 4, 2, 8976, kAny, 0, processRowsOld2),
    RECORD0(0x81084DA9, 6, 0, 264, kAny, 0, configSpaceFields),
    RECORD0(0x80304DAB, 7, 0, 48, kAny, SIM_NEEDS_PEER, p2pFields),
    RECORD0_FIRST(0x802A4DB2, 8, 0, 42, kAny, 0, descriptionFields, kDescriptionFieldsBeforeIon),
    LIST0(0x86444DB3, 9, 0, 1604, kParent, 0, profileRowsOld),
    LIST0(0x8CC44DB4, 10, 0, 3268, kParent, 0, configurationRowsOld),
    LIST0(0x80464DB5, 11, 0, 70, kParent, 0, instanceRows),
    ACTION0(0x40024DB6, 12, 0, 2, kParent, 0, setConfigurationFields, simSetConfiguration),
    RECORD0(0x80024DB7, 13, 0, 2, kInstance, 0, parentFields),
    RECORD0(0x80324DB8, 14, 0, 50, kInstance, 0, ownProfileFields),
    ACTION0(0x40014DB9, 15, 0, 1, kPlain | kParent, 0, switchMpcFields, simSwitchMpc),
    RECORD0_FIRST(0x80024DBA, 16, 0, 2, kParent, 0, currentFields, kCurrentFieldsOfOldRecord),
    RECORD0(0x800C4DC0, 17, 1, 12, kAny, kSablink, sablinkSpecFields),
    RECORD0(0x800C4DC1, 18, 1, 12, kAny, kLink, sablinkCapabilityFields),
    RECORD0(0x80084DC2, 19, 1, 8, kAny, kLink, sablinkStateFields),
    // One record to the driver, of which callers of version 1 know the first kinds alone.
    RECORD0(0x80104DC3, 20, 1, 16, kAny, kLink, sablinkErrorFields),
    RECORD0(0x80104DC3, 20, 2, 16, kAny, kLink, sablinkErrorFields),
    ACTION0(0x40044DC4, 21, 1, 4, kAny, kLink, linkFields, simResetLink),
    LIST0_OF(0x80884DC5, 22, 1, 136, kAny, kPeer, peerFieldsOld, layoutRowsOld),
    RECORD0(0x80244DC6, 23, 1, 36, kAny, kLink, remoteDeviceFields),
    LIST0_OF(0x84484DC7, 24, 1, 1096, kAny, kPeer, peerFieldsOld, pathRowsOld),
    ACTION0(0xC0084DC0, 26, 0, 8, kAny, 0, pcieStartFields, simStartPcie),
    ACTION0(0xC00C4DC0, 26, 1, 12, kAny, 0, pcieStartFields, simStartPcie),
    ACTION0_FIRST(0xC0404DC1, 27, 0, 64, kAny, 0, pcieReadFields, kPcieReadFieldsToRxMax, simReadPcie),
    ACTION0(0xC0684DC1, 27, 1, 104, kAny, 0, pcieReadFields, simReadPcie),
    ACTION0(0xC0084DC2, 28, 0, 8, kAny, 0, pcieStopFields, simStopPcie),
    ACTION0_BARE(0x40044DBB, 29, 0, 4, kAny, 0, simResetGpu),
    ACTION0_ROWS(0x8CB04DBC, 30, 0, 3248, kAny, SIM_OWN_ROWS, sampleFields1, sampleRowsOld,
                 simSampleProcesses),
    RECORD0(0x80404DAA, 31, 0, 64, kAny, 0, slotFields),
    RECORD0(0x80804DAD, 32, 0, 128, kAny, 0, infoRomFields),
    RECORD0(0x80084DD0, 33, 0, 8, kAny, SIM_NEEDS_KEY, vgpuUtilizationFields),
    RECORD0(0x80144DD1, 34, 0, 20, kAny, SIM_NEEDS_KEY, vgpuMemoryFields),
    RECORD0(0x80204DE0, 35, 0, 32, kAny, 0, replayFields),
    ACTION0(0xC00C4DC8, 36, 0, 12, kAny, kLink, linkFields, simStartSablink),
    ACTION0(0xC0304DC9, 37, 0, 48, kAny, kLink, sablinkReadFieldsOld, simReadSablink),
    ACTION0(0xC00C4DCA, 38, 0, 12, kAny, kLink, sablinkStopFieldsOld, simStopSablink),
    LIST0_OF(0xC0444DCB, 39, 0, 68, kAny, kLink, serdesFields, serdesRows),
    ACTION0_BARE(0x40104DE1, 43, 0, 16, kAny, 0, simDropEvents),
    ACTION0(0x40084DBD, 44, 0, 8, kAny, 0, clearCountsFieldsOld, simClearCounts),
    RECORD0(0x80084DE2, 45, 0, 8, kAny, 0, retiredCountFields),
    RECORD0(0x80384DE3, 46, 0, 56, kAny, 0, retiredPageFields),
    RECORD0(0x80384DE4, 47, 0, 56, kAny, 0, retiringPageFields),
    RECORD0(0x80054DE5, 48, 0, 5, kAny, 0, eccModeFields),
    RECORD0(0x40044DE6, 49, 0, 4, kAny, 0, setEccModeFields),
    ACTION0_BARE(0x40044DEA, 50, 0, 4, kAny, 0, simResetDevice),
    {.request = 0x80684DAC,
     .interfaceName = SIM_BOARD_INTERFACE,
     .further = simBoardInterfaces,
     .families = kTor1,
     .size = 104,
     .nodes = kAny,
     .fields = simBoardFields,
     .fieldCount = SIM_BOARD_HEAD_FIELDS,
     .rows = &simBoardRowsShort},
    {.request = 0xC0104D03,
     .further = simBufferInterfaces,
     .size = 16,
     .nodes = kAny,
     .action = simAllocBuffer},
    {.request = 0xC0104D04,
     .further = simBufferInterfaces,
     .size = 16,
     .nodes = kAny,
     .action = simFreeBuffer},
};

const SimRecord* simRecords1(uint32_t* count) {
  *count = COUNT_OF(records1);
  return records1;
}

const SimRecord* simRecords0(uint32_t* count) {
  *count = COUNT_OF(records0);
  return records0;
}

const SimRecord* simFindRecord1(uint32_t interfaceName, uint32_t version) {
  for (uint32_t i = 0; i < COUNT_OF(records1); ++i) {
    if (records1[i].interfaceName == interfaceName && records1[i].version == version) return &records1[i];
  }
  return 0;
}
