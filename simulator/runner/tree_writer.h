// Writes the files of a host: /sys, /proc, /dev, /etc and /var as the driver makes them.
#ifndef TREE_WRITER_H
#define TREE_WRITER_H

#include <string>

#include "file_tree.h"
#include "host.h"
#include "image_writer.h"

class TreeWriter {
 public:
  /// `folder` exists; "tree" in it will stand for "/". "parked" holds, at the same paths, what belongs to
  /// nodes that are not there now, and "events" what waits in the queues.
  explicit TreeWriter(const std::string& folder);

  /// Throws HostError when a file cannot be written.
  void write(const Host& host);

  /// What the image has to know, for a host that is written in `folder`.
  static HostPaths pathsOf(const std::string& folder, const Host& host);

 private:
  void writeDriver(const Host& host);
  void writeDriverOf(const PciFunction& function, size_t index);
  void writeNodes(const Host& host);
  void writeGeneral(const Host& host);
  void writeEvents(const Host& host);
  void applyExtras(const Host& host);

  FileTree tree;
  FileTree parked;
  FileTree events;
};

#endif
