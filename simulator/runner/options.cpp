#include "options.h"

#include "hints.h"
#include "host_error.h"

namespace {

constexpr std::string_view kHelp = R"(Runs a command as though on a machine with Orvane GPUs.

  ovgpu-sim [--host NAME|FILE] [--state DIR] [--fault SPEC]... [--trace FILE]
            [--unexpected FILE] [--user ID] [--tier TIER] -- COMMAND [ARGUMENT]...
  ovgpu-sim --list-hosts
  ovgpu-sim --help

  --host NAME|FILE   the machine: a name of --list-hosts, or a JSON file (has a "/" or ends in .json);
                     "bare" without it
  --state DIR        keeps the host in DIR, so that the next command finds it as this one leaves it;
                     without it every run has a fresh host
  --fault SPEC       makes trouble on purpose; can be given several times
  --trace FILE       appends a line for every access of the host's files and every ioctl
  --unexpected FILE  writes what the driver was asked for and did not offer: a line for each such call,
                     nothing when there was none
  --user ID          the effective user that the command is told it runs as; its rights stay the same
  --tier TIER        how the host is shown: "preload" (without it), by a library in the command's processes,
                     or "seccomp", by the kernel, which serves static programs and raw system calls too
  --list-hosts       the hosts that can be named

The exit status is that of the command, 128 + n when signal n ended it, 2 when ovgpu-sim itself fails,
126 or 127 when the command cannot be started, 77 when the tier cannot be used on this machine. Folders with more hosts can be named in the environment,
as OVGPU_SIM_HOSTS with ":" between them.

)";

Tier tierFrom(const std::string& name) {
  if (name == "preload") return Tier::kPreload;
  if (name == "seccomp") return Tier::kSeccomp;
  throw HostError("--tier must be preload or seccomp; found \"" + name + "\"");
}

}  // namespace

std::string_view optionsHelp() {
  return kHelp;
}

Options parseOptions(const std::vector<std::string>& arguments) {
  Options options;
  static const std::vector<std::string_view> kKnown{"--host",  "--state",      "--fault",
                                                    "--trace", "--unexpected", "--user",
                                                    "--tier",  "--list-hosts", "--help"};
  std::optional<std::string> tier;
  const auto placeOf = [&](std::string_view name) -> std::optional<std::string>* {
    if (name == "--host") return &options.host;
    if (name == "--state") return &options.stateFolder;
    if (name == "--trace") return &options.traceFile;
    if (name == "--user") return &options.user;
    if (name == "--tier") return &tier;
    return name == "--unexpected" ? &options.unexpectedFile : nullptr;
  };
  size_t i = 0;
  for (; i < arguments.size() && arguments[i] != "--"; ++i) {
    std::string name = arguments[i];
    std::optional<std::string> value;
    if (const size_t equals = name.find('='); name.starts_with("--") && equals != std::string::npos) {
      value = name.substr(equals + 1);
      name.resize(equals);
    }
    if (name == "--list-hosts" || name == "--help" || name == "-h") {
      (name == "--list-hosts" ? options.listHosts : options.help) = true;
      continue;
    }
    std::optional<std::string>* const place = placeOf(name);
    if (!place && name != "--fault") {
      if (!name.starts_with('-'))
        throw HostError("the command must stand behind \"--\"; found \"" + name + "\"");
      throw HostError("unknown option \"" + name + "\"" + hintFor(name, kKnown));
    }
    if (!value) {
      if (i + 1 >= arguments.size() || arguments[i + 1] == "--") throw HostError(name + " needs a value");
      value = arguments[++i];
    }
    if (!place) {
      options.faults.push_back(*value);
      continue;
    }
    if (*place) throw HostError(name + " is given twice");
    *place = *value;
  }
  if (i < arguments.size())
    options.command.assign(arguments.begin() + static_cast<long>(i) + 1, arguments.end());
  if (options.user && (options.user->empty() || options.user->size() > 9 ||
                       options.user->find_first_not_of("0123456789") != std::string::npos)) {
    throw HostError("--user needs a number; found \"" + *options.user + "\"");
  }
  if (tier) options.tier = tierFrom(*tier);
  if (options.help || options.listHosts) return options;
  if (options.command.empty()) throw HostError("no command; it stands behind \"--\"");
  return options;
}
