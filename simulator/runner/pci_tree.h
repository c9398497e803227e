// The PCI side of a host's /sys: functions with the bridges above them, adapters, mediated devices.
#ifndef PCI_TREE_H
#define PCI_TREE_H

#include <string>

#include "file_tree.h"
#include "host.h"

/// The folder of a function below /sys/devices.
std::string functionFolder(const PciPlace& place);

void writeFunction(FileTree& tree, const Host& host, const PciFunction& function);
void writeAdapter(FileTree& tree, const Host& host, const Adapter& adapter);

/// Types and vGPUs of all functions that can carry them, and what a guest is told of its share.
void writeMediated(FileTree& tree, const Host& host);

/// "0-31,64" as the kernel's mask of CPUs.
std::string cpuMask(const std::string& cpus);

#endif
