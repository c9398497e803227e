// A program that no preload gets into: it is linked statically and asks the kernel itself. Prints what does
// not look as it should on the host "bare"; the exit status is the number of such things.
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

enum { kTime = 1763660412, kX32Bit = 0x40000000 };

static const char version[] = "/proc/driver/vela/version";
static const char function[] = "/sys/bus/pci/drivers/ovgpu/0000:41:00.0";
static const char logs[] = "/var/log/ovgpu/raw";
static int failures;

#define CHECK(condition) \
  do {                   \
    if (!(condition)) {  \
      puts(#condition);  \
      ++failures;        \
    }                    \
  } while (0)

static int fails(long result, int error) {
  return result == -1 && errno == error;
}

// A path that ends where the memory ends.
static const char* atTheEnd(const char* path) {
  char* const memory = mmap(NULL, 8192, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  munmap(memory + 4096, 4096);
  return strcpy(memory + 4096 - strlen(path) - 1, path);
}

static void checkFiles(void) {
  struct stat status;
  char text[256] = "";
  const int fd = (int)syscall(SYS_open, version, O_RDONLY);
  CHECK(syscall(SYS_read, fd, text, sizeof text) == 22 && strcmp(text, "package version:3.1.0\n") == 0);
  CHECK(syscall(SYS_openat, -100, atTheEnd(version), O_RDONLY) > 0);
  CHECK(fails(syscall(SYS_open, (char*)8, O_RDONLY), EFAULT));
  CHECK(fails(syscall(SYS_openat2, AT_FDCWD, version, NULL, 0), ENOSYS));
  CHECK(syscall(SYS_stat, "/dev/ovgpu.1", &status) == 0 && S_ISCHR(status.st_mode));
  CHECK(syscall(SYS_lstat, function, &status) == 0 && S_ISLNK(status.st_mode));
  CHECK(fails(syscall(SYS_stat, "/dev/ovgpu.1", (void*)8), EFAULT));
  CHECK(syscall(SYS_readlink, function, text, 5) == 5 && memcmp(text, "../..", 5) == 0);
  CHECK(fails(syscall(SYS_readlink, function, text, 0), EINVAL));
  CHECK(syscall(SYS_access, "/sys/class/misc", F_OK) != 0);
  CHECK(fails(syscall(SYS_getxattr, function, "user.x", text, sizeof text), ENOTSUP));
  CHECK(fails(syscall(kX32Bit | SYS_open, version, O_RDONLY), ENOSYS));
}

static void checkChanges(void) {
  struct stat status;
  char text[256];
  umask(027);
  CHECK(syscall(SYS_mkdir, logs, 0777) == 0);
  CHECK(stat(logs, &status) == 0 && (status.st_mode & 07777) == 0750);
  CHECK(syscall(SYS_creat, "/var/log/ovgpu/raw/a", 0666) > 0);
  CHECK(stat("/var/log/ovgpu/raw/a", &status) == 0 && (status.st_mode & 07777) == 0640);
  CHECK(fails(syscall(SYS_renameat2, AT_FDCWD, "/var/log/ovgpu/raw/a", AT_FDCWD, logs, RENAME_NOREPLACE),
              EEXIST));
  CHECK(syscall(SYS_renameat, AT_FDCWD, "/var/log/ovgpu/raw/a", AT_FDCWD, "/var/log/ovgpu/raw/b") == 0);
  CHECK(syscall(SYS_chdir, logs) == 0 && access("b", F_OK) == 0);
  CHECK(syscall(SYS_getcwd, text, sizeof text) == sizeof logs && strcmp(text, logs) == 0);
  CHECK(fails(syscall(SYS_getcwd, text, 5L), ERANGE));
  CHECK(fails(syscall(SYS_chdir, "/sys/nothing"), ENOENT));
  CHECK(fails(syscall(SYS_chdir, version), ENOTDIR));
  CHECK(syscall(SYS_unlink, "/var/log/ovgpu/raw/b") == 0 && chdir("/") == 0 && syscall(SYS_rmdir, logs) == 0);
}

static volatile sig_atomic_t alarms;
static void count(int number) {
  (void)number;
  ++alarms;
}

// Signals that come while a call is answered let it be: nothing is asked twice, or given up.
static void checkSignals(void) {
  const struct sigaction action = {.sa_handler = count, .sa_flags = SA_RESTART};
  const struct itimerval often = {{0, 200}, {0, 200}};
  const struct itimerval never = {{0, 0}, {0, 0}};
  int wrong = 0;
  sigaction(SIGALRM, &action, NULL);
  setitimer(ITIMER_REAL, &often, NULL);
  for (int i = 0; i < 500; ++i) {
    wrong += syscall(SYS_chdir, i % 2 ? "/sys/bus" : "/sys/bus/pci") != 0;
    wrong += syscall(SYS_access, i % 2 ? "pci" : "drivers", F_OK) != 0;
  }
  setitimer(ITIMER_REAL, &never, NULL);
  CHECK(wrong == 0);
  CHECK(alarms > 0);
}

static void checkTime(void) {
  struct timespec exact;
  struct timeval rough;
  CHECK(time(NULL) == kTime && syscall(SYS_time, NULL) == kTime);
  CHECK(clock_gettime(CLOCK_REALTIME, &exact) == 0 && exact.tv_sec == kTime && exact.tv_nsec == 0);
  CHECK(gettimeofday(&rough, NULL) == 0 && rough.tv_sec == kTime);
  CHECK(clock_gettime(CLOCK_MONOTONIC, &exact) == 0 && exact.tv_sec != kTime);
}

int main(void) {
  checkFiles();
  checkChanges();
  checkSignals();
  checkTime();
  return failures;
}
