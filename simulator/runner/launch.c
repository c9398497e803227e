// Stands between ovgpu-sim and the command: started with the environment that the command will have, it
// looks for something only the simulated host has, and starts the command when it is there. Without the
// preload the command would see, and change, the machine's own GPUs.
//
// usage: ovgpu-sim-launch COMMAND [ARGUMENT...]
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

enum { kOwnError = 2, kNotExecutable = 126, kNotFound = 127 };

static int seesHost(const char* token) {
  char found[64];
  const int fd = open("/sys/.ovgpu-sim", O_RDONLY);
  if (fd < 0) return 0;
  const ssize_t length = read(fd, found, sizeof found - 1);
  close(fd);
  if (length <= 0) return 0;
  found[length] = '\0';
  return strcmp(found, token) == 0;
}

int main(int count, char** arguments) {
  const char* const token = getenv("OVGPU_SIM_CANARY");
  if (count < 2 || !token || !token[0]) {
    fputs("ovgpu-sim-launch: is started by ovgpu-sim\n", stderr);
    return kOwnError;
  }
  if (!seesHost(token)) {
    const char* const preload = getenv("LD_PRELOAD");
    fprintf(
        stderr,
        "ovgpu-sim: the simulated host is not seen through %s, so the command is not started: it would run on"
        " this machine itself\n",
        preload && strstr(preload, "libovgpu_sim.so") ? "libovgpu_sim.so" : "the kernel");
    return kOwnError;
  }
  unsetenv("OVGPU_SIM_CANARY");
  execvp(arguments[1], arguments + 1);
  const int error = errno;
  fprintf(stderr, "ovgpu-sim: cannot start %s: %s\n", arguments[1], strerror(error));
  return error == ENOENT ? kNotFound : kNotExecutable;
}
