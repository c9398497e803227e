// floor_program TRACE THREADS
//
// Makes the file accesses and requests that a trace of the simulated host holds, in its order, and
// starts and joins so many threads. What a run costs above this is the tool's own.

#include <dirent.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr unsigned long kProtocolOne = 0xC0084DAF;

/// Payload bytes of the protocol 1 interfaces that the traced commands use.
const std::map<unsigned, std::uint32_t> kPayload{
    {2, 92},   {3, 72},   {4, 7384}, {6, 272}, {8, 60},  {9, 1940}, {10, 3796}, {11, 86}, {13, 18}, {14, 60},
    {22, 374}, {32, 256}, {33, 8}, {34, 20}, {48, 21},  {52, 40}, {56, 24}, {57, 24},  {62, 152},  {67, 20}, {71, 64}, {75, 28}};

struct Line {
  std::string operation;
  std::vector<std::string> words;
};

class Floor {
 public:
  void run(const Line& line) {
    const std::string& subject = line.words.front();
    if (line.operation == "ioctl") {
      request(line);
    } else if (line.operation == "opendir") {
      list(subject);
    } else if (line.operation == "open") {
      subject.rfind("/dev/", 0) == 0 ? openNode(subject) : readWhole(subject);
    } else if (line.operation == "readlink") {
      char text[256];
      static_cast<void>(!readlink(subject.c_str(), text, sizeof text));
    } else if (line.operation == "access") {
      static_cast<void>(access(subject.c_str(), F_OK));
    } else if (line.operation != "close") {
      struct stat status;
      static_cast<void>(lstat(subject.c_str(), &status));
    }
  }

 private:
  static void readWhole(const std::string& path) {
    const int fd = open(path.c_str(), O_RDONLY);
    if (fd < 0) return;
    char text[4096];
    while (read(fd, text, sizeof text) > 0) {
    }
    close(fd);
  }

  static void list(const std::string& path) {
    DIR* const folder = opendir(path.c_str());
    if (folder == nullptr) return;
    while (readdir(folder) != nullptr) {
    }
    closedir(folder);
  }

  void openNode(const std::string& path) {
    nodes_[path.substr(path.rfind('/') + 1)] = open(path.c_str(), O_RDWR);
  }

  /// Words: node, kind, interface or request number, version or "-".
  void request(const Line& line) {
    const int fd = nodes_[line.words[0]];
    const std::string& kind = line.words[1];
    std::memset(record_, 0, sizeof record_);
    auto* const words = reinterpret_cast<std::uint32_t*>(record_);
    if (line.words[2].rfind("0x", 0) == 0) {
      const unsigned long number = std::stoul(line.words[2], nullptr, 16);
      static_cast<void>(ioctl(fd, number, record_));
      return;
    }
    words[0] = 1;
    words[1] = 13;
    if (kind == "record") {
      const unsigned interfaceName = static_cast<unsigned>(std::stoul(line.words[2]));
      const std::uint32_t payload = kPayload.count(interfaceName) != 0 ? kPayload.at(interfaceName) : 16;
      words[2] = 2;
      words[3] = 16 + payload;
      words[6] = interfaceName | static_cast<std::uint32_t>(std::stoul(line.words[3])) << 16;
      words[7] = payload;
    }
    static_cast<void>(ioctl(fd, kProtocolOne, record_));
  }

  std::map<std::string, int> nodes_;
  alignas(8) unsigned char record_[16384];
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: floor_program TRACE THREADS\n", stderr);
    return 2;
  }
  std::ifstream trace(argv[1]);
  Floor floor;
  for (std::string text; std::getline(trace, text);) {
    std::istringstream words(text);
    Line line;
    words >> line.operation;
    for (std::string word; words >> word;) line.words.push_back(word);
    if (!line.words.empty()) floor.run(line);
  }
  for (int left = std::atoi(argv[2]); left > 0; --left) std::thread([] {}).join();
  return 0;
}
