#include "common/efuse/efuse_layout.h"

#include <algorithm>
#include <array>

#include "kelp_log.h"

namespace kelp {
namespace {

constexpr std::array kWoldFields{
    EfuseFieldAlloc{.fieldId = 0, .bitOffset = 256, .width = 42},
    EfuseFieldAlloc{.fieldId = 1, .bitOffset = 298, .width = 12},
    EfuseFieldAlloc{.fieldId = 2, .bitOffset = 310, .width = 5},
    EfuseFieldAlloc{.fieldId = 3, .bitOffset = 315, .width = 5},
    EfuseFieldAlloc{.fieldId = 4, .bitOffset = 348, .width = 3},
    EfuseFieldAlloc{.fieldId = 5, .bitOffset = 340, .width = 1},
};

constexpr std::array kFen1Fields{
    EfuseFieldAlloc{.fieldId = 0, .bitOffset = 2272, .width = 42},
    EfuseFieldAlloc{.fieldId = 1, .bitOffset = 2314, .width = 12},
    EfuseFieldAlloc{.fieldId = 2, .bitOffset = 2326, .width = 5},
    EfuseFieldAlloc{.fieldId = 3, .bitOffset = 2331, .width = 5},
    EfuseFieldAlloc{.fieldId = 5, .bitOffset = 2346, .width = 1},
    EfuseFieldAlloc{.fieldId = 6, .bitOffset = 2496, .width = 8},
    EfuseFieldAlloc{.fieldId = 7, .bitOffset = 2504, .width = 8},
    EfuseFieldAlloc{.fieldId = 8, .bitOffset = 2512, .width = 1},
    EfuseFieldAlloc{.fieldId = 9, .bitOffset = 2517, .width = 11},
};

}  // namespace

Stated<EfuseFieldAlloc> EfuseLayout::getEfuseFieldAlloc(unsigned int fieldId) const {
  const auto fields = getFields();
  const auto field = std::ranges::find(fields, fieldId, &EfuseFieldAlloc::fieldId);
  if (field == fields.end()) {
    KELP_LOG(kError) << "Efuse Field [" << fieldId << "] is NOT supported!";
    return KelpReturn::kNotSupported;
  }
  return *field;
}

std::span<const EfuseFieldAlloc> WoldEfuseLayout::getFields() const {
  return kWoldFields;
}

std::span<const EfuseFieldAlloc> Fen1EfuseLayout::getFields() const {
  return kFen1Fields;
}

}  // namespace kelp
