#include "command_table.h"

#include "command_access/decoder_sessions_command_access.h"
#include "command_access/ecc_config_command_access.h"
#include "command_access/encoder_sessions_command_access.h"
#include "command_access/event_command_access.h"
#include "command_access/help_command_access.h"
#include "command_access/list_command_access.h"
#include "command_access/metrics_monitor_command_access.h"
#include "command_access/mpc_command_access.h"
#include "command_access/power_limit_command_access.h"
#include "command_access/process_monitor_command_access.h"
#include "command_access/query_command_access.h"
#include "command_access/query_gpu_command_access.h"
#include "command_access/query_gpu_help_command_access.h"
#include "command_access/reset_gpu_command_access.h"
#include "command_access/retired_page_command_access.h"
#include "command_access/sablink_capabilities_command_access.h"
#include "command_access/sablink_err_counter_reset_command_access.h"
#include "command_access/sablink_error_counters_command_access.h"
#include "command_access/sablink_layout_command_access.h"
#include "command_access/sablink_remote_link_info_command_access.h"
#include "command_access/sablink_status_command_access.h"
#include "command_access/tolk_command_access.h"
#include "command_access/topo_command_access.h"
#include "command_access/version_command_access.h"
#include "command_access/vgpu_command_access.h"
#include "value_pattern.h"

