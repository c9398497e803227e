// Shows a host to a command from outside: the kernel stops each system call that could see the host and asks
// this process, its parent, for the answer. Raw calls and statically linked programs are shown the same host.
//
// The command's processes inherit the filter; their calls come to one listener, which threads of this process
// serve. One thread listens at a time; whoever has to wait lets another go on first.
#ifndef SUPERVISOR_H
#define SUPERVISOR_H

#ifdef __cplusplus
extern "C" {
#endif

typedef struct SupervisorSetting {
  const char* root;   // folder of the host
  const char* trace;  // file, null none
  const char* user;   // digits that geteuid is to answer, null its own
} SupervisorSetting;

// Opens the host; before the command's process is made.
void supervisorOpen(const SupervisorSetting* setting);

// In the command's process, before it becomes the command: sets up the filter. The number of the listener in
// this process, or -1 and errno.
int supervisorInstall(void);

// In this process: takes the listener over from the command's process and begins to answer. Null, or what
// the kernel does not let it do, with errno. Until then the command's process has to wait.
const char* supervisorStart(int commandPidfd, int listenerThere);

#ifdef __cplusplus
}
#endif

#endif
