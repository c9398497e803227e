#include "command_runner.h"

#include <elf.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "host_error.h"
#include "supervisor.h"

namespace {

constexpr int kSignalStatus = 128;

volatile sig_atomic_t childPid = 0;

// What is sent to the runner is meant for the command.
void passOn(int number) {
  if (childPid > 0) kill(static_cast<pid_t>(childPid), number);
}

std::string findInPath(const std::string& command) {
  if (command.find('/') != std::string::npos) return command;
  const char* const path = std::getenv("PATH");
  const std::string folders = path ? path : "";
  for (size_t at = 0; at <= folders.size();) {
    const size_t end = std::min(folders.find(':', at), folders.size());
    const std::string file = folders.substr(at, end - at) + "/" + command;
    if (access(file.c_str(), X_OK) == 0) return file;
    at = end + 1;
  }
  return {};
}

// A 64-bit program that names no interpreter is linked statically.
bool isStatic(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  Elf64_Ehdr head{};
  if (!stream.read(reinterpret_cast<char*>(&head), sizeof head)) return false;
  if (std::memcmp(head.e_ident, ELFMAG, SELFMAG) != 0 || head.e_ident[EI_CLASS] != ELFCLASS64) return false;
  for (int i = 0; i < head.e_phnum; ++i) {
    Elf64_Phdr part{};
    stream.seekg(static_cast<std::streamoff>(head.e_phoff) + i * head.e_phentsize);
    if (!stream.read(reinterpret_cast<char*>(&part), sizeof part)) return false;
    if (part.p_type == PT_INTERP) return false;
  }
  return true;
}

void setEnvironment(const Installation& parts, const HostFolder& folder, const CommandSetting& setting) {
  const bool preloads = setting.tier == Tier::kPreload;
  const auto append = [](const char* name, const std::string& more, bool front) {
    const char* const old = std::getenv(name);
    const std::string before = old ? old : "";
    const std::string all = before.empty() ? more : front ? more + ":" + before : before + ":" + more;
    setenv(name, all.c_str(), 1);
  };
  if (preloads) append("LD_PRELOAD", parts.library.string(), true);
  append("PATH", parts.stubs.string(), true);
  append("PATH", parts.launcher.parent_path().string(), false);
  // The sanitizer wants to be the first library; it works behind the preload all the same.
  if (preloads) append("ASAN_OPTIONS", "verify_asan_link_order=0", false);
  setenv("OVGPU_SIM_ROOT", folder.path().c_str(), 1);
  setenv("OVGPU_SIM_CANARY", folder.canary().c_str(), 1);
  const auto tell = [](const char* name, const std::string& value) {
    if (value.empty()) {
      unsetenv(name);
    } else {
      setenv(name, value.c_str(), 1);
    }
  };
  tell("OVGPU_SIM_TRACE", preloads ? setting.traceFile : "");
  tell("OVGPU_SIM_USER", preloads ? setting.user : "");
}

// ---- a command that is supervised

// What the two ends of a pair of sockets tell each other: the child its listener, the parent that it answers.
struct Listener {
  int number = -1;
  int error = 0;
};

bool becomeSupervised(int parent) {
  Listener listener;
  listener.number = supervisorInstall();
  if (listener.number < 0) listener.error = errno;
  // Reading is done when the parent answers, or has closed its end.
  return write(parent, &listener, sizeof listener) == static_cast<ssize_t>(sizeof listener) &&
         read(parent, &listener, 1) == 1;
}

// The supervisor appends to it from this process.
void checkTrace(const std::string& path) {
  if (!path.empty() && !std::ofstream(path, std::ios::app))
    throw HostError("cannot write the trace: " + path);
}

int pidfdOf(pid_t process) {
  return static_cast<int>(syscall(SYS_pidfd_open, process, 0));
}

void supervise(int child, int pidfd) {
  Listener listener;
  const char* missing = nullptr;
  if (read(child, &listener, sizeof listener) != static_cast<ssize_t>(sizeof listener) ||
      listener.error != 0) {
    missing = "the kernel has no seccomp user notification for it";
    errno = listener.error;
  } else {
    missing = supervisorStart(pidfd, listener.number);
  }
  if (missing) throw TierError(std::string(missing) + ": " + std::strerror(errno));
  if (write(child, "", 1) != 1) throw TierError(std::strerror(errno));
}

// Not by waiting for the process alone: a thread of the supervisor may hold it, whose news that would take.
void waitForEnd(int pidfd) {
  pollfd process{.fd = pidfd, .events = POLLIN, .revents = 0};
  while (poll(&process, 1, -1) < 0 && errno == EINTR) {
  }
}

[[noreturn]] void startChild(const Installation& parts, const HostFolder& folder,
                             const CommandSetting& setting, const std::vector<std::string>& command,
                             const sigset_t& mask, int supervision) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  setEnvironment(parts, folder, setting);
  if (supervision >= 0 && !becomeSupervised(supervision)) _exit(2);
  std::vector<char*> arguments;
  std::string launcher = parts.launcher.string();
  arguments.push_back(launcher.data());
  for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  sigprocmask(SIG_SETMASK, &mask, nullptr);
  execv(launcher.c_str(), arguments.data());
  _exit(2);
}

}  // namespace

