#pragma once

#include <span>

#include "kelp_return.h"

namespace kelp {

/// Where a field lies in the one-time-programmable bits of a chip.
struct EfuseFieldAlloc {
  unsigned int fieldId = 0;
  unsigned int bitOffset = 0;
  unsigned int width = 0;  ///< bits
};

/// The fields of one chip line.
class EfuseLayout {
 public:
  virtual ~EfuseLayout() = default;

  virtual std::span<const EfuseFieldAlloc> getFields() const = 0;

  /// State 6 for a field that this chip line does not have.
  Stated<EfuseFieldAlloc> getEfuseFieldAlloc(unsigned int fieldId) const;
};

class WoldEfuseLayout final : public EfuseLayout {
 public:
  std::span<const EfuseFieldAlloc> getFields() const override;
};

/// Of the second and the third chip line.
class Fen1EfuseLayout final : public EfuseLayout {
 public:
  std::span<const EfuseFieldAlloc> getFields() const override;
};

}  // namespace kelp
