#pragma once

#include "board_values.h"
#include "common/efuse/efuse_base.h"
#include "dev_cuid.h"

namespace kelp {

/// Bits of the first chip line, whose device id is a key of three and one bits.
class WoldEfuse final : public EfuseBase {
 public:
  explicit WoldEfuse(const EfuseData& data);
  Stated<unsigned int> getDeviceId() const override;
};

/// Bits of the second and third chip line, which can burn in the low byte of the device id twice.
class FenEfuse final : public EfuseBase {
 public:
  explicit FenEfuse(const EfuseData& data);
  Stated<unsigned int> getDeviceId() const override;
};

/// The identity of a chip. State 6 for a chip line that carries none, otherwise that of the first field
/// that cannot be had; a device id that is not known fails alone.
Stated<Efuse> decodeEfuse(DevArch arch, const EfuseData& data);

}  // namespace kelp
