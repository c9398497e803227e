// One entry of "gpus", with all that stands for defaults laid under it.
#ifndef GPU_READER_H
#define GPU_READER_H

#include "host.h"
#include "json_cursor.h"

/// Unknown keys, anywhere in a GPU entry or in "gpu_defaults", are errors.
void checkGpuKeys(const JsonCursor& gpu);

/// Adds devices to a host, one GPU entry after the other.
class GpuReader {
 public:
  explicit GpuReader(Host& target) : host(target) {}

  /// `defaults` is the host's "gpu_defaults"; `copy` counts from 0 in an entry that is repeated.
  void read(const JsonCursor& entry, const nlohmann::json& defaults, uint64_t copy);

 private:
  struct Device;

  void addNode(Device& device, const JsonCursor& gpu, uint64_t copy);
  void addInstances(const Device& parent, size_t parentNode, const JsonCursor& mpc,
                    const nlohmann::json& common);
  void addProcesses(const std::vector<uint64_t>& pids);
  uint32_t takeNumber(const JsonCursor& gpu, std::string_view key, uint64_t copy, std::vector<uint32_t>& used,
                      uint32_t first) const;

  Host& host;
  std::vector<uint32_t> miscIds;
  std::vector<uint32_t> cardIds;
  std::vector<uint32_t> renderIds;
};

#endif
