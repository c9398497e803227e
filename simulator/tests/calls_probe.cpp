// Asks a node of the host as the driver's tool would, from the command line.
//
//   sim_calls_probe status NODE INTERFACE VERSION SIZE [BYTE...]   prints the status, then the payload
//   sim_calls_probe set-ecc NODE MODE
//   sim_calls_probe many NODE COUNT THREADS                        prints how many calls failed
//   sim_calls_probe reset-beside NODE OTHER                       status with the other one open, and without
//   sim_calls_probe events GPU DESCRIPTORS COMMAND                 what each descriptor reads around the
//   sim_calls_probe board NODE                                     the shared buffer: result of each step,
//   data sim_calls_probe buffers NODE                                   buffers of descriptors that are
//   copies, or not command sim_calls_probe time | exit STATUS | kill SIGNAL | open PATH | cat PATH | fork
//   NODE
#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Answer {
  int error = 0;
  uint32_t status = 0;
  std::vector<unsigned char> payload;
};

Answer call(int fd, unsigned interfaceName, unsigned version, const std::vector<unsigned char>& payload) {
  std::vector<unsigned char> record(40);
  record.insert(record.end(), payload.begin(), payload.end());
  const auto put = [&](size_t offset, uint64_t number, size_t width) {
    for (size_t i = 0; i < width; ++i) record.at(offset + i) = static_cast<unsigned char>(number >> (8 * i));
  };
  put(8, 2, 4);
  put(12, 16 + payload.size(), 4);
  put(24, interfaceName, 2);
  put(26, version, 1);
  put(28, payload.size(), 4);
  Answer answer;
  // Through an int, as a program may do it: the sign goes up into the long.
  const int request = static_cast<int>(0xC0084DAF);
  if (ioctl(fd, static_cast<unsigned long>(request), record.data()) != 0) answer.error = errno;
  std::memcpy(&answer.status, record.data() + 4, 4);
  answer.payload.assign(record.begin() + 40, record.end());
  return answer;
}

int openNode(const std::string& name) {
  const int fd = open(("/dev/" + name).c_str(), O_RDWR);
  if (fd < 0) {
    std::printf("open %s\n", std::strerror(errno));
    std::exit(1);
  }
  return fd;
}

int many(const std::string& node, int count, int threads) {
  const int fd = openNode(node);
  std::atomic<int> failures = 0;
  std::vector<std::thread> workers;
  for (int i = 0; i < threads; ++i) {
    workers.emplace_back([&] {
      for (int n = 0; n < count; ++n) {
        const Answer answer = call(fd, 67, 0, std::vector<unsigned char>(20));
        if (answer.error != 0 || answer.status != 0) ++failures;
      }
    });
  }
  for (std::thread& worker : workers) worker.join();
  std::printf("%d\n", failures.load());
  return 0;
}

// Parent and child ask through one descriptor, which was duplicated besides.
int forked(const std::string& node) {
  const int fd = dup(openNode(node));
  const pid_t child = fork();
  const Answer answer = call(fd, 67, 0, std::vector<unsigned char>(20));
  if (child == 0) _exit(answer.error ? 1 : 0);
  int status = 0;
  waitpid(child, &status, 0);
  std::printf("%d %d\n", answer.error, WEXITSTATUS(status));
  return 0;
}

int resetBeside(const std::string& node, const std::string& other) {
  const int fd = openNode(node);
  const int beside = openNode(other);
  const Answer refused = call(fd, 50, 1, std::vector<unsigned char>(16));
  close(beside);
  const Answer done = call(fd, 50, 1, std::vector<unsigned char>(16));
  std::printf("%u %u\n", refused.status, done.status);
  return 0;
}

// Memory that is shared with the driver, as it stands in the record.
struct Buffer {
  uint32_t size = 616;
  uint32_t mapSize = 0;
  uint64_t handle = 0;
};

const char* resultOf(bool done) {
  return done ? "ok" : std::strerror(errno);
}

const char* allocate(int fd, Buffer& buffer) {
  return resultOf(ioctl(fd, 0xC0104D03, &buffer) == 0);
}

const char* giveBack(int fd, Buffer& buffer) {
  return resultOf(ioctl(fd, 0xC0104D04, &buffer) == 0);
}

const char* askForBoard(int fd, const Buffer& buffer) {
  uint64_t record[33] = {uint64_t{0x7D} << 5 | uint64_t{2} << 24 | uint64_t{2} << 29 | uint64_t{4} << 45,
                         buffer.handle & 0xFFFFFFFF};
  if (ioctl(fd, 0xC1084D01, record) != 0) return std::strerror(errno);
  return static_cast<uint32_t>(record[1]) == 0 ? "ok" : "bad";
}

