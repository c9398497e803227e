#pragma once

#include <dirent.h>

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "kelp_return.h"

namespace kelp::linux_ {

/// A folder of the host's mediated device framework: a GPU that carries vGPUs, a type that it offers, or
/// a vGPU. Holds the path alone and reads afresh on each call. A file that cannot be read, or that holds
/// no number where one belongs, is state 8.
class MdevBase {
 protected:
  MdevBase() = default;
  explicit MdevBase(std::string path) : path_(std::move(path)) {}
  ~MdevBase() = default;

  const std::string& getPath() const { return path_; }
  /// Name of the folder itself.
  std::string_view getName() const;

  /// Calls back for each folder and link in a folder, "." and ".." left out. 0, or -1 when it cannot be
  /// walked.
  static int iterEntries(const std::string& path, const std::function<void(const char* name)>& callback);

  /// The text of a file below the folder, white space cut at both ends.
  Stated<std::string> readText(const char* file) const;
  /// A decimal number. `failure` is what the log says in front of the path of a file that has none.
  Stated<unsigned int> readNumber(const char* file, const char* failure) const;

 private:
  std::string path_;
};

}  // namespace kelp::linux_
