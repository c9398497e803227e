#pragma once

#include <array>
#include <cstdint>

namespace tolk {

/// Name of a video codec. A number without a name throws std::out_of_range.
inline const char* codecName(std::uint32_t codec) {
  static constexpr std::array kNames{"AVC", "VC1", "MPEG2", "MPEG4", "H263", "DIV3", "RV",    "AVS", "RSVD1",
                                     "THO", "VP3", "VP8",   "HEVC",  "VP9",  "AVS2", "RSVD2", "AV1"};
  return kNames.at(codec);
}

}  // namespace tolk
