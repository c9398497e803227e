// The PCI side of a GPU entry: model, address, place in the topology, link, BARs.
#ifndef PCI_READER_H
#define PCI_READER_H

#include "host.h"
#include "json_cursor.h"

struct PciAddress {
  unsigned domain = 0;
  unsigned bus = 0;
  unsigned device = 0;
  unsigned function = 0;

  std::string text() const;
  /// As records carry it.
  uint64_t packed() const;
};

/// Nothing when the text is not "DDDD:BB:DD.F".
std::optional<PciAddress> parseAddress(const std::string& text);

/// An id that no model has is a device all the same: of the family that its high byte tells, or like the
/// newest one.
Model readModel(const JsonCursor& gpu);
Family familyOf(const Model& model);

int readNumaNode(const JsonCursor& place);
/// A list of CPUs.
std::string readCpus(const JsonCursor& place);
/// What the entry's "upstream" says, or a root port of the host bridge that has the address.
std::vector<std::string> readUpstream(const JsonCursor& entry, const PciAddress& address);

/// Everything but the numbers of nodes. `copy` counts the copies of a repeated entry, `index` the functions
/// of the host, both from 0.
PciFunction readFunction(const JsonCursor& gpu, uint64_t copy, size_t index);

#endif
