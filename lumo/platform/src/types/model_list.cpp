#include "model_list.h"

#include <algorithm>
#include <array>

namespace kelp {
namespace {

// In ascending order of id; look-up relies on it.
constexpr std::array<ModelRow, 28> kModels{{
    {0x0105, "OVT A11", DevArch::kWold},
    {0x0106, "OVT A11", DevArch::kWold},
    {0x0108, "OVT A13", DevArch::kWold},
    {0x0109, "OVT B210M", DevArch::kWold},
    {0x010C, "OVT A15", DevArch::kWold},
    {0x010D, "OVT A16", DevArch::kWold},
    {0x010E, "OVT B210", DevArch::kWold},
    {0x010F, "OVT B220", DevArch::kWold},
    {0x0210, "OVT A18", DevArch::kFen1},
    {0x0211, "OVT A18", DevArch::kFen1},
    {0x0220, "OVT A17", DevArch::kFen1},
    {0x0230, "OVT B230", DevArch::kFen1},
    {0x0240, "OVT B230E", DevArch::kFen1},
    {0x0241, "OVT B230E", DevArch::kFen1},
    {0x0250, "OVT D33", DevArch::kFen1},
    {0x0310, "OVT A19ES", DevArch::kFen2},
    {0x0320, "OVT A19", DevArch::kFen2},
    {0x0330, "OVT B240", DevArch::kFen2},
    {0x0331, "OVT B240", DevArch::kFen2},
    {0x0332, "OVT B240", DevArch::kFen2},
    {0x0340, "OVT D35", DevArch::kFen2},
    {0x0410, "OVT B250A", DevArch::kTor1},
    {0x0411, "OVT B250A", DevArch::kTor1},
    {0x0420, "OVT B250Z", DevArch::kTor1},
    {0x0430, "OVT B250B", DevArch::kTor1},
    {0x0440, "OVT B250C", DevArch::kTor1},
    {0x0450, "OVT B250D", DevArch::kTor1},
    {0x04FF, "OVT T1", DevArch::kTor1},
}};
static_assert(std::ranges::is_sorted(kModels, {}, &ModelRow::deviceId));

}  // namespace

const ModelRow* findModel(unsigned int deviceId) {
  const auto row = std::ranges::lower_bound(kModels, deviceId, {}, &ModelRow::deviceId);
  return row != kModels.end() && row->deviceId == deviceId ? &*row : nullptr;
}

}  // namespace kelp
