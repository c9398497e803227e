// Host descriptions as JSON: where they are found, what they extend.
#ifndef HOST_DOCUMENT_H
#define HOST_DOCUMENT_H

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

struct HostDocument {
  nlohmann::json json;  // with all that it extends; has no "extends" any more
  std::string file;     // for messages
};

class HostLibrary {
 public:
  /// `folders` hold NAME.json files and are looked through in order.
  explicit HostLibrary(std::vector<std::filesystem::path> folders);

  /// By name, or by file when the text has a "/" or ends in ".json".
  HostDocument load(const std::string& nameOrFile) const;

  /// All that can be named, sorted.
  std::vector<std::string> names() const;

 private:
  std::filesystem::path findFile(const std::string& nameOrFile) const;
  HostDocument loadFile(const std::filesystem::path& file, std::vector<std::filesystem::path> chain) const;

  std::vector<std::filesystem::path> folders;
};

/// Lays `patch` over `base`: objects member by member, all else replaced.
void mergeInto(nlohmann::json& base, const nlohmann::json& patch);

#endif
