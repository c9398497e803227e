// Who the program is told it runs as. A program that asks for the right user before it dares something can
// so be seen refusing, while everything that carries the simulation stays readable.
#include <stdlib.h>
#include <unistd.h>

#include "preload.h"

SHELL_EXPORT uid_t geteuid(void) {
  typedef uid_t (*Get)(void);
  const char* const user = getenv("OVGPU_SIM_USER");
  return user ? (uid_t)strtoul(user, NULL, 10) : REAL(Get, "geteuid")();
}
