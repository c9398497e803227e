#pragma once

#include <cstring>

#include "linux/ap/mki_access.h"

namespace kelp::linux_ {

struct [[gnu::packed]] MkiAllocMemV0 {
  u32 size;     // 0, in
  u32 mapSize;  // 4
  u64 handle;   // 8
};
MKI_RECORD(MkiAllocMemV0, 0xC0104D03);

struct [[gnu::packed]] MkiFreeMemV0 {
  u32 size;     // 0, in
  u32 mapSize;  // 4, in
  u64 handle;   // 8, in
};
MKI_RECORD(MkiFreeMemV0, 0xC0104D04);

/// Memory that the driver, the firmware and the tool share while a command runs that fills it. A node has
/// one at a time, so whoever makes one holds a lock. Gives everything back when it goes.
class SharedBuffer {
 public:
  /// Asks the driver for `size` bytes and maps them. Fails as `isAllocated` and `isMapped` say; a refused
  /// allocation is in the log then.
  SharedBuffer(int fd, u32 size);
  ~SharedBuffer();

  SharedBuffer(const SharedBuffer&) = delete;
  SharedBuffer& operator=(const SharedBuffer&) = delete;

  bool isAllocated() const { return isAllocated_; }
  /// A mapping that would end before the size that was asked for counts as none.
  bool isMapped() const { return bytes_ != nullptr; }
  u32 handleLowHalf() const { return static_cast<u32>(u64{memory_.handle}); }

  /// Copies out what the buffer holds from its start; `data` is no longer than its size.
  void copyTo(void* data, std::size_t length) const { std::memcpy(data, bytes_, length); }

 private:
  int fd_;
  MkiAllocMemV0 memory_{};
  bool isAllocated_ = false;
  void* bytes_ = nullptr;
};

}  // namespace kelp::linux_
