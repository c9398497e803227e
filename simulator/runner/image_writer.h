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

/// The bytes of the image. `files` are those of `host.nodes`, in order; `removed` are paths that the
/// program must not find although the machine has them.
std::string makeImage(const Host& host, const std::vector<NodeFile>& files,
                      const std::vector<FaultSpec>& faults, const std::vector<std::string>& removed);

/// Takes over what commands changed: values, positions in sequences, the number of calls. Both images
/// must come from one description; false, and nothing done, when they don't.
bool carryState(const std::string& from, std::string& to);

#endif
