#pragma once

#include <type_traits>

#include "linux/ap/misc/interface_record.h"

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

/// What a payload's record line states; a payload without one can't be sent.
template <class Payload>
struct MciTraits;

/// MCI_RECORD(payload, interface, version, payload bytes)
#define MCI_RECORD(Payload, interfaceName, interfaceVersion, payloadBytes)                                 \
  static_assert(std::is_trivial_v<Payload> && alignof(Payload) == 1 && sizeof(Payload) == (payloadBytes)); \
  template <>                                                                                              \
  struct MciTraits<Payload> {                                                                              \
    static constexpr const char* kName = #Payload;                                                         \
  };                                                                                                       \
  INTERFACE_RECORD(Payload, interfaceName, interfaceVersion)

}  // namespace kelp::linux_
