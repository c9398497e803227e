#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "linux/file_descriptor.h"
#include "pcie_values.h"

namespace kelp::linux_ {

/// Reads the PCI facts of one function from its folder in sysfs, for drivers that do not tell them.
/// Holds the address alone; a failure is logged here.
class PciAccess {
 public:
  /// `sbdf` is packed as pci_sbdf.h says.
  explicit PciAccess(std::uint64_t sbdf) : sbdf_(sbdf) {}

  /// Fills every field in a fixed order, each with state 0, by one open of one file per fact: ten in
  /// all. 0, or -1 at the first failure.
  int getPciInfo(PcieInfo& info) const;

  /// Opens a file of the function; a closed descriptor on failure.
  FileDescriptor sysFsInit(const char* name) const;
  /// Number of bytes read, -1 on failure.
  std::ptrdiff_t readBytes(const char* name, std::size_t offset, std::span<char> buffer) const;

 private:
  static constexpr std::size_t kBarCount = 6;
  static constexpr std::size_t kHeaderSize = 64;

  /// A base address register as the kernel sees it.
  struct Bar {
    std::uint64_t base = 0;  ///< the low four bits are flags
    std::uint64_t size = 0;  ///< bytes
  };
  using Bars = std::array<Bar, kBarCount>;
  using Header = std::array<std::uint8_t, kHeaderSize>;

  bool readText(const char* name, std::string& text) const;
  bool readId(const char* name, Stated<unsigned int>& id) const;
  bool readLinkSpeed(const char* name, Stated<float>& speed) const;
  bool readLinkWidth(const char* name, Stated<unsigned int>& width) const;
  /// The 64 bytes of the configuration space from an offset on.
  bool readConfig(std::size_t offset, Header& header) const;
  bool readSubsystem(PcieInfo& info) const;
  bool readRevision(PcieInfo& info) const;
  bool readResource(Bars& bars) const;
  bool readBars(PcieInfo& info) const;

  std::uint64_t sbdf_;
};

/// All facts of the function at an address as sysfs spells it. State 1 when one cannot be had.
Stated<PcieInfo> readPcieInfoFromSysfs(const std::string& sbdf);

}  // namespace kelp::linux_
