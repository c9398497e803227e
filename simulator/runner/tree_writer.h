// Writes the files of a host below a folder: /sys, /proc, /dev, /etc and /var as the driver makes them.
#ifndef TREE_WRITER_H
#define TREE_WRITER_H

#include <string>
#include <vector>

#include "host.h"
#include "image_writer.h"
#include "sim_model.h"

class TreeWriter {
 public:
  /// `root` is the folder that stands for "/"; it exists and is empty.
  explicit TreeWriter(std::string root);

  /// Throws HostError when a file cannot be written.
  void write(const Host& host);

  /// Paths of the overlaid folders that the host does not have, for the image.
  static std::vector<std::string> removedPaths(const Host& host);

  /// What stands for the nodes of a host whose tree is written.
  static std::vector<NodeFile> nodeFiles(const std::string& root, const Host& host);

 private:
  void writeDriver(const Host& host);
  void writeFunction(const Host& host, const PciFunction& function, size_t index);
  void writeNodes(const Host& host);
  void writeGeneral(const Host& host);
  void applyExtras(const Host& host);

  void addFolder(const std::string& path);
  void addFile(const std::string& path, std::string_view content);
  void addLink(const std::string& path, const std::string& target);
  void addQueue(const std::string& path);
  void makeParents(const std::string& path);
  std::string under(const std::string& path) const { return root + path; }

  std::string root;
  std::vector<std::string> made;  // folders that are known to be there, sorted
};

/// "0-31,64" as the kernel's mask of CPUs.
std::string cpuMask(const std::string& cpus);

#endif
