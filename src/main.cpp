#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <string>

#include "controller.h"

namespace {

/// The number of a stream that the caller has closed would go to the next file that is opened, and what
/// is printed into that file: the log, or a GPU's node.
void occupyClosedStreams() {
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(fd, F_GETFD) < 0) static_cast<void>(::open("/dev/null", O_RDWR));
  }
}

}  // namespace

int main(int argc, char** argv) {
  occupyClosedStreams();
  // One thread works at a time, and an arena for each would cost more than the locks that it saves.
  mallopt(M_ARENA_MAX, 1);

  tolk::Controller controller;
  if (const int failure = controller.start(); failure != 0) return failure;

  std::string command;
  for (int i = 1; i < argc; ++i) {
    command += argv[i];
    command += ' ';
  }
  controller.input(command);
  controller.join();
  return static_cast<int>(controller.exitCode());
}