void checkCommand(const std::string& command) {
  const std::string file = findInPath(command);
  if (file.empty() || access(file.c_str(), F_OK) != 0) return;  // the launcher will say so
  if (isStatic(file)) {
    throw HostError(file + " is linked statically: the simulated host cannot be shown to it");
  }
  struct stat status {};
  if (stat(file.c_str(), &status) == 0 && (status.st_mode & (S_ISUID | S_ISGID)) != 0 && geteuid() != 0) {
    throw HostError(file + " changes its user or group: the simulated host cannot be shown to it");
  }
}

int runCommand(const Installation& parts, const HostFolder& folder, const CommandSetting& setting,
               const std::vector<std::string>& command) {
  int sockets[2] = {-1, -1};
  if (setting.tier == Tier::kSeccomp) {
    checkTrace(setting.traceFile);
    const SupervisorSetting supervisor{.root = folder.path().c_str(),
                                       .trace = setting.traceFile.c_str(),
                                       .user = setting.user.empty() ? nullptr : setting.user.c_str()};
    supervisorOpen(&supervisor);
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0)
      throw TierError(std::strerror(errno));
  }
  // Until the child is known, signals wait. Those of the keyboard reach the command by themselves.
  sigset_t blocked;
  sigset_t before;
  sigfillset(&blocked);
  sigprocmask(SIG_SETMASK, &blocked, &before);
  const pid_t child = fork();
  if (child < 0) throw HostError(std::string("cannot start a process: ") + std::strerror(errno));
  if (child == 0) {
    if (sockets[0] >= 0) close(sockets[0]);
    startChild(parts, folder, setting, command, before, sockets[1]);
  }
  childPid = child;
  int pidfd = -1;
  if (sockets[0] >= 0) {
    close(sockets[1]);
    pidfd = pidfdOf(child);
    // Threads that begin here take no signals.
    supervise(sockets[0], pidfd);
  }
  struct sigaction action {};
  action.sa_handler = SIG_IGN;
  for (const int number : {SIGINT, SIGQUIT}) sigaction(number, &action, nullptr);
  action.sa_handler = passOn;
  for (const int number : {SIGTERM, SIGHUP, SIGUSR1, SIGUSR2}) sigaction(number, &action, nullptr);
  sigprocmask(SIG_SETMASK, &before, nullptr);

  if (pidfd >= 0) waitForEnd(pidfd);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFSIGNALED(status) ? kSignalStatus + WTERMSIG(status) : WEXITSTATUS(status);
}
