#include <dirent.h>
#include <sys/stat.h>

#include <memory>
#include <string_view>

#include "command_access/topo_command_access.h"
#include "common_define.h"

namespace tolk {

namespace {

constexpr std::string_view kMellanoxPrefix = "mlx";

/// The name that the adapter's driver has given it; empty when it has none.
std::string readMellanoxName(const std::string& sbdf) {
  const std::string path = "/sys/bus/pci/devices/" + sbdf + "/infiniband";
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    TOLK_LOG(kInfo) << "sbdf " << sbdf << " is not mellanox card";
    return {};
  }
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(path.c_str()), ::closedir);
  if (folder == nullptr) {
    TOLK_LOG(kError) << path << "open failed";  // sic
    return {};
  }
  while (const dirent* entry = ::readdir(folder.get())) {
    const std::string_view name = entry->d_name;
    if (entry->d_type == DT_DIR && name.starts_with(kMellanoxPrefix)) return std::string(name);
  }
  return {};
}

}  // namespace

void TopoCommandAccess::queryMellanoxName(const std::vector<std::string>& sbdfs,
                                          std::map<std::string, std::string>& names) {
  for (const auto& sbdf : sbdfs) {
    if (auto name = readMellanoxName(sbdf); !name.empty()) names[std::move(name)] = sbdf;
  }
}

}  // namespace tolk
