#include "command_access/value_text.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace tolk {

std::string mibText(unsigned long long bytes) {
  return std::to_string(bytes / kMib) + "MiB";
}

const char* deviceTypeText(DeviceType type) {
  switch (type) {
    case DeviceType::kVirtual:
      return "Virtual";
    case DeviceType::kPhysical:
      return "Physical";
    case DeviceType::kMpcParent:
      return "MPC Parent";
    case DeviceType::kMpcInstance:
      return "MPC Instance";
  }
  return kNoValue;
}

std::string timestampText() {
  const std::time_t now = std::time(nullptr);
  std::array<char, 26> text;
  if (ctime_r(&now, text.data()) == nullptr) return kNoValue;
  text[24] = '\0';  // the line end
  return text.data();
}

std::string localTimeText(std::time_t seconds) {
  std::tm local{};
  if (localtime_r(&seconds, &local) == nullptr) return kNoValue;
  std::array<char, 40> text;
  return {text.data(), std::strftime(text.data(), text.size(), "%Y/%m/%d %H:%M:%S", &local)};
}

std::string localTimeMsText(std::chrono::system_clock::time_point time) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
  const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(time - seconds).count();
  std::array<char, 5> fraction;
  std::snprintf(fraction.data(), fraction.size(), ".%03u", static_cast<unsigned>(milliseconds) % 1000);
  return localTimeText(std::chrono::system_clock::to_time_t(seconds)) + fraction.data();
}

std::optional<std::uint32_t> performanceState(const LumoAccessDevice& device) {
  std::uint32_t state = 0;
  if (device.deviceGetPerfState(state) != LUMO_RETURN_SUCCESS) return std::nullopt;
  return state;
}

}  // namespace tolk
