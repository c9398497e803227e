#include "rusk/syscall_wrapper.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
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
