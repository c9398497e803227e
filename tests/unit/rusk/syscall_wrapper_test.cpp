#include "rusk/syscall_wrapper.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace {

class Scripted : public rusk::SyscallWrapper {
 public:
  int ioctl(int fd, unsigned long request, void* argument) override {
    *static_cast<unsigned long*>(argument) = request;
    errno = EAGAIN;
    return fd + 1;
  }
  int open(const char* path, int) override {
    opened = path;
    return 1000;
  }
  std::string opened;
};

TEST(SyscallWrapper, OpenReturnsWhatTheSystemReturns) {
  rusk::SyscallWrapper system;
  const int fd = system.open("/dev/null", O_RDWR | O_CLOEXEC);
  ASSERT_GE(fd, 0);
  EXPECT_EQ(::fcntl(fd, F_GETFD), FD_CLOEXEC);
  ::close(fd);
}

TEST(SyscallWrapper, FailuresLeaveTheSystemsErrno) {
  rusk::SyscallWrapper system;
  errno = 0;
  EXPECT_EQ(system.open("/dev/null/below", O_RDONLY), -1);
  EXPECT_EQ(errno, ENOTDIR);
  errno = 0;
  EXPECT_EQ(system.ioctl(-1, 0, nullptr), -1);
  EXPECT_EQ(errno, EBADF);
}

TEST(SyscallWrapper, IoctlPassesRequestAndArgument) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ASSERT_EQ(::write(ends[1], "abc", 3), 3);
  int waiting = 0;
  EXPECT_EQ(rusk::SyscallWrapper().ioctl(ends[0], FIONREAD, &waiting), 0);
  EXPECT_EQ(waiting, 3);
  ::close(ends[0]);
  ::close(ends[1]);
}

TEST(SyscallWrapper, MappingIsThatOfTheFile) {
  rusk::SyscallWrapper system;
  const int fd = ::memfd_create("mapped", MFD_CLOEXEC);
  ASSERT_GE(fd, 0);
  ASSERT_EQ(::write(fd, "mapped", 6), 6);
  void* const bytes = system.mmap(6, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  ASSERT_NE(bytes, MAP_FAILED);
  EXPECT_EQ(std::string(static_cast<const char*>(bytes), 6), "mapped");
  static_cast<char*>(bytes)[0] = 'M';
  char first = 0;
  EXPECT_EQ(::pread(fd, &first, 1, 0), 1);
  EXPECT_EQ(first, 'M');
  EXPECT_EQ(system.munmap(bytes, 6), 0);
  EXPECT_EQ(::msync(bytes, 6, MS_ASYNC), -1) << "nothing is mapped there any more";
  ::close(fd);
}

TEST(SyscallWrapper, FailedMappingLeavesTheSystemsErrno) {
  errno = 0;
  EXPECT_EQ(rusk::SyscallWrapper().mmap(4096, PROT_READ, MAP_SHARED, -1, 0), MAP_FAILED);
  EXPECT_EQ(errno, EBADF);
}

TEST(SyscallWrapper, SleepTakesItsTime) {
  timespec before{};
  timespec after{};
  timespec left{};
  ::clock_gettime(CLOCK_MONOTONIC, &before);
  EXPECT_EQ(rusk::SyscallWrapper().nanosleep({.tv_sec = 0, .tv_nsec = 2'000'000}, left), 0);
  ::clock_gettime(CLOCK_MONOTONIC, &after);
  EXPECT_GE((after.tv_sec - before.tv_sec) * 1'000'000'000 + after.tv_nsec - before.tv_nsec, 2'000'000);
  errno = 0;
  EXPECT_EQ(rusk::SyscallWrapper().nanosleep({.tv_sec = 0, .tv_nsec = 1'000'000'000}, left), -1);
  EXPECT_EQ(errno, EINVAL);
}

TEST(SyscallWrapper, InstanceIsOneObject) {
  EXPECT_EQ(&rusk::SyscallWrapper::instance(), &rusk::SyscallWrapper::instance());
}

TEST(SyscallWrapper, AnotherCanBePutInPlaceAndTakenAway) {
  rusk::SyscallWrapper* const real = &rusk::SyscallWrapper::instance();
  Scripted scripted;
  EXPECT_EQ(rusk::SyscallWrapper::exchange(&scripted), nullptr);
  unsigned long request = 0;
  EXPECT_EQ(rusk::SyscallWrapper::instance().ioctl(6, 0x4D05, &request), 7);
  EXPECT_EQ(errno, EAGAIN);
  EXPECT_EQ(request, 0x4D05u);
  EXPECT_EQ(rusk::SyscallWrapper::instance().open("/dev/ovgpu.0", O_RDWR), 1000);
  EXPECT_EQ(scripted.opened, "/dev/ovgpu.0");

  EXPECT_EQ(rusk::SyscallWrapper::exchange(nullptr), &scripted);
  EXPECT_EQ(&rusk::SyscallWrapper::instance(), real);
}

}  // namespace
