#include <malloc.h>

#include <string>

#include "controller.h"

int main(int argc, char** argv) {
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
