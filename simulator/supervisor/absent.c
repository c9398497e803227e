// Where programs make their system calls in another way than on x86-64, there is no supervisor.
#include <errno.h>

#include "supervisor.h"

void supervisorOpen(const SupervisorSetting* setting) {
  (void)setting;
}

int supervisorInstall(void) {
  errno = ENOSYS;
  return -1;
}

const char* supervisorStart(int commandPidfd, int listenerThere) {
  (void)commandPidfd;
  (void)listenerThere;
  errno = ENOSYS;
  return "the tier is for x86-64";
}
