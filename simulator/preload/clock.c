// The wall clock, for hosts whose time stands still. Clocks that only run on are left alone: waiting
// depends on them.
#include <sys/time.h>
#include <time.h>

#include "preload.h"

SHELL_EXPORT int clock_gettime(clockid_t clock, struct timespec* now) {
  typedef int (*Get)(clockid_t, struct timespec*);
  if (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE) {
    const SimImage* const image = shellGet()->image;
    if (image->fixedTime) {
      *now = (struct timespec){.tv_sec = image->time};
      return 0;
    }
  }
  return REAL(Get, "clock_gettime")(clock, now);
}

SHELL_EXPORT time_t time(time_t* now) {
  struct timespec exact;
  clock_gettime(CLOCK_REALTIME, &exact);
  if (now) *now = exact.tv_sec;
  return exact.tv_sec;
}

SHELL_EXPORT int gettimeofday(struct timeval* now, void* zone) {
  (void)zone;
  struct timespec exact;
  clock_gettime(CLOCK_REALTIME, &exact);
  now->tv_sec = exact.tv_sec;
  now->tv_usec = exact.tv_nsec / 1000;
  return 0;
}

SHELL_EXPORT int timespec_get(struct timespec* now, int base) {
  typedef int (*Get)(struct timespec*, int);
  if (base != TIME_UTC) return REAL(Get, "timespec_get")(now, base);
  return clock_gettime(CLOCK_REALTIME, now) == 0 ? base : 0;
}
