#include "host_document.h"

#include <algorithm>
#include <fstream>
#include <set>

#include "hints.h"
#include "host_error.h"
#include "json_cursor.h"
#include "value_reader.h"

namespace fs = std::filesystem;

namespace {

nlohmann::json parseFile(const fs::path& file) {
  std::ifstream stream(file);
  if (!stream) throw HostError(file.string() + ": the host description cannot be opened");
  try {
    return nlohmann::json::parse(stream, nullptr, true, true);
  } catch (const nlohmann::json::exception& error) {
    // "[json.exception.parse_error.101] parse error at line 3, column 1: ...", or of a number
    const std::string text = error.what();
    const size_t end = text.find("] ");
    throw HostError(file.string() + ": " + (end == std::string::npos ? text : text.substr(end + 2)));
  }
}

// "gpus" as an object changes the entries that the extended host has, by their place. Another model is
// another GPU and takes over nothing.
void patchGpus(nlohmann::json& gpus, const JsonCursor& patch) {
  for (const auto& [text, entry] : patch.members()) {
    const auto index = numberFromText(text);
    if (!index || *index >= gpus.size()) {
      entry.failWith("expected the place of a GPU entry of the extended host, 0 to " +
                     std::to_string(gpus.size() - 1));
    }
    if (entry.find("model") || entry.find("device_id")) {
      gpus[*index] = entry.value();
    } else {
      mergeInto(gpus[*index], entry.value());
    }
  }
}

}  // namespace

void mergeInto(nlohmann::json& base, const nlohmann::json& patch) {
  if (!patch.is_object() || !base.is_object() || (!patch.empty() && isSingleValue(patch)) ||
      (!base.empty() && isSingleValue(base))) {
    base = patch;
    return;
  }
  for (const auto& [key, value] : patch.items()) {
    if (base.contains(key)) {
      mergeInto(base[key], value);
    } else {
      base[key] = value;
    }
  }
}

HostLibrary::HostLibrary(std::vector<fs::path> hostFolders) : folders(std::move(hostFolders)) {}

fs::path HostLibrary::findFile(const std::string& nameOrFile) const {
  if (nameOrFile.find('/') != std::string::npos || nameOrFile.ends_with(".json")) return nameOrFile;
  for (const fs::path& folder : folders) {
    fs::path file = folder / (nameOrFile + ".json");
    if (std::error_code error; fs::exists(file, error)) return file;
  }
  const std::vector<std::string> known = names();
  std::string all;
  for (const std::string& name : known) all += (all.empty() ? "" : ", ") + name;
  throw HostError("no host \"" + nameOrFile + "\"" + hintFor(nameOrFile, {known.begin(), known.end()}) +
                  (all.empty() ? " (no hosts were found)" : " (" + all + ")"));
}

HostDocument HostLibrary::load(const std::string& nameOrFile) const {
  return loadFile(findFile(nameOrFile), {});
}

HostDocument HostLibrary::loadFile(const fs::path& file, std::vector<fs::path> chain) const {
  HostDocument document{parseFile(file), file.string()};
  const JsonCursor top(document.json, document.file);
  if (!document.json.is_object()) top.fail("an object");
  const auto extends = top.find("extends");
  if (!extends) return document;

  chain.push_back(file);
  const std::string name = extends->text();
  // A file is told by its own folder, a name by the library.
  const bool isFile = name.find('/') != std::string::npos || name.ends_with(".json");
  const fs::path base = isFile ? file.parent_path() / name : findFile(name);
  if (std::find(chain.begin(), chain.end(), base) != chain.end()) {
    extends->failWith("the host extends itself");
  }
  nlohmann::json merged = loadFile(base, chain).json;
  const auto gpus = top.find("gpus");
  if (gpus && gpus->value().is_object()) {
    patchGpus(merged["gpus"], *gpus);
    document.json.erase("gpus");
  }
  document.json.erase("extends");
  mergeInto(merged, document.json);
  document.json = std::move(merged);
  return document;
}

std::vector<std::string> HostLibrary::names() const {
  std::set<std::string> found;
  for (const fs::path& folder : folders) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
      if (entry.path().extension() == ".json") found.insert(entry.path().stem().string());
    }
  }
  return {found.begin(), found.end()};
}
