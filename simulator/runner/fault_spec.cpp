#include "fault_spec.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "hints.h"
#include "host_error.h"
#include "json_cursor.h"
#include "sim_model.h"

namespace {

constexpr std::string_view kHelp = R"(A fault is TARGET[(SELECTION)][#WHEN]:EFFECT

  TARGET     ioctl              an ioctl on a node of the host
             file               every access of a path: open, opendir, stat, access, readlink, ...
             open               opening a path alone
             map                mapping memory that is shared with the driver, by the path of the node
             move               what the driver does itself while a node comes or goes with the MPC mode, by
                                the path of each of its files
  SELECTION  ioctl: KEY=VALUE, several with commas; without it, all ioctls
               node=GLOB        ovgpu.1, renderD128, ovgpu.*
               interface=N      calls of interface N, in any protocol; 100000 and up on a render node
               version=N        calls of that version of an interface
               kind=K           probe, scan, list, record (a call of an interface), smc (a command to
                                the firmware), memory (that is shared with the driver), unknown
               request=N        the request number
             file, open, map, move: a glob of the path; * stays in a folder, ** does not, ? is one character
  WHEN       N                  the N-th access that fits, counted over the whole run
             N+                 the N-th and all after it
             N-M                the N-th to the M-th
             without it         all
  EFFECT     errno=NAME         the access fails: EIO, ENOENT, ENODEV, ...
             hang=MS            the answer comes after MS milliseconds
             kill               the process is killed (SIGKILL) before the access has any effect; of a move
                                this alone
             status=N           ioctl: the driver's status in the header, in protocol 1; the status word
                                of the firmware
             short=N            ioctl: only N bytes of the reply are written
             ones               ioctl: the reply has all bits set
             count=N            ioctl: the reply says N rows, whatever it holds
             gone               ioctl: the device vanishes with this call
             cut=N              file, open: the file ends after N bytes
             text=TEXT          file, open: the file holds TEXT; \n, \0, \\ and \xHH are understood
             take=PATH          file, open: PATH, a file, link or folder of the host, is gone before the
                                access does anything, and stays away

  --fault 'ioctl#3:errno=EIO'                           the third ioctl of the run fails
  --fault 'ioctl(interface=56,node=ovgpu.1):status=11'  every temperature of one GPU
  --fault 'ioctl(interface=4):count=500'                a driver that lies about its rows
  --fault 'ioctl(node=ovgpu.0)#10:gone'                 a GPU that falls off the bus
  --fault 'file(/sys/**/numa_node)#2:errno=EACCES'      the second access of such a file
  --fault 'open(/proc/driver/vela/version):cut=5'       a file that ends too early
)";

class Parser {
 public:
  explicit Parser(const std::string& written) : whole(written), rest(written) {}

  FaultSpec parse() {
    SimFault& fault = spec.fault;
    fault = {};
    fault.callKind = SIM_CALL_ANY;
    fault.anyInterface = fault.anyVersion = fault.anyRequest = 1;
    fault.first = 1;
    fault.last = ~uint64_t{0};
    parseTarget();
    if (take('(')) parseSelection();
    if (take('#')) parseWhen();
    if (!take(':')) fail("expected \":\" and an effect" + found());
    parseEffect();
    return spec;
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw HostError("fault \"" + whole + "\": " + what);
  }

  std::string found() const {
    return rest.empty() ? std::string("; found the end") : "; found \"" + std::string(rest) + "\"";
  }

  bool take(char c) {
    if (rest.empty() || rest.front() != c) return false;
    rest.remove_prefix(1);
    return true;
  }

  std::string_view takeUntil(std::string_view stops) {
    const std::string_view word = rest.substr(0, rest.find_first_of(stops));
    rest.remove_prefix(word.size());
    return word;
  }

  uint64_t number(std::string_view word, const std::string& of) const {
    const auto value = numberFromText(word);
    if (!value) fail(of + " is a number; found \"" + std::string(word) + "\"");
    return *value;
  }

