#include "families.h"

#include <array>
#include <nlohmann/json.hpp>

namespace {

constexpr std::array kModels{
    Model{0x0105, "OVT A11"},   Model{0x0106, "OVT A11"},   Model{0x0108, "OVT A13"},
    Model{0x0109, "OVT B210M"}, Model{0x010C, "OVT A15"},   Model{0x010D, "OVT A16"},
    Model{0x010E, "OVT B210"},  Model{0x010F, "OVT B220"},  Model{0x0210, "OVT A18"},
    Model{0x0211, "OVT A18"},   Model{0x0220, "OVT A17"},   Model{0x0230, "OVT B230"},
    Model{0x0240, "OVT B230E"}, Model{0x0241, "OVT B230E"}, Model{0x0250, "OVT D33"},
    Model{0x0310, "OVT A19ES"}, Model{0x0320, "OVT A19"},   Model{0x0330, "OVT B240"},
    Model{0x0331, "OVT B240"},  Model{0x0332, "OVT B240"},  Model{0x0340, "OVT D35"},
    Model{0x0410, "OVT B250A"}, Model{0x0411, "OVT B250A"}, Model{0x0420, "OVT B250Z"},
    Model{0x0430, "OVT B250B"}, Model{0x0440, "OVT B250C"}, Model{0x0450, "OVT B250D"},
    Model{0x04FF, "OVT T1"},
};

constexpr std::string_view kPrefix = "OVT ";

// What every family has.
constexpr std::string_view kCommon = R"json({
  "class": "0x030000", "revision": 1,
  "link": {"speed": 16, "max_speed": 16, "width": 16, "max_width": 16},
  "numa_node": 0, "cpus": "0-31",
  "bars": [{"size": "256MiB", "prefetchable": true, "bits": 64}, null,
           {"size": "16MiB", "prefetchable": false, "bits": 32}],
  "pcie_capability": true,
  "processes": [], "displays": [], "retired_pages": [], "pending_pages": [],
  "fans": [{"percent": 40, "rpm": 1800}], "vpu_sessions": [],
  "values": {
    "utilization": 0, "engine0": 0, "engine1": 0, "engine2": 0, "engine3": 0, "memory_busy": 0,
    "core_max": 0, "core_average": 0, "pstate": 8,
    "memory_total": "16GiB", "memory_used": "2MiB",
    "memory_region0": 0, "memory_region1": 0, "memory_region2": 0, "memory_region3": 0,
    "system_total": "8GiB", "guest_reserved": 0,
    "memory_clock_max": 1750000000, "memory_type": 1, "memory_vendor": 2,
    "channel_count": 8, "channel_width": 32,
    "memory_temperature": 46, "memory_channel_mask": 255,
    "bar2_total": "256MiB", "bar2_used": "4MiB", "bar2_free": "252MiB",
    "core_count": 8, "mpc_capable": 0, "ion_id": 65535,
    "firmware": [30102, 20105, 10003, 10000, 10002, 10001],
    "brand": "OVT",
    "p2p_status": 0, "pcie_replays": 0,
    "pcie_rx_rate": 0, "pcie_tx_rate": 0, "pcie_perf_state": 1,
    "pcie_rx_min": 0, "pcie_rx_mean": 0, "pcie_rx_max": 0,
    "pcie_tx_min": 0, "pcie_tx_mean": 0, "pcie_tx_max": 0,
    "sablink_rx_rate": 0, "sablink_tx_rate": 0, "sablink_perf_interval": 100,
    "serdes_eye_width": 400, "serdes_eye_height": 120, "serdes_bit_errors": 0,
    "sample_asks": 1, "sample_window_start": 1000000000, "sample_window_end": 2000000000,
    "sample_period": 166666667,
    "edc_channels": 0, "edc_total": [0, 0, 0, 0],
    "temperature_slowdown": 95000, "temperature_shutdown": 105000,
    "power": {"0": 60000, "1": 40000, "2": 12000},
    "power_limit": {"1": 250000, "2": 250000, "3": 250000, "4": 100000, "5": 300000},
    "voltage": {"0": 850, "1": 1250, "2": 800},
    "slowdown_count": 0, "slowdown_time": 0,
    "cluster_count": 2, "units_per_core": [4, 4, 4, 4, 4, 4, 4, 4], "core_clock_max": 1500
  }
})json";