int board(const std::string& node) {
  const int fd = openNode(node);
  Buffer buffer;
  std::printf("alloc %s\n", allocate(fd, buffer));
  void* const early = mmap(nullptr, buffer.mapSize, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 4096);
  std::printf("map elsewhere %s\n", resultOf(early != MAP_FAILED));
  void* const memory = mmap(nullptr, buffer.mapSize, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  std::printf("map %s\n", resultOf(memory != MAP_FAILED));
  std::printf("command %s\n", askForBoard(fd, buffer));
  if (memory != MAP_FAILED) {
    const auto* const bytes = static_cast<const unsigned char*>(memory);
    std::printf("version %u memory %u name %s\n", bytes[0], bytes[4], bytes + 152);
    std::printf("unmap %s\n", resultOf(munmap(memory, buffer.mapSize) == 0));
  }
  std::printf("free %s\n", giveBack(fd, buffer));
  void* const late = mmap(nullptr, 4096, PROT_READ, MAP_SHARED, fd, 0);
  std::printf("map again %s\n", resultOf(late != MAP_FAILED));
  return 0;
}

int buffers(const std::string& node) {
  const int fd = openNode(node);
  const int copy = dup(fd);
  const int other = openNode(node);
  Buffer one;
  Buffer two;
  Buffer three;
  std::printf("%s, ", allocate(fd, one));
  std::printf("copy %s, ", allocate(copy, two));
  std::printf("other %s, ", allocate(other, two));
  std::printf("crossed %s, ", giveBack(other, one));
  std::printf("by the copy %s, ", giveBack(copy, one));
  close(other);
  const int next = openNode(node);
  std::printf("reopened %s\n", allocate(next, three));
  return 0;
}

uint64_t numberAt(const char* bytes, size_t width) {
  uint64_t number = 0;
  std::memcpy(&number, bytes, width);
  return number;
}

void printEvents(int queue) {
  char message[512] = {};
  ssize_t got = 0;
  while ((got = read(queue, message, sizeof message)) > 0) {
    std::printf("%zd %lu %lu %s\n", got, numberAt(message + 28, 4), numberAt(message + 56, 8), message + 64);
  }
  std::printf("empty %zd\n", got);
}

bool isReadable(int queue) {
  const int poll = epoll_create1(0);
  epoll_event event{};
  event.events = EPOLLIN;
  epoll_ctl(poll, EPOLL_CTL_ADD, queue, &event);
  const bool isReady = epoll_wait(poll, &event, 1, 0) == 1;
  close(poll);
  return isReady;
}

int events(const std::string& gpu, int count, const std::string& command) {
  std::vector<int> queues;
  const std::string path = "/proc/driver/vela/gpu" + gpu + "/event_report";
  for (int i = 0; i < count; ++i) queues.push_back(open(path.c_str(), O_RDONLY));
  if (command != ":") {
    for (const int queue : queues) printEvents(queue);
    if (std::system(command.c_str()) != 0) return 1;
  }
  for (const int queue : queues) {
    std::printf("ready %d\n", isReadable(queue));
    printEvents(queue);
  }
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  const std::vector<std::string> words(arguments + 1, arguments + count);
  const std::string& what = words.at(0);
  const auto number = [&](size_t i) { return std::stoi(words.at(i), nullptr, 0); };
  if (what == "status") {
    std::vector<unsigned char> payload(static_cast<size_t>(number(4)));
    for (size_t i = 5; i < words.size(); ++i) payload.at(i - 5) = static_cast<unsigned char>(number(i));
    const Answer answer = call(openNode(words.at(1)), static_cast<unsigned>(number(2)),
                               static_cast<unsigned>(number(3)), payload);
    std::printf("%s %u", answer.error ? std::strerror(answer.error) : "ok", answer.status);
    for (const unsigned char byte : answer.payload) std::printf(" %02x", byte);
    std::printf("\n");
    return 0;
  }
  if (what == "set-ecc") {
    std::vector<unsigned char> payload(20);
    payload[0] = static_cast<unsigned char>(number(2));
    return call(openNode(words.at(1)), 49, 1, payload).status != 0;
  }
  if (what == "reset-beside") return resetBeside(words.at(1), words.at(2));
  if (what == "board") return board(words.at(1));
  if (what == "buffers") return buffers(words.at(1));
  if (what == "events") return events(words.at(1), number(2), words.at(3));
  if (what == "many") return many(words.at(1), number(2), number(3));
  if (what == "fork") return forked(words.at(1));
  if (what == "time") {
    const std::time_t now = std::time(nullptr);
    std::printf("%ld\n", static_cast<long>(now));
    return 0;
  }
  if (what == "exit") return number(1);
  if (what == "kill") return std::raise(number(1));
  if (what == "open") {
    const int fd = open(words.at(1).c_str(), O_RDONLY);
    std::printf("%s\n", fd < 0 ? std::strerror(errno) : "ok");
    return 0;
  }
  if (what == "cat") {
    std::cout << std::ifstream(words.at(1)).rdbuf();
    return 0;
  }
  return 1;
}
