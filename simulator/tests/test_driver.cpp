#include "test_driver.h"

#include <cstring>
#include <stdexcept>

#include "host_reader.h"
#include "image_writer.h"

namespace {

int readMemory(SimCall*, void* to, uint64_t address, size_t size) {
  if (address == 0) return -1;
  std::memcpy(to, reinterpret_cast<const void*>(address), size);
  return 0;
}

int writeMemory(SimCall*, uint64_t address, const void* from, size_t size) {
  if (address == 0) return -1;
  std::memcpy(reinterpret_cast<void*>(address), from, size);
  return 0;
}

constexpr size_t kHead = 40;

}  // namespace

Host hostFromText(const std::string& json) {
  return readHost({nlohmann::json::parse(json, nullptr, true, true), "test.json"});
}

Record& Record::put(size_t offset, size_t width, uint64_t number) {
  for (size_t i = 0; i < width; ++i) bytes.at(offset + i) = static_cast<uint8_t>(number >> (8 * i));
  return *this;
}

uint64_t Record::get(size_t offset, size_t width) const {
  uint64_t number = 0;
  for (size_t i = width; i > 0; --i) number = number << 8 | bytes.at(offset + i - 1);
  return number;
}

int64_t Record::getSigned(size_t offset, size_t width) const {
  const unsigned unused = 64 - 8 * static_cast<unsigned>(width);
  return static_cast<int64_t>(get(offset, width) << unused) >> unused;
}

std::string Record::text(size_t offset, size_t width) const {
  std::string text;
  for (size_t i = 0; i < width && bytes.at(offset + i); ++i) text += static_cast<char>(bytes[offset + i]);
  return text;
}

TestDriver::TestDriver(const std::string& json, const std::vector<std::string>& faults) {
  const Host host = hostFromText(json);
  std::vector<FaultSpec> specs;
  for (const std::string& fault : faults) specs.push_back(parseFault(fault));
  const std::string made = makeImage(host, {std::vector<NodeFile>(host.nodes.size()), {}, {}}, specs);
  bytes.resize((made.size() + 7) / 8);
  std::memcpy(bytes.data(), made.data(), made.size());
  for (const Node& node : host.nodes) {
    const char* const prefix = node.kind == SIM_NODE_CARD     ? "card"
                               : node.kind == SIM_NODE_RENDER ? "renderD"
                                                              : "ovgpu.";
    names.push_back(prefix + std::to_string(node.number));
  }
}

int TestDriver::othersOpen(SimCall* call, uint32_t) {
  return static_cast<OwnCall*>(call)->driver->othersAreOpen;
}

const SimBuffers TestDriver::kBuffers{
    [](SimCall* call) { return of(call).held[of(call).descriptor]; },
    [](SimCall* call, uint64_t number) { of(call).held[of(call).descriptor] = number; },
    [](SimCall* call, uint32_t id, size_t size) {
      of(call).buffers[id].assign(size, 0);
      return 0;
    },
    [](SimCall* call, uint32_t id, const void* from, size_t size) {
      std::memcpy(of(call).buffers.at(id).data(), from, size);
      return 0;
    },
    [](SimCall* call, uint32_t id) { of(call).buffers.erase(id); },
};

int TestDriver::ioctl(const std::string& name, uint32_t request, Record& record) {
  size_t index = 0;
  while (index < names.size() && names[index] != name) ++index;
  if (index == names.size()) throw std::out_of_range("no node " + name);
  lastCall.readMemory = readMemory;
  lastCall.writeMemory = writeMemory;
  lastCall.othersOpen = othersOpen;
  lastCall.driver = this;
  lastCall.buffers = &kBuffers;
  lastCall.node = static_cast<uint32_t>(index);
  lastCall.request = request;
  lastCall.argument = reinterpret_cast<uint64_t>(record.bytes.data());
  return simIoctl(image(), &lastCall);
}

int TestDriver::call(const std::string& name, unsigned interfaceName, unsigned version, Record& payload) {
  const size_t size = payload.bytes.size();
  Record record(kHead + size);
  record.put(0, 2, 1).put(2, 2, 1).put(4, 4, 13).put(8, 4, 2).put(12, 4, 16 + size);
  record.put(24, 2, interfaceName).put(26, 1, version).put(28, 4, size);
  std::memcpy(record.bytes.data() + kHead, payload.bytes.data(), size);
  if (const int error = ioctl(name, 0xC0084DAF, record)) return -error;
  payload.bytes.assign(record.bytes.begin() + kHead, record.bytes.end());
  return static_cast<int>(record.get(4, 4));
}

int TestDriver::call(const std::string& name, unsigned interfaceName, unsigned version, size_t size,
                     Record& payload) {
  payload = Record(size);
  return call(name, interfaceName, version, payload);
}
