#include "linux/mdev/mdev_base.h"

#include "kelp_log.h"
#include "linux/fs_helper.h"
#include "rusk/text.h"

namespace kelp::linux_ {
namespace {

/// An attribute is a page at most, and no machine has larger pages. A description that goes on and on would
/// hold up the start of every command, since each of its options is looked at.
constexpr std::size_t kLongestAttribute = 64 << 10;

}  // namespace

std::string_view MdevBase::getName() const {
  return std::string_view(path_).substr(path_.rfind('/') + 1);
}

int MdevBase::iterEntries(const std::string& path, const std::function<void(const char* name)>& callback) {
  return FsHelper::iterEntries(
      path,
      [&](const dirent& entry) {
        if (const std::string_view name = entry.d_name; name != "." && name != "..") {
          callback(entry.d_name);
        }
        return true;
      },
      kDirectories | kLinks);
}

Stated<std::string> MdevBase::readText(const char* file) const {
  std::string text;
  if (FsHelper::read(path_ + file, text) < 0) {
    return KelpReturn::kReadFailed;
  }
  if (text.size() > kLongestAttribute) {
    KELP_LOG(kError) << "Read text file:" << path_ + file << ", longer than an attribute";
    return KelpReturn::kReadFailed;
  }
  return std::string(rusk::trim(text));
}

Stated<unsigned int> MdevBase::readNumber(const char* file, const char* failure) const {
  if (const auto text = readText(file); text.ok()) {
    if (const auto number = rusk::parseNumber<unsigned int>(text.value())) {
      return *number;
    }
  }
  KELP_LOG(kError) << failure << path_ + file;
  return KelpReturn::kReadFailed;
}

}  // namespace kelp::linux_
