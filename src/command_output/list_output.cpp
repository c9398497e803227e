#include "command_output/list_output.h"

#include <utility>

#include "command_output/text_field.h"

namespace tolk {

namespace {

constexpr std::size_t kIndexWidth = 6;
constexpr std::size_t kNameWidth = 10;

const std::string& textOf(const nlohmann::ordered_json& device, const char* key) {
  return device.at(key).get_ref<const std::string&>();
}

}  // namespace

ListOutput::ListOutput(nlohmann::ordered_json document, bool withoutInstances)
    : devices_(std::move(document)), hideInstances_(withoutInstances) {}

std::shared_ptr<Step> ListOutput::work() {
  std::string text;
  bool first = true;
  for (const auto& [index, device] : devices_.items()) {
    const bool isInstance = device.contains("DeviceType") && textOf(device, "DeviceType") == "MPC Instance";
    if (isInstance && !hideInstances_) text += first ? "MPC Parent Device(N/A):\n  " : "  ";
    if (!isInstance || !hideInstances_) {
      appendLeft(text, "GPU " + index, kIndexWidth);
      text += ": ";
      appendLeft(text, textOf(device, "Brand Name"), kNameWidth);
      text.append(" (UUID : ").append(textOf(device, "UUID")).append(")\n");
    }
    first = false;
  }
  std::cout << text << std::flush;
  return nullptr;
}

}  // namespace tolk
