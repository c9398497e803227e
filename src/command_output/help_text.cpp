#include "command_output/help_text.h"

namespace tolk {

namespace {

constexpr HelpLine plain(std::string_view text) {
  return {0, text, ""};
}
constexpr HelpLine padded(std::string_view text) {
  return {50, text, ""};
}
constexpr HelpLine entry(std::string_view left, std::string_view right) {
  return {50, left, right};
}
constexpr HelpLine indent(int columns, std::string_view text) {
  return {columns, " ", text};
}

constexpr HelpLine inGuest(HelpLine line) {
  line.inGuest = true;
  return line;
}

constexpr HelpLine kBlankLine = plain("");
constexpr HelpLine kPlusAnyOf = plain("plus any of:");
constexpr HelpLine kIdEntry = entry("[-i, --id]", "Specify one Gpu by index.");
constexpr HelpLine kLoopEntry = entry("[-l, --loop=]", "Probe until Ctrl+C at specified second interval.");
constexpr HelpLine kDebugEntry = entry("[--debug=]", "Log encrypted debug information to a specified file.");

constexpr HelpLine kLines[] = {
    inGuest(plain("Command style : orvane-tolk [OPTION1 [ARG1]] [OPTION2 [ARG2]] ...")),
    inGuest(kBlankLine),
    inGuest(plain("Supported below commands :")),
    inGuest(kBlankLine),
    inGuest(entry("orvane-tolk", "Show a summary of GPUs connected to the system.")),
    inGuest(kPlusAnyOf),
    entry("[-cf, --concise-format]", "Hide mpc instance and process information."),
    inGuest(kIdEntry),
    inGuest(kDebugEntry),
    inGuest(kBlankLine),
    entry("orvane-tolk [-L, --list-gpus]", "Display a list of GPUs connected to the system."),
    kPlusAnyOf,
    entry("[-cf, --concise-format]", "Hide mpc instance."),
    kDebugEntry,
    kBlankLine,
    inGuest(entry("orvane-tolk [-v, --version]", "Display current tolk version.")),
    inGuest(kPlusAnyOf),
    inGuest(kDebugEntry),
    inGuest(kBlankLine),
    inGuest(entry("orvane-tolk [-q, --query]", "Display GPU detailed info.")),
    inGuest(kPlusAnyOf),
    inGuest(kIdEntry),
    entry("[-d, --display=]",
          "Display only selected information: "
          "MEMORY,DISPLAY,UTILIZATION,TEMPERATURE,CLOCK,FAN,VIDEO,POWER,ECC,PAGE_RETIREMENT,PERFORMANCE,"
          "THERMAL_SLOWDOWN_STATS."),
    inGuest(kLoopEntry),
    entry("[-f, --filename=]", "Log to a specified file, rather than to stdout."),
    entry("[--json]", "Display GPU detailed info in json format."),
    inGuest(kDebugEntry),
    inGuest(kBlankLine),
    padded("SELECTIVE QUERY OPTIONS:"),
    padded("    Allows the caller to pass an explicit list of properties to query."),
    padded("    [one of]"),
    padded("    --query-gpu                Information about GPU."),
    indent(31, "Call --help-query-gpu for more info."),
    padded("    [mandatory]"),
    padded("    --format=                  Comma separated list of format options:"),
    indent(31, "csv - comma separated values"),
    indent(31, "noheader - skip the first line with column headers"),
    padded("    [plus any of]"),
    padded("    -i,   --id=                Target a specific GPU."),
    padded("    -l,   --loop=              Probe until Ctrl+C at specified second interval."),
    padded("    -lms, --loop-ms=           Probe until Ctrl+C at specified millisecond interval."),
    entry("orvane-tolk [-e, --ecc-config]", "Provide Inline ECC mode controls with a given option."),
    indent(60, "0 = disable"),
    indent(60, "1 = enable"),
    kPlusAnyOf,
    kIdEntry,
    kDebugEntry,
    kBlankLine,
    entry("orvane-tolk [-qrp, --query-retired-pages]",
          "Display selected information of GPU device retired memory pages:"),
    indent(60, "timestamp - the timestamp of when the query was made in format \"YYYY/MM/DD HH:MM:SS.msec\""),
    indent(60, "gpu_uuid - the globally unique immutable alphanumeric identifier of the GPU"),
    indent(60, "retired_pages.address - address of a retired page"),
    indent(60,
           "retired_pages.timestamp - timestamp at which the page was retired in format \"YYYY/MM/DD "
           "HH:MM:SS.msec\""),
    indent(60, "retired_pages.cause - reason of why the page was retired"),
    kPlusAnyOf,
    kIdEntry,
    kDebugEntry,
    kBlankLine,
    entry("orvane-tolk [-r, --reset]", "Trigger a reset with a given option:"),
    indent(60, "0 = reset gpu subsystem"),
    indent(60, "1 = reset gpu subsystem and hardware counters"),
    indent(60, "2 = reset whole device and hardware counters"),
    kPlusAnyOf,
    kIdEntry,
    kDebugEntry,
    kBlankLine,
    entry("orvane-tolk [-pm, --process-monitor]",
          "Monitor processes running on GPUs plugged into the system."),
    kPlusAnyOf,
    kLoopEntry,
    kDebugEntry,
    kBlankLine,
    entry("orvane-tolk vgpu", "Query information in vGPU environment."),
    kPlusAnyOf,
    kIdEntry,
    entry("[-q, --query]", "Display vGPU detailed info."),
    entry("[-s, --support]", "Display vGPU types supported on each device."),
    entry("[-c, --created]", "Display vGPUs created on each device."),
    entry("[-u, --utilization]", "Display GPU engine usage in guest for target vGPU."),
    entry("[-es, --encodersessions]", "Display active encoder session metrics at default interval."),
    entry("[-ds, --decodersessions]", "Display active decoder session metrics at default interval."),
    kLoopEntry,
    kDebugEntry,
    kBlankLine,
    inGuest(entry("orvane-tolk [-h, --help]", "Print usage information and exit.")),
    inGuest(kPlusAnyOf),
    inGuest(kDebugEntry),
    kBlankLine,
    entry("orvane-tolk topo", "Display topological information about the system."),
    kPlusAnyOf,
    entry("[-m | --matrix]", "Display the devices communication matrix for the system."),
    entry("[-mg| --matrix-gpu]", "Display the devices communication matrix for the system (GPU Only)."),
    entry("[-i | --id]", "Specify one Gpu by index."),
    entry("[-n | --nearest-gpus]", "Display the nearest GPUs for a given traversal path:"),
    indent(60, "0 = internal connection(e.g., b220)"),
    indent(60, "1 = a single PCIe switch"),
    indent(60, "2 = multiple PCIe switches"),
    indent(60, "3 = a PCIe host bridge"),
    indent(60, "4 = an on-CPU interconnect link between PCIe host bridges"),
    indent(60, "5 = an SMP interconnect link between NUMA nodes"),
    indent(50, "Used in conjunction with -i."),
    entry("[-p | --gpu-path]", "Display the most direct path traversal for a pair of GPUs."),
    indent(50, "Used in conjunction with -i which must be a pair of device IDs."),
    entry("[-p2p | --p2pstatus]", "Displays the p2p status between the GPUs of a given p2p capability:"),
    indent(60, "r - p2p read capabiity"),  // sic
    indent(60, "w - p2p write capability"),
    kDebugEntry,
    kBlankLine,
    entry("orvane-tolk [-es, --encodersessions]",
          "Display active encoder session metrics at default interval."),
    kPlusAnyOf,
    kIdEntry,
    kLoopEntry,
    kDebugEntry,
    kBlankLine,
    entry("orvane-tolk [-ds, --decodersessions]",
          "Display active decoder session metrics at default interval."),
    kPlusAnyOf,
    kIdEntry,
    kLoopEntry,
    kDebugEntry,
    kBlankLine,
    entry("orvane-tolk mpc", "Provide controls for MPC management."),
    kPlusAnyOf,
    entry("[-enable]", "Enable MPC mode for target device."),
    entry("[-disable]", "Disable MPC mode for target device."),
    entry("[-lmc | --list-mpc-config]", "List supported configureId and MPC instance profiles."),
    entry("[-cm | --config-mpc]", "Fully configure MPC for target device with configureId."),
    entry("[-lmi | --list-mpc-instances]", "List created MPC instances."),
    entry("[-i | --id]", "Specify one Gpu by index."),
    kDebugEntry,
    kBlankLine,
    entry("orvane-tolk sablink", "Displays device sablink information."),
    kPlusAnyOf,
    entry("[-l|--link]", "Specify one Sablink by port index."),
    entry("[-s|--status]", "Display link state."),
    entry("[-c|--capabilities]", "Display the requested capability status of links for specified device."),
    entry("[-r|--remotelinkinfo]", "Display remote device directly connected via specified link."),
    entry("[-la|--layout]", "Display all Sablink shortest paths from one device to the other."),
    indent(50, "Used in conjunction with -i which must be a pair of device IDs."),
    entry("[-e|--errorcounters]", "Display error counters for a link."),
    entry("[-re|--reseterrorcounters]", "Reset all sablink error counters to zero."),
    entry("[-i|--id]", "Specify one or multiple Gpu by index."),
    kDebugEntry,
    kBlankLine,
    padded("EVENT INFORMATION"),
    entry("    event", "Show event information. \"orvane-tolk event -h\" for more information."),
    kBlankLine,
    entry("orvane-tolk [-mm, --metrics-monitor]", "Monitor GPU metrics."),
    indent(60, "GpuId - GPU identifier (required)"),
    indent(60, "Temp - GPU temperature"),
    indent(60, "Power - Power consumption"),
    indent(60, "Freq - GPU clock frequency"),
    indent(60, "SlowdownCnt - Thermal Slowdown count"),
    indent(60, "TotalSlowdownTimeMs - Thermal Slowdown total time in milliseconds"),
    indent(60, "Time - Time in format \"YYYY/MM/DD HH:MM:SS.msec\" (optional)"),
    indent(50, "Fields must be comma-separated, e.g. \"GpuId,Temp,Power\""),
    indent(50, "Field string must contain \"GpuId\" and at least one of \"Temp\", \"Power\","),
    indent(50, "\"SlowdownCnt\", \"TotalSlowdownTimeMs\" or \"Freq\" (in any order)"),
    kPlusAnyOf,
    kIdEntry,
    entry("[-l, --loop=]", "Probe until Ctrl+C at specified millisecond interval."),
    kDebugEntry,
    kBlankLine,
    entry("orvane-tolk [-pl, --power-limit]", "Specifies maximum power management limit in watts."),
    kPlusAnyOf,
    kIdEntry,
    entry("[-o | --option]", "Option parameter for setting persistence:"),
    indent(60, "0 = non-persistent setting (default)"),
    indent(60, "1 = persistent setting"),
    kDebugEntry,
    kBlankLine,
};

}  // namespace

std::span<const HelpLine> helpText() {
  return kLines;
}

}  // namespace tolk