  [[noreturn]] void failUnknown(const std::string& what, std::string_view word,
                                const std::vector<std::string_view>& known) const {
    std::string list;
    for (const std::string_view one : known) list += (list.empty() ? "" : ", ") + std::string(one);
    fail("unknown " + what + " \"" + std::string(word) + "\"" + hintFor(word, known) + " (" + list + ")");
  }

  void parseTarget() {
    const std::string_view word = takeUntil("(#:");
    if (word == "ioctl") {
      spec.fault.target = SIM_FAULT_IOCTL;
    } else if (word == "file") {
      spec.fault.target = SIM_FAULT_FILE;
    } else if (word == "open") {
      spec.fault.target = SIM_FAULT_OPEN;
    } else if (word == "map") {
      spec.fault.target = SIM_FAULT_MAP;
    } else if (word == "move") {
      spec.fault.target = SIM_FAULT_MOVE;
    } else {
      failUnknown("target", word, {"ioctl", "file", "open", "map", "move"});
    }
  }

  bool isIoctl() const { return spec.fault.target == SIM_FAULT_IOCTL; }

  void parseSelection() {
    const size_t end = rest.find(')');
    if (end == std::string_view::npos) fail("the selection has no \")\"");
    std::string_view selection = rest.substr(0, end);
    rest.remove_prefix(end + 1);
    if (selection.empty()) fail("the selection is empty");
    if (!isIoctl()) {
      if (selection.front() != '/')
        fail("a path begins with \"/\"; found \"" + std::string(selection) + "\"");
      spec.pattern = selection;
      return;
    }
    while (!selection.empty()) {
      const std::string_view pair = selection.substr(0, selection.find(','));
      selection.remove_prefix(std::min(selection.size(), pair.size() + 1));
      const size_t equals = pair.find('=');
      if (equals == std::string_view::npos) fail("expected KEY=VALUE; found \"" + std::string(pair) + "\"");
      parseCondition(pair.substr(0, equals), pair.substr(equals + 1));
    }
  }

  void parseCondition(std::string_view key, std::string_view value) {
    SimFault& fault = spec.fault;
    if (key == "node") {
      spec.pattern = value;
    } else if (key == "interface") {
      fault.anyInterface = 0;
      fault.interfaceName = static_cast<uint32_t>(number(value, "interface"));
    } else if (key == "version") {
      fault.anyVersion = 0;
      fault.version = static_cast<uint16_t>(number(value, "version"));
    } else if (key == "request") {
      fault.anyRequest = 0;
      fault.request = static_cast<uint32_t>(number(value, "request"));
    } else if (key == "kind") {
      std::vector<std::string_view> kinds;
      while (const char* const kind = simKindName(static_cast<uint32_t>(kinds.size())))
        kinds.emplace_back(kind);
      const auto found = std::find(kinds.begin(), kinds.end(), value);
      if (found == kinds.end()) failUnknown("kind", value, kinds);
      fault.callKind = static_cast<uint8_t>(found - kinds.begin());
    } else {
      failUnknown("key", key, {"node", "interface", "version", "kind", "request"});
    }
  }

  void parseWhen() {
    const std::string_view word = takeUntil("+-:");
    spec.fault.first = spec.fault.last = number(word, "what follows \"#\"");
    if (spec.fault.first == 0) fail("accesses are counted from 1");
    if (take('+')) {
      spec.fault.last = ~uint64_t{0};
    } else if (take('-')) {
      spec.fault.last = number(takeUntil(":"), "the end of the range");
      if (spec.fault.last < spec.fault.first) fail("the range ends before it begins");
    }
  }

