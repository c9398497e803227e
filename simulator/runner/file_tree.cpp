#include "file_tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "host_error.h"

namespace fs = std::filesystem;

namespace {

[[noreturn]] void failOn(const std::string& path) {
  throw HostError("cannot write " + path + ": " + std::strerror(errno));
}

}  // namespace

FileTree::FileTree(std::string folder) : root(std::move(folder)) {}

void FileTree::makeRoot() {
  if (mkdir(root.c_str(), 0755) != 0) failOn(root);
}

bool FileTree::hasFolder(const std::string& path) const {
  return std::binary_search(made.begin(), made.end(), path);
}

void FileTree::noteFolder(const std::string& path) {
  made.insert(std::lower_bound(made.begin(), made.end(), path), path);
}

void FileTree::addFolder(const std::string& path) {
  if (path.empty() || hasFolder(path)) return;
  makeParents(path);
  if (mkdir(under(path).c_str(), 0755) != 0 && errno != EEXIST) failOn(under(path));
  noteFolder(path);
}

void FileTree::makeParents(const std::string& path) {
  addFolder(path.substr(0, path.rfind('/')));
}

void FileTree::addFile(const std::string& path, std::string_view content) {
  makeParents(path);
  const int fd = open(under(path).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) failOn(under(path));
  const ssize_t written = ::write(fd, content.data(), content.size());
  close(fd);
  if (written != static_cast<ssize_t>(content.size())) failOn(under(path));
}

void FileTree::addLink(const std::string& path, const std::string& target) {
  makeParents(path);
  const std::string to = target.starts_with('/')
                             ? fs::path(target).lexically_relative(fs::path(path).parent_path()).string()
                             : target;
  if (symlink(to.c_str(), under(path).c_str()) != 0) failOn(under(path));
}

void FileTree::addNode(const std::string& path, long size) {
  addFile(path, "");
  if (truncate(under(path).c_str(), size) != 0) failOn(under(path));
}

void FileTree::replaceFile(const std::string& path, std::string_view content) {
  std::error_code ignored;
  const std::string parent = path.substr(0, path.rfind('/'));
  fs::create_directories(under(path.ends_with('/') ? path : parent), ignored);
  if (path.ends_with('/')) return;
  noteFolder(parent);
  addFile(path, content);
}

void FileTree::replaceLink(const std::string& path, const std::string& target) {
  remove(path);
  addLink(path, target);
}

void FileTree::remove(const std::string& path) {
  std::error_code ignored;
  fs::remove_all(under(path), ignored);
}
