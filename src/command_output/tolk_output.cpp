#include "command_output/tolk_output.h"

#include <algorithm>
#include <span>
#include <utility>

#include "command_output/text_field.h"
#include "command_output/tolk_layout.h"
#include "driver_mode.h"
#include "host_environment.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kIndent = 4;
constexpr std::size_t kVersionWidth = 29;

const std::string& textOf(const Json& object, const char* key) {
  return object.at(key).get_ref<const std::string&>();
}

/// The header's row when there is no object.
void appendRow(std::string& out, const Row& row, const Json* object = nullptr) {
  for (const auto& cell : row) {
    const std::string_view text =
        object && cell.key ? std::string_view(textOf(*object, cell.key)) : cell.title;
    (cell.alignRight ? appendRight : appendLeft)(out, text, cell.width);
  }
  out += '\n';
}

/// A line of `total` + 1 characters.
void appendRule(std::string& out, std::size_t total, char ends) {
  out += ends;
  out.append(total - 1, '-');
  out += ends;
  out += '\n';
}

const TolkLayout& layoutOf(const Json& devices, bool guest) {
  if (guest) return kGuestLayout;
  const bool wide = std::ranges::any_of(
      devices, [](const Json& device) { return textOf(device, "Name").size() > kNormalWidths.name; });
  return wide ? kWideLayout : kNormalLayout;
}

void appendBanner(std::string& out, const TolkLayout& layout, const Json& document, const char* product) {
  out.append(textOf(document, "Timestamp")).append("\n");
  appendRule(out, layout.total, '-');
  out.append(kIndent, ' ').append(product);
  appendLeft(out, textOf(document, "orvane-tolk"), kVersionWidth);
  out.append("Driver Version:").append(textOf(document, "Driver Version")).append("\n");
  appendRule(out, layout.total, '-');
}

void appendDevices(std::string& out, const TolkLayout& layout, const Json& devices, bool concise) {
  const std::span rows(layout.deviceRows.data(), layout.deviceRowCount);
  for (const auto& row : rows) appendRow(out, row);
  for (const auto& device : devices) {
    if (concise && textOf(device, "DeviceType") == "MPC Instance") continue;
    appendRule(out, layout.total, '+');
    for (const auto& row : rows) appendRow(out, row, &device);
  }
  appendRule(out, layout.total, '-');
  out += '\n';
}

void appendProcesses(std::string& out, const TolkLayout& layout, const Json& processes, bool queried) {
  appendRule(out, layout.total, '-');
  out += "Processes:\n";
  appendRow(out, layout.processRow);
  appendRight(out, "Usage", layout.total);
  out += '\n';
  appendRule(out, layout.total, '+');
  for (const auto& device : processes) {
    for (const auto& process : device) appendRow(out, layout.processRow, &process);
  }
  if (processes.empty()) {
    out += queried ? "   No running processes found\n" : "   Failed to query running processes\n";
  }
  appendRule(out, layout.total, '-');
}

}  // namespace

TolkOutput::TolkOutput(Json document, bool processesQueried, bool concise)
    : document_(std::move(document)), processesQueried_(processesQueried), concise_(concise) {}

std::shared_ptr<Step> TolkOutput::work() {
  const bool guest = driverMode() == DriverMode::kGuest;
  const Json& devices = document_.at("Device");
  if (devices.empty() && !guest) return nullptr;

  const TolkLayout& layout = layoutOf(devices, guest);
  const bool targetEnv = !guest && isTargetEnv(kEnvironmentFile);
  std::string out;
  appendBanner(out, layout, document_, targetEnv ? "norvik-tolk:" : "orvane-tolk:");
  appendDevices(out, layout, devices, concise_);
  if (!guest && !concise_ && !hostHasMdevBus()) {
    appendProcesses(out, layout, document_.at("Process"), processesQueried_);
  }
  std::cout << out << std::flush;
  return nullptr;
}

}  // namespace tolk
