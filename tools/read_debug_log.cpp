// Deciphers a debug log, so that whoever got one with a fault report can read it.
//
// A log comes from a stranger's disk: cut off, overwritten in the middle, or no log at all. No length
// in it is believed before the bytes that it spans and the two that end the record are there.

#include <mbedtls/aes.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "rusk/log_cipher.h"

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

constexpr std::size_t kLengthBytes = 4;
constexpr std::string_view kRecordEnd("\0\n", 2);
constexpr std::size_t kBlockBytes = std::tuple_size_v<rusk::CipherBlock>;
constexpr std::size_t kMostLogBytes = std::size_t{1} << 30;

/// Bytes of the record at the front of `log`, its line end included; nothing if there is no whole one.
std::optional<std::size_t> recordBytes(std::string_view log) {
  if (log.size() < kLengthBytes + kRecordEnd.size()) return std::nullopt;
  std::size_t length = 0;
  for (std::size_t byte = 0; byte < kLengthBytes; ++byte) {
    length |= static_cast<std::size_t>(static_cast<std::uint8_t>(log[byte])) << (8 * byte);
  }
  if (length % kBlockBytes != 0 || length > log.size() - kLengthBytes - kRecordEnd.size())
    return std::nullopt;
  if (log.substr(kLengthBytes + length, kRecordEnd.size()) != kRecordEnd) return std::nullopt;
  return kLengthBytes + length + kRecordEnd.size();
}

/// Where the first whole record behind a damaged one starts, or the log's end. Any offset may be it: a
/// record that was cut off has no end of its own, and the next run appended right behind it.
std::size_t nextRecord(std::string_view log, std::size_t damaged) {
  std::size_t offset = damaged + 1;
  while (offset < log.size() && !recordBytes(log.substr(offset))) ++offset;
  return offset;
}

class Decipherer {
 public:
  Decipherer() {
    mbedtls_aes_init(&key_);
    mbedtls_aes_setkey_dec(&key_, rusk::kLogKey.data(), rusk::kLogKey.size() * 8);
  }

  /// The line in a cipher text of whole blocks, without the zeros that filled its last block.
  std::string line(std::string_view cipherText) {
    std::string text(cipherText.size(), '\0');
    rusk::CipherBlock vector = rusk::kLogVector;
    mbedtls_aes_crypt_cbc(&key_, MBEDTLS_AES_DECRYPT, text.size(), vector.data(),
                          reinterpret_cast<const unsigned char*>(cipherText.data()),
                          reinterpret_cast<unsigned char*>(text.data()));
    for (std::size_t fill = 1; fill < kBlockBytes && text.ends_with('\0'); ++fill) text.pop_back();
    return text;
  }

 private:
  mbedtls_aes_context key_;
};

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
  Decipherer decipherer;
  ExitStatus status = kAllRead;
  for (std::size_t offset = 0; offset < log.size();) {
    if (const auto bytes = recordBytes(log.substr(offset))) {
      printLine(
          decipherer.line(log.substr(offset + kLengthBytes, *bytes - kLengthBytes - kRecordEnd.size())));
      offset += *bytes;
      continue;
    }
    const std::size_t next = nextRecord(log, offset);
    std::fprintf(stderr, "read-debug-log: offset %zu: damaged record, %zu bytes skipped\n", offset,
                 next - offset);
    status = kDamaged;
    offset = next;
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
