#include "linux/topology/pci_node_info.h"

#include <limits.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <optional>

#include "kelp_log.h"
#include "linux/entry_names.h"
#include "linux/file_descriptor.h"
#include "linux/paths.h"
#include "pci_sbdf.h"
#include "rusk/text.h"

namespace kelp::linux_ {
namespace {

constexpr unsigned kMakersVendorId = 0x4F56;

// The upper 16 bits of a class: base class and subclass.
constexpr unsigned kDisplayBaseClass = 0x03;
constexpr unsigned kBridgeBaseClass = 0x06;
constexpr unsigned kHostBridgeClass = 0x0600;
constexpr unsigned kEthernetClass = 0x0200;
constexpr unsigned kInfinibandClass = 0x0207;

constexpr std::size_t kLongestValue = 20;
constexpr std::size_t kShortestDomain = 4;

/// In the target of a function's link, "../../../devices/pci0000:00/...", the parts before the root.
constexpr std::size_t kPartsBeforeRoot = 4;

PciNodeType typeOf(unsigned nodeClass, unsigned vendorId) {
  const unsigned baseClass = nodeClass >> 8;
  if (baseClass == kDisplayBaseClass) {
    return vendorId == kMakersVendorId ? PciNodeType::kGpu : PciNodeType::kUnknown;
  }
  if (baseClass == kBridgeBaseClass) {
    return nodeClass == kHostBridgeClass ? PciNodeType::kHostBridge : PciNodeType::kOtherBridge;
  }
  if (nodeClass == kEthernetClass || nodeClass == kInfinibandClass) {
    return PciNodeType::kNetworkAdapter;
  }
  return PciNodeType::kUnknown;
}

/// The files of one function.
class NodeFolder {
 public:
  explicit NodeFolder(const std::string& sbdf) : path_(std::string(kPciDevicesFolder) + "/" + sbdf) {}

  /// Nothing for a file that is missing or empty.
  std::optional<std::string> readText(const char* name) const {
    const std::string path = path_ + "/" + name;
    const FileDescriptor file = FileDescriptor::openForReading(path);
    std::array<char, kLongestValue> text;
    const ssize_t count = file.isOpen() ? ::read(file.get(), text.data(), text.size()) : -1;
    if (count <= 0) {
      KELP_LOG(kError) << "read from " << path << " failed";
      return std::nullopt;
    }
    return std::string(rusk::trim({text.data(), static_cast<std::size_t>(count)}));
  }

  /// A number of up to four hexadecimal digits; what stands behind them is cut off.
  std::optional<unsigned> readNumber(const char* name) const {
    const auto text = readText(name);
    unsigned number = 0;
    if (!text) {
      return std::nullopt;
    }
    if (std::sscanf(text->c_str(), "0x%04x", &number) != 1) {
      KELP_LOG(kError) << "no number in " << path_ + "/" + name;
      return std::nullopt;
    }
    return number;
  }

  /// The function's ancestors and itself; nothing for a link of another form.
  std::optional<std::vector<std::string>> readPath() const {
    std::array<char, PATH_MAX> target;
    const ssize_t length = ::readlink(path_.c_str(), target.data(), target.size());
    std::vector<std::string> parts;
    if (length >= 0) {
      parts = rusk::split({target.data(), static_cast<std::size_t>(length)}, '/');
    }
    if (parts.size() < kPartsBeforeRoot) {
      KELP_LOG(kError) << "no path of " << path_;
      return std::nullopt;
    }
    parts.erase(parts.begin(), parts.begin() + kPartsBeforeRoot);
    return parts;
  }

 private:
  std::string path_;
};

}  // namespace

Stated<std::string> normaliseSbdf(std::string_view sbdf) {
  if (!isHexPciAddress(sbdf)) {
    KELP_LOG(kError) << "Incorrect sbdf - " << sbdf;
    return KelpReturn::kFailure;
  }
  std::size_t domainLength = sbdf.find(':');
  while (domainLength > kShortestDomain && sbdf.front() == '0') {
    sbdf.remove_prefix(1);
    --domainLength;
  }
  return std::string(sbdf);
}

Stated<PciNodeInfo> readPciNode(const std::string& sbdf) {
  if (!isHexPciAddress(sbdf)) {
    KELP_LOG(kError) << "Incorrect sbdf - " << sbdf;
    return KelpReturn::kFailure;
  }
  const NodeFolder folder(sbdf);
  const auto nodeClass = folder.readNumber("class");
  const auto vendorId = nodeClass ? folder.readNumber("vendor") : std::nullopt;
  auto path = vendorId ? folder.readPath() : std::nullopt;
  const auto deviceId = path ? folder.readNumber("device") : std::nullopt;
  auto cpuList = deviceId ? folder.readText("local_cpulist") : std::nullopt;
  auto numaNode = cpuList ? folder.readText("numa_node") : std::nullopt;
  if (!numaNode) {
    return KelpReturn::kFailure;
  }
  const std::uint64_t packed = pciSbdfToUint64(sbdf);
  return PciNodeInfo{.domain = sbdfDomain(packed),
                     .bus = sbdfBus(packed),
                     .deviceId = *deviceId,
                     .type = typeOf(*nodeClass, *vendorId),
                     .cpuList = std::move(*cpuList),
                     .numaNode = std::move(*numaNode),
                     .path = std::move(*path)};
}

}  // namespace kelp::linux_
