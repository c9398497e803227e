#pragma once

#include <optional>
#include <string>

namespace tolk {

/// Whether this host can carry mediated devices. Its GPUs then share their memory with guests, and
/// processes belong to the guests. Where that cannot be looked up they may be there, so that nothing is
/// changed under a guest.
bool hostHasMdevBus();

/// Lets this process have as many files open as it may allow itself. Each vGPU takes two, and a shell's limit
/// of 1024 ends at some 500 of them. Where the limit cannot be raised it stays as it is.
void raiseOpenFileLimit();

/// The text of a small file, cut where it is longer than such a file can be; nothing when it cannot be
/// opened.
std::optional<std::string> readWholeFile(const char* path);

/// Where a container or a machine image names the environment it was made for.
inline constexpr const char* kEnvironmentFile = "/etc/ovparams";

/// Whether the file has a line that is exactly "envType: 0". A file that cannot be opened has none.
bool isTargetEnv(const char* path);

}  // namespace tolk
