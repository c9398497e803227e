// time_pair RUNS COMMAND ARGS... -- OTHER ARGS...
//
// Runs two commands in turn, so that a machine whose speed drifts treats both alike, and prints one
// line: median wall time of each in microseconds, the ratio of the medians, and the peak memory of each
// in KiB. Their output is thrown away.

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

struct Figures {
  std::vector<double> wallUs;
  long peakKib = 0;
};

bool runOnce(char** command, Figures& figures) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  const auto begin = std::chrono::steady_clock::now();
  pid_t pid = 0;
  const int error = posix_spawn(&pid, command[0], &actions, nullptr, command, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    std::fprintf(stderr, "time_pair: %s: %s\n", command[0], std::strerror(error));
    return false;
  }
  int status = 0;
  rusage usage{};
  wait4(pid, &status, 0, &usage);
  const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - begin;
  if (!WIFEXITED(status)) {
    std::fprintf(stderr, "time_pair: %s ended by signal %d\n", command[0], WTERMSIG(status));
    return false;
  }
  figures.wallUs.push_back(took.count());
  figures.peakKib = std::max(figures.peakKib, usage.ru_maxrss);
  return true;
}

double median(std::vector<double>& values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  int split = 2;
  while (split < argc && std::strcmp(argv[split], "--") != 0) ++split;
  const int runs = argc > 1 ? std::atoi(argv[1]) : 0;
  if (runs < 1 || split < 3 || split + 1 >= argc) {
    std::fputs("usage: time_pair RUNS COMMAND ARGS... -- OTHER ARGS...\n", stderr);
    return 2;
  }
  argv[split] = nullptr;
  char** const commands[2] = {argv + 2, argv + split + 1};
  Figures warmUp[2];
  Figures figures[2];
  for (int run = 0; run <= runs; ++run) {
    for (int i = 0; i < 2; ++i) {
      if (!runOnce(commands[i], run == 0 ? warmUp[i] : figures[i])) return 1;
    }
  }
  const double a = median(figures[0].wallUs);
  const double b = median(figures[1].wallUs);
  std::printf("%.0f %.0f %.2f %ld %ld\n", a, b, a / b, figures[0].peakKib, figures[1].peakKib);
  return 0;
}
