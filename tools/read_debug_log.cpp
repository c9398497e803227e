// Deciphers a debug log, so that whoever got one with a fault report can read it.

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "debug_log_reader.h"

namespace {

constexpr const char* kUsage =
    "Usage: read-debug-log [FILE]\n"
    "\n"
    "Deciphers the debug log FILE, or standard input without FILE or for \"-\", and prints its lines.\n"
    "Control characters within a line are printed as \\xNN.\n"
    "\n"
    "Damaged records are reported on standard error with their byte offset and skipped.\n"
    "Exit status: 0 all read, 1 some of it damaged, 2 wrong usage or a file that cannot be read.\n";

enum ExitStatus { kAllRead = 0, kDamaged = 1, kTrouble = 2 };

constexpr std::size_t kMostLogBytes = std::size_t{1} << 30;

/// A log quotes what drivers and users wrote; none of it may steer the reader's terminal.
void printLine(std::string_view line) {
  for (const char character : line) {
    const auto byte = static_cast<unsigned char>(character);
    if ((byte < 0x20 && byte != '\t') || byte == 0x7F) {
      std::printf("\\x%02X", byte);
    } else {
      std::putchar(byte);
    }
  }
  std::putchar('\n');
}

ExitStatus printLog(std::string_view log) {
  DebugLogReader reader(log);
  ExitStatus status = kAllRead;
  while (const auto piece = reader.next()) {
    if (piece->line) {
      printLine(*piece->line);
      continue;
    }
    std::fprintf(stderr, "read-debug-log: offset %zu: damaged record, %zu bytes skipped\n", piece->offset,
                 piece->bytes);
    status = kDamaged;
  }
  return status;
}

std::optional<std::string> readAll(std::FILE* file, const char* name) {
  std::string log;
  char block[65536];
  while (const std::size_t size = std::fread(block, 1, sizeof block, file)) {
    log.append(block, size);
    if (log.size() > kMostLogBytes) {
      std::fprintf(stderr, "read-debug-log: %s: larger than any debug log\n", name);
      return std::nullopt;
    }
  }
  if (std::ferror(file)) {
    std::fprintf(stderr, "read-debug-log: %s: %s\n", name, std::strerror(errno));
    return std::nullopt;
  }
  return log;
}

std::optional<std::string> readLog(const char* name) {
  if (std::string_view(name) == "-") return readAll(stdin, "standard input");
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name, "rb"), &std::fclose);
  if (!file) {
    std::fprintf(stderr, "read-debug-log: %s: %s\n", name, std::strerror(errno));
    return std::nullopt;
  }
  return readAll(file.get(), name);
}

ExitStatus run(int count, char** arguments) {
  const std::string_view argument = count > 1 ? arguments[1] : "-";
  if (count == 2 && (argument == "--help" || argument == "-h")) {
    std::fputs(kUsage, stdout);
    return kAllRead;
  }
  if (count > 2 || (argument.starts_with('-') && argument != "-")) {
    std::fputs(kUsage, stderr);
    return kTrouble;
  }
  const auto log = readLog(argument.data());
  return log ? printLog(*log) : kTrouble;
}

}  // namespace

int main(int count, char** arguments) {
  const ExitStatus status = run(count, arguments);
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
    std::fprintf(stderr, "read-debug-log: standard output: %s\n", std::strerror(errno));
    return kTrouble;
  }
  return status;
}
