// The driver model in process, for a host that is told as JSON text.
#ifndef TEST_DRIVER_H
#define TEST_DRIVER_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "host.h"
#include "sim_model.h"

/// Parses and checks a description; messages name the file "test.json".
Host hostFromText(const std::string& json);

/// Bytes with little-endian numbers at any offset.
class Record {
 public:
  explicit Record(size_t size, uint8_t fill = 0) : bytes(size, fill) {}

  Record& put(size_t offset, size_t width, uint64_t number);
  uint64_t get(size_t offset, size_t width) const;
  int64_t getSigned(size_t offset, size_t width) const;
  std::string text(size_t offset, size_t width) const;

  std::vector<uint8_t> bytes;
};

class TestDriver {
 public:
  explicit TestDriver(const std::string& json, const std::vector<std::string>& faults = {});

  /// 0 or an errno. `name` is that of the node, such as "ovgpu.0".
  int ioctl(const std::string& name, uint32_t request, Record& record);

  /// A protocol 1 call of an interface; the record is the payload and comes back with the reply. The
  /// driver's status, or minus the errno of a failed ioctl.
  int call(const std::string& name, unsigned interfaceName, unsigned version, Record& payload);
  /// The same with a payload of zeros.
  int call(const std::string& name, unsigned interfaceName, unsigned version, size_t size, Record& payload);

  /// What the shell would tell of nodes of other devices.
  bool othersAreOpen = false;

  /// The descriptor that calls come through, and the buffers that are shared with the driver.
  int descriptor = 0;
  std::map<uint32_t, std::vector<uint8_t>> buffers;

  /// How many calls the driver did not offer.
  uint64_t unexpected() { return image()->unexpected; }

  const SimCall& last() const { return lastCall; }
  SimImage* image() { return reinterpret_cast<SimImage*>(bytes.data()); }
  /// A copy of the image; numbers of 64 bits stand where they may.
  std::vector<uint64_t> copy() const { return bytes; }

 private:
  std::vector<uint64_t> bytes;  // aligned for what the image holds
  std::vector<std::string> names;
  // The call knows its driver by its place in it.
  struct OwnCall : SimCall {
    TestDriver* driver;
  };
  static int othersOpen(SimCall* call, uint32_t owner);
  static TestDriver& of(SimCall* call) { return *static_cast<OwnCall*>(call)->driver; }
  static const SimBuffers kBuffers;

  std::map<int, uint64_t> held;

  OwnCall lastCall{};
};

#endif
