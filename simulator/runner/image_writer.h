// Builds the image of a host, which the preload library maps.
#ifndef IMAGE_WRITER_H
#define IMAGE_WRITER_H

#include <string>
#include <vector>

#include "fault_spec.h"
#include "host.h"

/// The file that stands for a node, by what the kernel tells of it.
struct NodeFile {
  uint64_t device = 0;
  uint64_t inode = 0;
};

/// A path that comes and goes with a node of the host.
struct NodePath {
  size_t node;
  std::string path;
};

/// What the image has to know of the files of a host.
struct HostPaths {
  std::vector<NodeFile> files;       // those of `host.nodes`, in order
  std::vector<NodePath> nodePaths;   // of the nodes that can come and go
  std::vector<std::string> removed;  // what the program must not find although the machine has it
};

/// The bytes of the image.
std::string makeImage(const Host& host, const HostPaths& paths, const std::vector<FaultSpec>& faults);

/// Takes over what commands changed: values, positions in sequences, the number of calls. Both images
/// must come from one description; false, and nothing done, when they don't.
bool carryState(const std::string& from, std::string& to);

#endif
