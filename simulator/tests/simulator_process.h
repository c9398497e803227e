// Runs ovgpu-sim of this build.
#ifndef SIMULATOR_PROCESS_H
#define SIMULATOR_PROCESS_H

#include <string>
#include <vector>

#include "scratch_folder.h"

struct Outcome {
  int status = 0;
  std::string out;
  std::string error;
};

/// `folder` is where ovgpu-sim and its parts lie; that of the build when it is empty.
Outcome runSimulator(const std::vector<std::string>& arguments, const std::string& folder = {});

/// Path of a program that the tests start.
std::string probe(const std::string& name);

std::vector<std::string> linesOf(const std::string& text);

#endif
