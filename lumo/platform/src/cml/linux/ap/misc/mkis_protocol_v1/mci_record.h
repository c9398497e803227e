#pragma once

#include <concepts>
#include <type_traits>

#include "linux/ap/wire.h"

namespace kelp::linux_ {

/// One request number carries every record of protocol 1; the driver reads the fixed first eight bytes
/// and takes the length from the header.
constexpr u32 kMciRequest = 0xC0084DAF;

/// What the tool writes into `status`; a driver never returns it.
constexpr u32 kMciStatusUnanswered = 13;

enum class MciPduType : u32 { kScan = 0, kList = 1, kCall = 2 };

struct [[gnu::packed]] MciHeader {
  u16 major;     // 0
  u16 minor;     // 2
  u32 status;    // 4
  u32 pduType;   // 8
  u32 bodySize;  // 12, bytes behind the header
  u64 reserved;  // 16
};

struct [[gnu::packed]] MciBody {
  u16 intfName;     // 24
  u8 intfVersion;   // 26
  u8 reserved1;     // 27
  u32 payloadSize;  // 28
  u64 reserved2;    // 32
};

/// A whole interface call.
template <class Payload>
struct [[gnu::packed]] MciCall {
  MciHeader header;
  MciBody body;
  Payload payload;
};

/// A number in a field that may be narrower: what does not fit becomes the field's highest, so that it
/// never turns into another's number.
template <class Field>
constexpr Field saturated(u32 number) {
  return static_cast<Field>(std::min<u32>(number, std::numeric_limits<Field>::max()));
}

/// A figure that the driver counts in thousandths.
constexpr float ofThousandths(std::integral auto count) {
  return static_cast<float>(count) / 1000.0F;
}

/// Two numbers in the driver's one 64-bit field.
constexpr u64 selectorOf(u32 low, u32 high) {
  return u64{low} | (u64{high} << 32);
}

/// What a payload's record line states; a payload without one can't be sent.
template <class Payload>
struct MciTraits;

/// MCI_RECORD(payload, interface, version, payload bytes)
#define MCI_RECORD(Payload, interfaceName, interfaceVersion, payloadBytes)                                 \
  static_assert(std::is_trivial_v<Payload> && alignof(Payload) == 1 && sizeof(Payload) == (payloadBytes)); \
  template <>                                                                                              \
  struct MciTraits<Payload> {                                                                              \
    static constexpr const char* kName = #Payload;                                                         \
    static constexpr u16 kInterface = interfaceName;                                                       \
    static constexpr u8 kVersion = interfaceVersion;                                                       \
  }

}  // namespace kelp::linux_