// What differs, by family.
constexpr std::string_view kOwn[] = {
    R"json({
  "link": {"speed": 8, "max_speed": 8},
  "vpu_cores": [{"kind": "decoder", "threads": 1, "instances": 16},
                {"kind": "encoder", "threads": 1, "instances": 8}],
  "values": {
    "clock": {"0": 800000000, "1": 1600000000},
    "temperature": {"1": 42000, "2": 41000, "3": 40000},
    "memory_clock_max": 1600000000, "memory_type": 0, "memory_total": "4GiB",
    "core_count": 2, "cluster_count": 1, "units_per_core": [4, 4]
  }
})json",
    R"json({
  "vpu_cores": [{"kind": "decoder", "threads": 2, "instances": 16},
                {"kind": "decoder", "threads": 2, "instances": 16},
                {"kind": "encoder", "threads": 2, "instances": 8},
                {"kind": "encoder", "threads": 2, "instances": 8}],
  "values": {
    "clock": {"72": 1200000000, "79": 1100000000, "80": 1750000000},
    "temperature": {"9": 43000, "18": 42000, "27": 41000, "36": 40000}
  }
})json",
    R"json({
  "vpu_cores": [{"kind": "decoder", "threads": 2, "instances": 16},
                {"kind": "decoder", "threads": 2, "instances": 16},
                {"kind": "decoder", "threads": 2, "instances": 16},
                {"kind": "decoder", "threads": 2, "instances": 16},
                {"kind": "encoder", "threads": 2, "instances": 8},
                {"kind": "encoder", "threads": 2, "instances": 8}],
  "values": {
    "clock": {"72": 1300000000, "79": 1200000000, "80": 2000000000},
    "temperature": {"9": 41000, "18": 40000, "27": 40000, "36": 39000},
    "memory_total": "48GiB", "memory_clock_max": 2000000000, "channel_count": 12
  }
})json",
    R"json({
  "link": {"speed": 32, "max_speed": 32},
  "bars": [{"size": "64GiB", "prefetchable": true, "bits": 64}, null,
           {"size": "32MiB", "prefetchable": true, "bits": 64}, null,
           {"size": "16MiB", "prefetchable": false, "bits": 32}],
  "vpu_cores": [{"kind": "decoder", "threads": 2, "instances": 16, "clock": 1000000000},
                {"kind": "decoder", "threads": 2, "instances": 16, "clock": 1000000000},
                {"kind": "encoder", "threads": 2, "instances": 8, "clock": 1000000000},
                {"kind": "encoder", "threads": 2, "instances": 8, "clock": 1000000000}],
  "values": {
    "clock": {"1000": 1700000000, "1001": 2000000000},
    "temperature": {"1000": 40000, "1002": 38000},
    "memory_total": "64GiB", "memory_clock_max": 2000000000, "channel_count": 16,
    "ecc_current": 1, "ecc_pending": 1,
    "ecc_errors": {"0,1,0": 0, "0,1,1": 0, "1,1,0": 0, "1,1,1": 0},
    "core_count": 16, "cluster_count": 4, "core_clock_max": 1900,
    "units_per_core": [4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4]
  }
})json",
};

size_t indexOf(Family family) {
  return static_cast<size_t>(family) - 1;
}

}  // namespace

std::span<const Model> allModels() {
  return kModels;
}

const Model* findModel(uint16_t deviceId) {
  for (const Model& model : kModels) {
    if (model.deviceId == deviceId) return &model;
  }
  return nullptr;
}

const Model* findModel(std::string_view name) {
  for (const Model& model : kModels) {
    if (model.name == name || model.name.substr(kPrefix.size()) == name) return &model;
  }
  return nullptr;
}

bool isFamily(uint32_t number) {
  return number >= 1 && number <= 4;
}

const FamilyTraits& traitsOf(Family family) {
  static const FamilyTraits kTraits[] = {
      {"wold", {0}, 1, {1, 2, 3}, 0},
      {"fen1", {72, 79}, 80, {9, 18, 27, 36}, 2048},
      {"fen2", {72, 79}, 80, {9, 18, 27, 36}, 2048},
      {"tor1", {1000}, 1001, {1000, 1002}, 0},
  };
  return kTraits[indexOf(family)];
}

const nlohmann::json& defaultsOf(Family family) {
  static nlohmann::json made[std::size(kOwn)];
  nlohmann::json& defaults = made[indexOf(family)];
  if (defaults.is_null()) {
    defaults = nlohmann::json::parse(kCommon);
    const nlohmann::json own = nlohmann::json::parse(kOwn[indexOf(family)]);
    for (const auto& [key, value] : own.items()) {
      if (value.is_object()) {
        defaults[key].update(value);
      } else {
        defaults[key] = value;
      }
    }
  }
  return defaults;
}
