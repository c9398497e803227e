#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace kelp {

/// The Sablink ports of a device.
struct SablinkSpec {
  unsigned int linkCount = 0;
  unsigned int linkSpeed = 0;  ///< Mbit/s of one link and direction
  unsigned int version = 0;    ///< times 100
};

enum class SablinkState : std::uint32_t { kDown = 0, kUp = 1, kDowngraded = 2 };

enum class SablinkCapStatus : std::uint32_t { kNo = 0, kYes = 1 };

/// One direct link between two devices.
struct SablinkLayout {
  unsigned int localPort = 0;
  unsigned int remotePort = 0;
};

/// A way from one device to another, by misc numbers, both included.
struct SablinkPath {
  std::vector<std::uint32_t> miscIds;
};

/// The other end of a link.
struct SablinkRemoteDevInfo {
  unsigned long sbdf = 0;  ///< packed
  unsigned int link = 0;
  unsigned int miscId = 0;
};

struct SablinkPerfStart {
  unsigned int sessionId = 0;
  unsigned int actualInterval = 0;  ///< milliseconds
};

struct SablinkPerfData {
  unsigned long rxBytes = 0;  ///< since the start
  unsigned long txBytes = 0;
  unsigned long rxRate = 0;  ///< bytes/s over the last interval
  unsigned long txRate = 0;
  unsigned int samples = 0;  ///< intervals since the start
};

struct SablinkPerfStop {
  unsigned int samples = 0;  ///< intervals taken in all
};

struct SablinkLaneStatus {
  std::uint32_t state = 0;      ///< 0 down, 1 training, 2 locked
  std::uint32_t eyeWidth = 0;   ///< thousandths of a unit interval
  std::uint32_t eyeHeight = 0;  ///< millivolts
  std::uint32_t bitErrors = 0;  ///< since training
};

/// The lanes of a link, in the driver's own 84 bytes.
struct SablinkSerdesStatus {
  std::uint32_t laneCount = 0;
  std::array<SablinkLaneStatus, 4> lanes{};
  std::array<std::uint8_t, 16> reserved{};
};

struct QuerySablinkStateParam {
  unsigned int link = 0;
};

struct QuerySablinkCapStatusParam {
  unsigned int link = 0;
  unsigned int capability = 0;  ///< 0 P2P access, 1 P2P atomic
};

struct QuerySablinkErrCounterParam {
  unsigned int link = 0;
  unsigned int kind = 0;  ///< 0 replay, 1 recovery, 2 framing, 3 FEC correction, 4 CRC, 5 receiver
};

struct QuerySablinkLayoutsParam {
  unsigned int peer = 0;  ///< misc number of the other device
};

struct StartSablinkPerfParam {
  unsigned int link = 0;
};

struct QuerySablinkPerfDataParam {
  unsigned int link = 0;
  unsigned int sessionId = 0;
};

}  // namespace kelp
