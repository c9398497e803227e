#include <array>

#include "driver_mode.h"
#include "host_environment.h"
#include "linux/environment.h"
#include "linux/fs_helper.h"
#include "linux/pci_access.h"
#include "rusk/text.h"
#include "support/drained_log.h"
#include "support/fuzz_input.h"
#include "support/memory_file.h"
#include "support/served_files.h"

// Texts of the kernel, the driver and the package manager: which reader, then the files that it opens.

namespace {

using kelp::linux_::Environment;
using kelp::linux_::FsHelper;
using kelp::linux_::PciAccess;
using tolk_fuzz::expect;
using tolk_fuzz::MemoryFile;
using tolk_fuzz::ServedFiles;

void readEnvironmentType(const std::string& text) {
  const ServedFiles files(text);
  static_cast<void>(Environment().getEnvironmentType());
}

void readDriverMode(const std::string& text) {
  const ServedFiles files(text);
  const auto mode = Environment().getDriverMode();
  if (text.find('\x1E') != std::string::npos) return;
  // The library's numbers for the modes are others.
  const int number = static_cast<int>(mode.value()) - 2;
  expect(mode.ok() && number == static_cast<int>(tolk::driverModeOf(text)),
         "the front end and the library read the same mode");
}

void readDriverVersion(const std::string& text) {
  const ServedFiles files(text);
  const auto version = Environment().getDriverVersion();
  expect(!version.ok() || rusk::trim(version.value()) == version.value(), "a version has no space around it");
}

void readProcessName(const std::string& text) {
  const ServedFiles files(text);
  const auto name = Environment().getProcessName(1);
  expect(!name.ok() || name.value().find('\0') == std::string::npos, "a name ends at its first NUL");
}

void readPciFunction(const std::string& text) {
  const ServedFiles files(text);
  kelp::PcieInfo info;
  if (PciAccess(0x410000).getPciInfo(info) != 0) return;
  expect(info.vendorId.ok() && info.maxLinkWidth.ok() && info.maxLinkWidth.value() <= 65535,
         "a function that is read has all of its facts");
}

void readHostEnvironment(const std::string& text) {
  static MemoryFile file;
  file.write(text);
  expect(!tolk::isTargetEnv(file.path().c_str()) || text.find("envType: 0") != std::string::npos,
         "only a host that says so is one");
}

void readPartOfFile(const std::string& text) {
  static MemoryFile file;
  file.write(text);
  std::ifstream stream(file.path(), std::ios::binary);
  std::array<char, 16> part;
  const std::int64_t offset = text.empty() ? 0 : static_cast<signed char>(text.front());
  const std::size_t count = FsHelper::readData(stream, offset, part.data(), part.size());
  const std::string_view expected =
      offset < 0 || offset >= std::ssize(text) ? "" : std::string_view(text).substr(offset, part.size());
  expect(std::string_view(part.data(), count) == expected, "a part of a file is what the file has there");
}

constexpr std::array kReaders{readEnvironmentType, readDriverMode,      readDriverVersion, readProcessName,
                              readPciFunction,     readHostEnvironment, readPartOfFile};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static tolk_fuzz::DrainedLog log;
  tolk_fuzz::FuzzInput input(data, size);
  const std::size_t reader = input.take<std::uint8_t>() % kReaders.size();
  kReaders[reader](input.takeText());
  return 0;
}
