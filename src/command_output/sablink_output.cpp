#include "command_output/sablink_output.h"

#include <string_view>
#include <utility>

#include "command_output/text_field.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kKeyWidth = 6;
constexpr std::size_t kValueWidth = 10;
constexpr std::string_view kLinkKeys[] = {"LINK ", "Link "};

void appendValue(std::string& out, const Json& value) {
  appendLeft(out, value.get_ref<const std::string&>(), kValueWidth);
  out += '\n';
}

void appendLink(std::string& out, std::string_view number, const Json& value) {
  const std::string head = "Link " + std::string(number) + ": ";
  if (!value.is_object()) {
    out += head;
    appendValue(out, value);
    return;
  }
  for (const auto& [name, text] : value.items()) {
    out.append(head).append(name).append(": ");
    appendValue(out, text);
  }
}

}  // namespace

void appendSablinkDevice(std::string& out, const std::string& key, const Json& device) {
  appendLeft(out, key, kKeyWidth);
  out.append(" : ")
      .append(device.at("Brand Name").get_ref<const std::string&>())
      .append(" (UUID : ")
      .append(device.at("UUID").get_ref<const std::string&>())
      .append(")\n");
}

SablinkOutput::SablinkOutput(Json document) : devices_(std::move(document)) {}

std::shared_ptr<Step> SablinkOutput::work() {
  std::string out;
  for (const auto& [key, device] : devices_.items()) {
    appendSablinkDevice(out, key, device);
    for (const auto& [name, value] : device.items()) {
      for (const auto prefix : kLinkKeys) {
        if (name.starts_with(prefix)) appendLink(out, std::string_view(name).substr(prefix.size()), value);
      }
    }
  }
  std::cout << out << std::flush;
  return nullptr;
}

}  // namespace tolk
