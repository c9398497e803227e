// One entry of "gpus", with all that stands for defaults laid under it.
#ifndef GPU_READER_H
#define GPU_READER_H

#include <memory>
#include <vector>

#include "device_builder.h"
#include "host.h"
#include "json_cursor.h"
#include "mpc_plan.h"

/// Unknown keys, anywhere in a GPU entry or in "gpu_defaults", are errors.
void checkGpuKeys(const JsonCursor& gpu);

/// Adds devices to a host, one GPU entry after the other.
class GpuReader {
 public:
  explicit GpuReader(Host& target) : host(target) {}

  /// `defaults` is the host's "gpu_defaults"; `copy` counts from 0 in an entry that is repeated.
  void read(const JsonCursor& entry, const nlohmann::json& defaults, uint64_t copy);

  /// After the last entry: nodes that are not there yet.
  void finish();

 private:
  void checkAddress(const JsonCursor& entry, const PciFunction& function) const;

  Host& host;
  NumberPool pool;
  std::vector<std::unique_ptr<MpcPlan>> plans;
};

#endif