namespace tolk {

namespace {

constexpr OptionSpec kListGpus{"-L", "--list-gpus", pattern::kNone};
constexpr OptionSpec kConciseFormat{"-cf", "--concise-format", pattern::kNone};
constexpr OptionSpec kId{"-i", "--id", pattern::kIdList};
constexpr OptionSpec kDebug{"", "--debug", pattern::kText};
constexpr OptionSpec kHelp{"-h", "--help", pattern::kNone};
constexpr OptionSpec kVersionOption{"-v", "--version", pattern::kNone};
constexpr OptionSpec kQuery{"-q", "--query", pattern::kNone};
constexpr OptionSpec kLoop{"-l", "--loop", pattern::kPositive};
constexpr OptionSpec kFilename{"-f", "--filename", pattern::kText};
constexpr OptionSpec kDisplay{"-d", "--display", pattern::kWordList};
constexpr OptionSpec kJson{"", "--json", pattern::kNone};
constexpr OptionSpec kEncoderSessions{"-es", "--encodersessions", pattern::kNone};
constexpr OptionSpec kDecoderSessions{"-ds", "--decodersessions", pattern::kNone};
constexpr OptionSpec kSupport{"-s", "--support", pattern::kNone};
constexpr OptionSpec kCreated{"-c", "--created", pattern::kNone};
constexpr OptionSpec kUtilization{"-u", "--utilization", pattern::kNone};
constexpr OptionSpec kMatrix{"-m", "--matrix", pattern::kNone};
constexpr OptionSpec kMatrixGpu{"-mg", "--matrix-gpu", pattern::kNone};
constexpr OptionSpec kP2pStatus{"-p2p", "--p2pstatus", pattern::kAccess};
constexpr OptionSpec kNearestGpus{"-n", "--nearest-gpus", pattern::kNumber};
constexpr OptionSpec kGpuPath{"-p", "--gpu-path", pattern::kNone};
constexpr OptionSpec kEnable{"-enable", "", pattern::kNone};
constexpr OptionSpec kDisable{"-disable", "", pattern::kNone};
constexpr OptionSpec kListMpcConfig{"-lmc", "--list-mpc-config", pattern::kNone};
constexpr OptionSpec kConfigMpc{"-cm", "--config-mpc", pattern::kNumber};
constexpr OptionSpec kListMpcInstances{"-lmi", "--list-mpc-instances", pattern::kNone};
constexpr OptionSpec kReset{"-r", "--reset", pattern::kNumber};
constexpr OptionSpec kStatus{"-s", "--status", pattern::kNone};
constexpr OptionSpec kCapabilities{"-c", "--capabilities", pattern::kNone};
constexpr OptionSpec kRemoteLinkInfo{"-r", "--remotelinkinfo", pattern::kNone};
constexpr OptionSpec kLink{"-l", "--link", pattern::kNumber};
constexpr OptionSpec kLayout{"-la", "--layout", pattern::kNone};
constexpr OptionSpec kErrorCounters{"-e", "--errorcounters", pattern::kNone};
constexpr OptionSpec kResetErrorCounters{"-re", "--reseterrorcounters", pattern::kNone};
constexpr OptionSpec kProcessMonitor{"-pm", "--process-monitor", pattern::kNone};
constexpr OptionSpec kEccConfig{"-e", "--ecc-config", pattern::kNumber};
constexpr OptionSpec kQueryRetiredPages{"-qrp", "--query-retired-pages", pattern::kFieldList};
constexpr OptionSpec kSearch{"-s", "--search", pattern::kNumber};
constexpr OptionSpec kUuid{"-u", "--uuid", pattern::kUuidList};
constexpr OptionSpec kCount{"-n", "--number", pattern::kNumber};
constexpr OptionSpec kMetricsMonitor{"-mm", "--metrics-monitor", pattern::kMetricList};
constexpr OptionSpec kPowerLimit{"-pl", "--power-limit", pattern::kDecimal};
constexpr OptionSpec kPersistence{"-o", "--option", pattern::kNumber};
constexpr OptionSpec kHelpQueryGpu{"--help-query-gpu", "--help-query-gpu", pattern::kNone};
constexpr OptionSpec kQueryGpu{"--query-gpu", "--query-gpu", pattern::kFieldList};
constexpr OptionSpec kLoopMs{"-lms", "--loop-ms", pattern::kPositive};
constexpr OptionSpec kFormat{"--format", "--format", pattern::kFormatList};

/// The commands by class, whatever row leads to them. One without a class is refused for now; its
/// interval and its grammar are checked like all others.
constexpr unsigned kSeconds = 1000;
constexpr unsigned kMilliseconds = 1;
constexpr CommandFactory kListCommand{.make = getFn<ListCommandAccess>};
constexpr CommandFactory kTolkCommand{.make = getFn<TolkCommandAccess>, .splitsIds = true};
constexpr CommandFactory kHelpCommand{.make = getFn<HelpCommandAccess>};
constexpr CommandFactory kVersionCommand{.make = getFn<VersionCommandAccess>, .splitsIds = true};
constexpr CommandFactory kQueryCommand{.make = getFn<QueryCommandAccess>, .loopUnitMs = kSeconds};
constexpr CommandFactory kVgpuCommand{.make = getFn<VgpuCommandAccess>, .loopUnitMs = kSeconds};
constexpr CommandFactory kTopoCommand{.make = getFn<TopoCommandAccess>};
constexpr CommandFactory kEncoderSessionsCommand{.make = getFn<EncoderSessionsCommandAccess>,
                                                 .loopUnitMs = kSeconds};
constexpr CommandFactory kDecoderSessionsCommand{.make = getFn<DecoderSessionsCommandAccess>,
                                                 .loopUnitMs = kSeconds};
constexpr CommandFactory kMpcCommand{.make = getFn<MpcCommandAccess>};
constexpr CommandFactory kResetGpuCommand{.make = getFn<ResetGpuCommandAccess>};
constexpr CommandFactory kSablinkStatusCommand{.make = getFn<SablinkStatusCommandAccess>};
constexpr CommandFactory kSablinkCapabilitiesCommand{.make = getFn<SablinkCapabilitiesCommandAccess>};
constexpr CommandFactory kSablinkRemoteLinkInfoCommand{.make = getFn<SablinkRemoteLinkInfoCommandAccess>};
constexpr CommandFactory kSablinkLayoutCommand{.make = getFn<SablinkLayoutCommandAccess>};
constexpr CommandFactory kSablinkErrorCountersCommand{.make = getFn<SablinkErrorCountersCommandAccess>,
                                                      .splitsIds = true};
constexpr CommandFactory kSablinkErrCounterResetCommand{.make = getFn<SablinkErrCounterResetCommandAccess>,
                                                        .splitsIds = true};
constexpr CommandFactory kProcessMonitorCommand{.make = getFn<ProcessMonitorCommandAccess>,
                                                .loopUnitMs = kSeconds};
constexpr CommandFactory kEccConfigCommand{.make = getFn<EccConfigCommandAccess>, .splitsIds = true};
constexpr CommandFactory kRetiredPageCommand{.make = getFn<RetiredPageCommandAccess>, .splitsIds = true};
constexpr CommandFactory kEventCommand{.make = getFn<EventCommandAccess>};
constexpr CommandFactory kMetricsMonitorCommand{.make = getFn<MetricsMonitorCommandAccess>,
                                                .loopUnitMs = kMilliseconds};
constexpr CommandFactory kPowerLimitCommand{.make = getFn<PowerLimitCommandAccess>, .splitsIds = true};
constexpr CommandFactory kQueryGpuHelpCommand{.make = getFn<QueryGpuHelpCommandAccess>};
constexpr CommandFactory kQueryGpuCommand{.make = getFn<QueryGpuCommandAccess>, .loopUnitMs = kSeconds};

constexpr CommandRow kFullTable[] = {
    {"", {kListGpus}, kListCommand, {kConciseFormat, kDebug}},
    {"", {}, kTolkCommand, {kConciseFormat, kId, kDebug}},
    {"", {kHelp}, kHelpCommand, {kDebug}},
    {"", {kVersionOption}, kVersionCommand, {kDebug}},
    {"", {kQuery}, kQueryCommand, {kId, kLoop, kFilename, kDisplay, kJson, kDebug}},
    {"vgpu",
     {},
     kVgpuCommand,
     {kEncoderSessions, kDecoderSessions, kId, kLoop, kSupport, kCreated, kDebug, kUtilization, kQuery}},
    {"topo", {}, kTopoCommand, {kMatrix, kMatrixGpu, kP2pStatus, kNearestGpus, kGpuPath, kId, kDebug}},
    {"", {kEncoderSessions}, kEncoderSessionsCommand, {kId, kLoop, kDebug}},
    {"", {kDecoderSessions}, kDecoderSessionsCommand, {kId, kLoop, kDebug}},
    {"mpc", {kEnable}, kMpcCommand, {kId, kDebug}},
    {"mpc", {kDisable}, kMpcCommand, {kId, kDebug}},
    {"mpc", {kListMpcConfig}, kMpcCommand, {kId, kDebug}},
    {"mpc", {kConfigMpc}, kMpcCommand, {kId, kDebug}},
    {"mpc", {kListMpcInstances}, kMpcCommand, {kId, kDebug}},
    {"", {kReset}, kResetGpuCommand, {kId, kDebug}},
    {"sablink", {kStatus}, kSablinkStatusCommand, {kId, kDebug}},
    {"sablink", {kCapabilities}, kSablinkCapabilitiesCommand, {kId, kDebug}},
    {"sablink", {kRemoteLinkInfo}, kSablinkRemoteLinkInfoCommand, {kId, kLink, kDebug}},
    {"sablink", {kLayout}, kSablinkLayoutCommand, {kId, kDebug}},
    {"sablink", {kErrorCounters}, kSablinkErrorCountersCommand, {kId, kLink, kDebug}},
    {"sablink", {kResetErrorCounters}, kSablinkErrCounterResetCommand, {kId, kLink, kDebug}},
    {"", {kProcessMonitor}, kProcessMonitorCommand, {kLoop, kDebug}},
    {"", {kEccConfig}, kEccConfigCommand, {kId, kDebug}},
    {"", {kQueryRetiredPages}, kRetiredPageCommand, {kId, kDebug}},
    {"event", {kHelp}, kEventCommand, {}},
    {"event", {kSearch}, kEventCommand, {kId, kUuid, kCount, kDebug, kJson}},
    {"", {kMetricsMonitor}, kMetricsMonitorCommand, {kId, kLoop, kDebug}},
    {"", {kPowerLimit}, kPowerLimitCommand, {kId, kDebug, kPersistence}},
    {"", {kHelpQueryGpu}, kQueryGpuHelpCommand, {}},
    {"", {kQueryGpu}, kQueryGpuCommand, {kId, kLoop, kLoopMs, kFormat}},
};

constexpr CommandRow kGuestTable[] = {
    {"", {}, kTolkCommand, {kId, kDebug}},
    {"", {kHelp}, kHelpCommand, {kDebug}},
    {"", {kVersionOption}, kVersionCommand, {kDebug}},
    {"", {kQuery}, kQueryCommand, {kId, kLoop, kDebug}},
};

}  // namespace

std::span<const CommandRow> fullCommandTable() {
  return kFullTable;
}

std::span<const CommandRow> guestCommandTable() {
  return kGuestTable;
}

}  // namespace tolk
