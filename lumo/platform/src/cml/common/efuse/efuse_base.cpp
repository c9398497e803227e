#include "common/efuse/efuse_base.h"

#include <utility>

#include "kelp_log.h"

namespace kelp {
namespace {

constexpr unsigned kWordBits = 64;
constexpr unsigned kDataWordBits = 32;

}  // namespace

EfuseBase::EfuseBase(const EfuseData& data, std::unique_ptr<const EfuseLayout> layout)
    : startBit_(data.startBit), bitCount_(data.bitCount), words_(data.words), layout_(std::move(layout)) {}

EfuseBase::~EfuseBase() = default;

Stated<EfuseFieldBits> EfuseBase::getField(unsigned int fieldId) const {
  if (layout_ == nullptr) {
    KELP_LOG(kError) << "Efuse layout is unspecified!";
    return KelpReturn::kFailure;
  }
  const Stated<EfuseFieldAlloc> alloc = layout_->getEfuseFieldAlloc(fieldId);
  if (!alloc.ok()) {
    return alloc.state();
  }
  const auto [id, bitOffset, width] = alloc.value();
  // The last bit may lie one past the data; a bit past the words reads as 0.
  if (bitOffset < startBit_ || std::uint64_t{bitOffset} + width - 1 > std::uint64_t{startBit_} + bitCount_) {
    return KelpReturn::kFailure;
  }
  EfuseFieldBits field;
  field.bitOffset = static_cast<int>(bitOffset);
  field.width = width;
  field.words.resize((width + kWordBits - 1) / kWordBits);
  for (unsigned i = 0; i < width; ++i) {
    const unsigned bit = bitOffset - startBit_ + i;
    const std::size_t word = bit / kDataWordBits;
    if (word < words_.size()) {
      const std::uint64_t value = (words_[word] >> (bit % kDataWordBits)) & 1;
      field.words[i / kWordBits] |= value << (i % kWordBits);
    }
  }
  return field;
}

std::uint64_t EfuseBase::getValue(unsigned int fieldId, KelpReturn& state) const {
  if (state != KelpReturn::kSuccess) {
    return 0;
  }
  const Stated<EfuseFieldBits> field = getField(fieldId);
  state = field.state();
  return field.ok() ? field.value().words.front() : 0;
}

Stated<unsigned int> EfuseBase::getDeviceId() const {
  return KelpReturn::kNotSupported;
}

}  // namespace kelp
