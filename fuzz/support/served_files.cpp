#include "support/served_files.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "rusk/text.h"
#include "support/property.h"

namespace tolk_fuzz {
namespace {

constexpr char kPartEnd = 30;

ServedFiles* serving = nullptr;

int openPart() {
  const std::string* const part = serving->next();
  if (part == nullptr) {
    errno = ENOENT;
    return -1;
  }
  const int fd = ::memfd_create("part", MFD_CLOEXEC);
  const bool written = ::pwrite(fd, part->data(), part->size(), 0) == static_cast<ssize_t>(part->size());
  expect(written, "a file in memory can be written");
  return fd;
}

std::FILE* openStream() {
  const int fd = openPart();
  return fd < 0 ? nullptr : ::fdopen(fd, "r");
}

}  // namespace

ServedFiles::ServedFiles(std::string_view text) : parts_(rusk::split(text, kPartEnd)) {
  serving = this;
}

ServedFiles::~ServedFiles() {
  serving = nullptr;
}

const std::string* ServedFiles::next() {
  return taken_ < parts_.size() ? &parts_[taken_++] : nullptr;
}

}  // namespace tolk_fuzz

using tolk_fuzz::openPart;
using tolk_fuzz::openStream;
using tolk_fuzz::serving;

extern "C" {

int __real_open(const char* path, int flags, ...);
int __wrap_open(const char* path, int flags, ...) {
  if (serving != nullptr) return openPart();
  std::va_list rest;
  va_start(rest, flags);
  const auto mode = va_arg(rest, mode_t);
  va_end(rest);
  return __real_open(path, flags, mode);
}

int __real_access(const char* path, int mode);
int __wrap_access(const char* path, int mode) {
  return serving != nullptr ? 0 : __real_access(path, mode);
}

std::FILE* __real_fopen(const char* path, const char* mode);
std::FILE* __wrap_fopen(const char* path, const char* mode) {
  // What is written is a finding of the fuzzer's.
  return serving != nullptr && *mode == 'r' ? openStream() : __real_fopen(path, mode);
}

std::FILE* __wrap_popen(const char* /*command*/, const char* /*mode*/) {
  return openStream();
}
int __wrap_pclose(std::FILE* stream) {
  return std::fclose(stream);
}

}  // extern "C"
