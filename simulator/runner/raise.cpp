// ovgpu-sim-raise: a GPU of the simulated host reports a fault. Started on the host, beside the command
// that is to see it.
//
// The message goes into every event queue that is open, and the record to the log daemon's file.
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "event_reader.h"
#include "host_error.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kUsage =
    "usage: ovgpu-sim-raise GPU XID [KEY=VALUE]...\n"
    "  GPU is the number of the folder in /proc/driver/vela; keys are those of \"events\" in a host:\n"
    "  scope, severity, attributes, time, pid, text, version, message_types, message_version\n";

std::string readFile(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream content;
  content << stream.rdbuf();
  return content.str();
}

// Numbers stay numbers, so that a mistake is told as one of a host is.
nlohmann::json valueOf(const std::string& text) {
  const auto number = numberFromText(text);
  return number ? nlohmann::json(*number) : nlohmann::json(text);
}

nlohmann::json entryFrom(const std::vector<std::string>& words) {
  nlohmann::json entry{{"xid", valueOf(words.at(1))}, {"time", uint64_t(std::time(nullptr))}};
  for (size_t i = 2; i < words.size(); ++i) {
    const size_t equals = words[i].find('=');
    if (equals == std::string::npos) throw HostError("\"" + words[i] + "\" is not KEY=VALUE");
    const std::string key = words[i].substr(0, equals);
    const std::string value = words[i].substr(equals + 1);
    entry[key] = key == "text" ? nlohmann::json(value) : valueOf(value);
  }
  return entry;
}

constexpr size_t kQueueMessages = 64;

// A full queue drops its oldest message. One that nobody has open any more is taken away.
void putInto(const fs::path& queue, const std::string& message) {
  const int reader = open(queue.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
  if (reader < 0) {
    unlink(queue.c_str());
    return;
  }
  close(reader);
  const int fd = open(queue.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return;
  std::string oldest(message.size(), '\0');
  int held = 0;
  while (ioctl(fd, FIONREAD, &held) == 0 && static_cast<size_t>(held) >= kQueueMessages * message.size()) {
    if (read(fd, oldest.data(), oldest.size()) <= 0) break;
  }
  if (write(fd, message.data(), message.size()) < 0)
    std::cerr << "ovgpu-sim-raise: a queue takes no message\n";
  close(fd);
}

void appendRecord(const fs::path& tree, const std::string& uuid, const std::string& record) {
  if (uuid.empty()) return;
  const fs::path file = tree / "var/log/ovgpu/event_report" / uuid / "xid_records";
  fs::create_directories(file.parent_path());
  if (!fs::exists(file)) std::ofstream(file, std::ios::binary) << faultRecordHeader();
  std::ofstream(file, std::ios::binary | std::ios::app) << record;
}

void raise(const std::vector<std::string>& words) {
  const char* const root = std::getenv("OVGPU_SIM_ROOT");
  if (!root) throw HostError("not on a simulated host; start it with ovgpu-sim");
  const auto gpu = numberFromText(words.at(0));
  const fs::path folder = fs::path(root) / "events" / ("gpu" + std::to_string(gpu.value_or(0)));
  if (!gpu || !fs::exists(folder)) throw HostError("the host has no GPU \"" + words.at(0) + "\"");
  const nlohmann::json entry = entryFrom(words);
  const JsonCursor event(entry, "the command line");
  const std::string uuid = readFile(folder / "uuid");
  const std::string message = eventMessage(uuid, event);
  const int lock = open(folder.c_str(), O_RDONLY | O_CLOEXEC);
  flock(lock, LOCK_EX);
  for (const auto& file : fs::directory_iterator(folder)) {
    if (file.path().extension() == ".queue") putInto(file.path(), message);
  }
  appendRecord(fs::path(root) / "tree", uuid, faultRecord(event));
  close(lock);
}

}  // namespace

int main(int count, char** arguments) {
  const std::vector<std::string> words(arguments + 1, arguments + count);
  if (words.size() < 2) {
    std::cerr << kUsage;
    return 2;
  }
  try {
    raise(words);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "ovgpu-sim-raise: " << error.what() << "\n";
    return 2;
  }
}
