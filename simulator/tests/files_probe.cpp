// Looks at the host "bare" through every function of the C and C++ libraries that a program may use, and
// prints what does not look as it should. The exit status is the number of such things.
#include <dirent.h>
#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

namespace fs = std::filesystem;

namespace {

constexpr const char* kVersion = "/proc/driver/vela/version";
constexpr const char* kNode = "/dev/ovgpu.1";
constexpr const char* kDriver = "/sys/bus/pci/drivers/ovgpu";
constexpr const char* kFunction = "/sys/bus/pci/drivers/ovgpu/0000:41:00.0";
constexpr const char* kRealFunction = "/sys/devices/pci0000:40/0000:40:01.0/0000:41:00.0";

int failures = 0;

void check(bool good, const char* what) {
  if (good) return;
  std::printf("%s\n", what);
  ++failures;
}
#define CHECK(condition) check((condition), #condition)

std::string firstLine(FILE* stream) {
  char line[256] = {};
  if (!stream || !std::fgets(line, sizeof line, stream)) return {};
  return line;
}

std::set<std::string> listed(const char* path, unsigned char type) {
  std::set<std::string> names;
  DIR* const folder = opendir(path);
  if (!folder) return names;
  while (const dirent* const entry = readdir(folder)) {
    if (entry->d_name[0] != '.' && entry->d_type == type) names.insert(entry->d_name);
  }
  closedir(folder);
  return names;
}

void checkReading() {
  const std::string version = "package version:3.1.0\n";
  std::string line;
  std::ifstream stream(kVersion);
  std::getline(stream, line);
  CHECK(line + "\n" == version);
  FILE* const file = std::fopen(kVersion, "r");
  CHECK(firstLine(file) == version);
  if (file) std::fclose(file);
  char text[64] = {};
  const int fd = open(kVersion, O_RDONLY | O_CLOEXEC);
  CHECK(read(fd, text, sizeof text - 1) == static_cast<ssize_t>(version.size()));
  close(fd);
  const int other = openat(AT_FDCWD, kVersion, O_RDONLY);
  CHECK(other >= 0);
  close(other);
  FILE* const child = popen("cat /proc/driver/vela/version", "r");
  CHECK(firstLine(child) == version);
  if (child) pclose(child);
  CHECK(open("/proc/driver/vela/nothing", O_RDONLY) < 0);
  CHECK(open("//proc/./driver//vela/version", O_RDONLY) >= 0);
}

void checkFolders() {
  const std::set<std::string> links = listed(kDriver, DT_LNK);
  CHECK((links == std::set<std::string>{"0000:01:00.0", "0000:41:00.0"}));
  CHECK((listed("/sys/bus/pci/drivers/ovgpu/0000:41:00.0/misc", DT_DIR) == std::set<std::string>{"ovgpu.1"}));
  CHECK((listed("/dev", DT_REG) == std::set<std::string>{"ovgpu.0", "ovgpu.1"}));
  CHECK(listed("/proc/driver/vela", DT_DIR).size() == 2);
  size_t entries = 0;
  for (const auto& entry : fs::directory_iterator("/dev/dri")) entries += entry.exists();
  CHECK(entries == 4);
  size_t deep = 0;
  for (const auto& entry : fs::recursive_directory_iterator(kRealFunction)) deep += entry.is_directory();
  CHECK(deep >= 4);
  dirent** names = nullptr;
  const int count = scandir(kDriver, &names, nullptr, alphasort);
  CHECK(count == 4);
  for (int i = 0; i < count; ++i) std::free(names[i]);
  std::free(names);
  const int folder = open(kDriver, O_RDONLY | O_DIRECTORY);
  const int below = openat(folder, "0000:41:00.0/vendor", O_RDONLY);
  CHECK(below >= 0);
  close(below);
  close(folder);
}

void checkStatus() {
  struct stat status {};
  CHECK(stat(kNode, &status) == 0 && S_ISCHR(status.st_mode));
  CHECK(lstat(kFunction, &status) == 0 && S_ISLNK(status.st_mode));
  CHECK(stat(kFunction, &status) == 0 && S_ISDIR(status.st_mode));
  CHECK(fstatat(AT_FDCWD, "/dev/dri/renderD129", &status, 0) == 0 && S_ISCHR(status.st_mode));
  struct statx extended {};
  CHECK(statx(AT_FDCWD, kNode, 0, STATX_MODE, &extended) == 0 && S_ISCHR(extended.stx_mode));
  CHECK(access(kNode, R_OK | W_OK) == 0);
  CHECK(access("/sys/class/mdev_bus", F_OK) != 0);
  CHECK(access("/etc/ovparams", F_OK) != 0);
  CHECK(faccessat(AT_FDCWD, kNode, F_OK, 0) == 0);
  CHECK(euidaccess(kNode, F_OK) == 0);
  CHECK(fs::exists(kNode) && fs::is_character_file(kNode));
  CHECK(fs::is_symlink(kFunction));
  CHECK(fs::file_size(std::string(kRealFunction) + "/config") == 256);
  CHECK(fs::space("/sys").capacity > 0);
  struct statvfs space {};
  CHECK(statvfs("/sys", &space) == 0);
}

void checkLinks() {
  char text[PATH_MAX] = {};
  CHECK(readlink(kFunction, text, sizeof text - 1) > 0 && text[0] == '.');
  CHECK(fs::read_symlink(kFunction).is_relative());
  char resolved[PATH_MAX];
  CHECK(realpath(kFunction, resolved) && std::strcmp(resolved, kRealFunction) == 0);
  char* const made = realpath(kFunction, nullptr);
  CHECK(made && std::strcmp(made, kRealFunction) == 0);
  std::free(made);
  char* const canonical = canonicalize_file_name(kFunction);
  CHECK(canonical && std::strcmp(canonical, kRealFunction) == 0);
  std::free(canonical);
  CHECK(fs::canonical(kFunction) == kRealFunction);
  CHECK(fs::weakly_canonical(std::string(kFunction) + "/none") == std::string(kRealFunction) + "/none");
  CHECK(fs::equivalent(kFunction, kRealFunction));
  CHECK(!realpath("/sys/nothing", resolved));
}

void checkMachine() {
  CHECK(fs::exists("/dev/null") && open("/dev/null", O_RDWR) >= 0);
  CHECK(open("/proc/self/status", O_RDONLY) >= 0);
  CHECK(listed("/proc/self", DT_DIR).contains("fd"));
  CHECK(listed("/proc/1", DT_DIR).contains("fd"));
  CHECK(!fs::exists("/dev/null/x"));
  CHECK(fs::exists("/usr"));
  CHECK(fs::exists("/etc/passwd"));
  std::string words;
  std::ifstream stream("/proc/4242/cmdline");
  std::getline(stream, words, '\0');
  CHECK(words == "/usr/bin/render_job");
  std::ifstream group("/proc/1/cgroup");
  std::getline(group, words);
  CHECK(words == "0::/init.scope");
}

void checkQueue() {
  const int queue = open("/proc/driver/vela/gpu0/event_report", O_RDONLY);
  const int poll = epoll_create1(0);
  epoll_event event{};
  event.events = EPOLLIN;
  CHECK(epoll_ctl(poll, EPOLL_CTL_ADD, queue, &event) == 0);
  CHECK(epoll_wait(poll, &event, 1, 0) == 0);
  char message[256] = {1};
  CHECK(read(queue, message, sizeof message) == 0);
  close(poll);
  close(queue);
}

void checkChanges() {
  const fs::path folder = "/var/log/ovgpu/a/b";
  std::error_code error;
  CHECK(fs::create_directories(folder, error));
  CHECK(fs::is_directory(folder));
  std::ofstream(folder / "one") << "text";
  CHECK(std::rename((folder / "one").c_str(), (folder / "two").c_str()) == 0);
  CHECK(!fs::exists(folder / "one") && fs::file_size(folder / "two") == 4);
  CHECK(fs::remove(folder / "two", error));
  CHECK(rmdir(folder.c_str()) == 0);
  CHECK(fs::remove_all("/var/log/ovgpu/a", error) == 1);
  CHECK(chdir(kFunction) == 0);
  char text[PATH_MAX];
  CHECK(getcwd(text, sizeof text) && std::strcmp(text, kRealFunction) == 0);
  CHECK(access("vendor", F_OK) == 0);
  CHECK(chdir("/") == 0);
}

void checkMapping() {
  const int node = open(kNode, O_RDWR);
  // There is nothing to map before the driver has made a buffer.
  CHECK(mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, node, 0) == MAP_FAILED && errno == EINVAL);
  close(node);
  const int file = open("/proc/self/exe", O_RDONLY);
  void* const memory = mmap(nullptr, 4096, PROT_READ, MAP_PRIVATE, file, 0);
  CHECK(memory != MAP_FAILED);
  if (memory != MAP_FAILED) CHECK(munmap(memory, 4096) == 0);
  close(file);
}

}  // namespace

int main() {
  checkReading();
  checkFolders();
  checkStatus();
  checkLinks();
  checkMachine();
  checkQueue();
  checkMapping();
  checkChanges();
  return failures;
}
