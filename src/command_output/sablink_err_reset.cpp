#include "command_output/sablink_err_reset.h"

#include <utility>

#include "command_output/sablink_output.h"

namespace tolk {

SablinkErrReset::SablinkErrReset(nlohmann::ordered_json document, std::uint32_t firstPort)
    : devices_(std::move(document)), firstPort_(firstPort) {}

std::shared_ptr<Step> SablinkErrReset::work() {
  std::string out;
  for (const auto& [key, device] : devices_.items()) {
    appendSablinkDevice(out, key, device);
    auto port = firstPort_;
    for (const auto& result : device.at("reset result")) {
      out += "Link " + std::to_string(port++) + ": error counters reset";
      out += result.get<bool>() ? "\n" : " failed\n";
    }
  }
  std::cout << out << std::flush;
  return nullptr;
}

}  // namespace tolk