  void parseEffect() {
    enum On : uint8_t { kIoctl = 1, kFile = 2, kMapping = 4, kMove = 8, kAccess = kIoctl | kFile | kMapping };
    struct Effect {
      std::string_view name;
      SimFaultEffect effect;
      bool hasValue;
      int on;
    };
    static constexpr Effect kEffects[] = {
        {"errno", SIM_EFFECT_ERRNO, true, kAccess},
        {"hang", SIM_EFFECT_HANG, true, kAccess},
        {"kill", SIM_EFFECT_KILL, false, kAccess | kMove},
        {"status", SIM_EFFECT_STATUS, true, kIoctl},
        {"short", SIM_EFFECT_SHORT, true, kIoctl},
        {"ones", SIM_EFFECT_ONES, false, kIoctl},
        {"count", SIM_EFFECT_COUNT, true, kIoctl},
        {"gone", SIM_EFFECT_GONE, false, kIoctl},
        {"cut", SIM_EFFECT_CUT, true, kFile},
        {"text", SIM_EFFECT_TEXT, true, kFile},
        {"take", SIM_EFFECT_TAKE, true, kFile},
    };
    // By SimFaultTarget.
    static constexpr struct {
      On on;
      const char* what;
    } kTargets[] = {{kIoctl, "an ioctl"},
                    {kFile, "a file"},
                    {kFile, "a file"},
                    {kMapping, "a mapping"},
                    {kMove, "a move"}};
    const auto& target = kTargets[spec.fault.target];
    const std::string name(takeUntil("="));
    const bool hasValue = take('=');
    std::vector<std::string_view> known;
    for (const Effect& effect : kEffects) {
      if ((effect.on & target.on) == 0) continue;
      known.push_back(effect.name);
      if (effect.name != name) continue;
      if (effect.hasValue != hasValue) {
        fail("\"" + name + "\" " + (effect.hasValue ? "needs a value: " + name + "=..." : "takes no value"));
      }
      spec.fault.effect = static_cast<uint8_t>(effect.effect);
      if (hasValue) parseValue(name);
      return;
    }
    failUnknown(std::string("effect on ") + target.what, name, known);
  }

  void parseValue(const std::string& name) {
    if (spec.fault.effect == SIM_EFFECT_ERRNO) {
      const auto error = errnoFromName(rest);
      if (!error) fail("unknown errno \"" + std::string(rest) + "\"; one such as EIO is expected");
      spec.fault.number = static_cast<uint64_t>(*error);
    } else if (spec.fault.effect == SIM_EFFECT_TEXT) {
      spec.text = unescape();
    } else if (spec.fault.effect == SIM_EFFECT_TAKE) {
      if (!rest.starts_with('/') || rest.ends_with('/'))
        fail("a path begins with \"/\" and ends without; found \"" + std::string(rest) + "\"");
      spec.text = rest;
    } else {
      spec.fault.number = number(rest, name);
    }
  }

  std::string unescape() const {
    std::string text;
    for (size_t i = 0; i < rest.size(); ++i) {
      if (rest[i] != '\\') {
        text += rest[i];
        continue;
      }
      const char kind = i + 1 < rest.size() ? rest[++i] : '\0';
      if (kind == 'n') {
        text += '\n';
      } else if (kind == '0') {
        text += '\0';
      } else if (kind == '\\') {
        text += '\\';
      } else if (kind == 'x' && i + 2 < rest.size()) {
        text += static_cast<char>(number("0x" + std::string(rest.substr(i + 1, 2)), "what follows \"\\x\""));
        i += 2;
      } else {
        fail("after \"\\\" only n, 0, \\ and xHH are understood");
      }
    }
    return text;
  }

  const std::string& whole;
  std::string_view rest;
  FaultSpec spec;
};

}  // namespace

FaultSpec parseFault(const std::string& written) {
  return Parser(written).parse();
}

std::optional<int> errnoFromName(std::string_view name) {
  constexpr int kHighest = 133;
  for (int error = 1; error <= kHighest; ++error) {
    const char* const known = strerrorname_np(error);
    if (known && name == known) return error;
  }
  return std::nullopt;
}

std::string_view faultHelp() {
  return kHelp;
}
