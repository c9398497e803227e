// The folder of one simulated host: "tree" with its files, "parked" with those of nodes that are not there
// now, "events" with its event queues, "image" with its devices, "packages" with what the package tools
// answer, "buffers" with memory that programs share with the driver. A private one goes when the run is over.
#ifndef HOST_FOLDER_H
#define HOST_FOLDER_H

#include <string>
#include <vector>

#include "fault_spec.h"
#include "host.h"

class HostFolder {
 public:
  /// A fresh private folder, or `kept`, which is made when it is not there.
  explicit HostFolder(const std::string& kept);
  ~HostFolder();
  HostFolder(const HostFolder&) = delete;
  HostFolder& operator=(const HostFolder&) = delete;

  /// Absolute, without links.
  const std::string& path() const { return folder; }

  /// Whether a host was kept here by an earlier run.
  bool hasHost() const;

  /// Brings the host here, or goes on with the one that is kept. Throws HostError when that is another.
  void prepare(const Host& host, const std::vector<FaultSpec>& faults);

  /// The image as it is now.
  std::string image() const;

  /// A text that only a program on this host can read.
  std::string canary() const;

 private:
  void writeNew(const Host& host);
  void writePackages(const Host& host) const;
  void writeImage(const Host& host, const std::vector<FaultSpec>& faults) const;

  std::string folder;
  bool isPrivate;
};

#endif
