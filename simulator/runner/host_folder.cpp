#include "host_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "host_error.h"
#include "image_writer.h"
#include "tree_writer.h"

namespace fs = std::filesystem;

namespace {

// In memory, if there is such a place: a tree is hundreds of small files.
std::string placeForFolders() {
  if (const char* const chosen = std::getenv("TMPDIR"); chosen && *chosen) return chosen;
  constexpr const char* kInMemory = "/dev/shm";
  if (access(kInMemory, W_OK | X_OK) == 0) return kInMemory;
  return fs::temp_directory_path().string();
}

std::string canonical(const std::string& path) {
  char resolved[PATH_MAX];
  if (!realpath(path.c_str(), resolved)) throw HostError(path + ": " + std::strerror(errno));
  return resolved;
}

std::string readFile(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream content;
  content << stream.rdbuf();
  return content.str();
}

void writeFile(const std::string& path, const std::string& content) {
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  stream << content;
  stream.close();
  if (!stream) throw HostError("cannot write " + path + ": " + std::strerror(errno));
}

// Keeps commands from changing an image while it is read and replaced. Holds nothing when there is none.
class FileLock {
 public:
  explicit FileLock(const std::string& path) : fd(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (fd >= 0) flock(fd, LOCK_EX);
  }
  ~FileLock() {
    if (fd >= 0) close(fd);
  }
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

 private:
  int fd;
};

constexpr const char* kCanary = "/tree/sys/.ovgpu-sim";

}  // namespace

HostFolder::HostFolder(const std::string& kept) : isPrivate(kept.empty()) {
  if (isPrivate) {
    folder = placeForFolders() + "/ovgpu-sim.XXXXXX";
    if (!mkdtemp(folder.data())) throw HostError("cannot make " + folder + ": " + std::strerror(errno));
  } else {
    std::error_code error;
    fs::create_directories(kept, error);
    if (error) throw HostError("--state " + kept + ": " + error.message());
    folder = kept;
  }
  folder = canonical(folder);
}

HostFolder::~HostFolder() {
  std::error_code ignored;
  if (isPrivate) fs::remove_all(folder, ignored);
}

bool HostFolder::hasHost() const {
  return access((folder + "/image").c_str(), F_OK) == 0;
}

std::string HostFolder::canary() const {
  return readFile(folder + kCanary);
}

std::string HostFolder::image() const {
  return readFile(folder + "/image");
}

void HostFolder::prepare(const Host& host, const std::vector<FaultSpec>& faults) {
  if (!hasHost()) {
    if (!isPrivate && !fs::is_empty(folder)) {
      throw HostError("--state " + folder + ": the folder is not empty and holds no host");
    }
    writeNew(host);
  }
  writeImage(host, faults);
}

void HostFolder::writeNew(const Host& host) {
  TreeWriter(folder).write(host);
  // Of this folder alone, and short enough for the launcher.
  writeFile(folder + kCanary,
            std::to_string(getpid()) + " " + folder.substr(folder.rfind('/')).substr(0, 40));
  fs::create_directory(folder + "/buffers");
  writePackages(host);
}

// packages/TOOL/PACKAGE holds the answer, packages/TOOL/PACKAGE.status its exit status.
void HostFolder::writePackages(const Host& host) const {
  for (const auto& [tool, answers] : host.packages) {
    const std::string place = folder + "/packages/" + tool;
    fs::create_directories(place);
    for (const auto& [package, answer] : answers) {
      writeFile(place + "/" + package, answer.text);
      writeFile(place + "/" + package + ".status", std::to_string(answer.status));
    }
  }
}

void HostFolder::writeImage(const Host& host, const std::vector<FaultSpec>& faults) const {
  const std::string path = folder + "/image";
  std::string image = makeImage(host, TreeWriter::pathsOf(folder, host), faults);
  const FileLock lock(path);
  if (hasHost()) {
    const std::string kept = readFile(path);
    if (!carryState(kept, image)) {
      throw HostError("--state " + folder + ": holds another host than " + host.name +
                      ", or that host before it was changed; name another folder or remove this one");
    }
    // Commands that run at the same time share it.
    if (image == kept) return;
  }
  // A new file in the place of the old one: a command that still runs keeps what it has mapped.
  const std::string fresh = path + "." + std::to_string(getpid());
  writeFile(fresh, image);
  if (rename(fresh.c_str(), path.c_str()) != 0) {
    throw HostError("cannot write " + path + ": " + std::strerror(errno));
  }
}
