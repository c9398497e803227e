#pragma once

#include <array>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>
#include <string_view>

#include "command_access/lumo_access/lumo_access_device.h"
#include "command_access/query_command_access_text.h"
#include "command_access/value_text.h"

namespace tolk {

struct ReportRow;

/// One section of the report on one device while it is filled: the device, what every section needs to
/// know of it, and its member of the document, in which rows stay where they were first put.
class ReportSection {
 public:
  /// Asks for the index and the PCI record, which together name the device in the document. Without
  /// them nothing can be put.
  ReportSection(const LumoAccessDevice& sectionDevice, nlohmann::ordered_json& document);

  /// Of the start. A section is given up when it failed; no row is worth that.
  LumoReturn status() const { return status_; }

  unsigned architecture() const { return architectureOf(pci.deviceId); }

  /// @param path the keys from the outside in, with "/" between
  void put(std::string_view path, std::string text);

  void putRows(std::span<const ReportRow> rows);

  const LumoAccessDevice& device;
  LumoPciInfo pci{};

 private:
  LumoReturn status_ = LUMO_RETURN_SUCCESS;
  nlohmann::ordered_json* report_ = nullptr;
};

/// What one call of the device fills: most often one row, sometimes two.
struct ReportRow {
  using Texts = std::array<std::string, 2>;
  using Read = LumoReturn (*)(const ReportSection& section, Texts& texts);

  const char* path;
  Read read;
  const char* unit = "";             ///< behind each value that was read
  const char* failureLog = nullptr;  ///< null: says nothing; the status follows a "[" at the end
  const char* secondPath = nullptr;
  bool hiddenInGuest = false;
};

/// The value of a method as a text.
inline std::string reportText(const std::string& text) {
  return text;
}
inline std::string reportText(std::uint32_t number) {
  return std::to_string(number);
}
inline std::string reportText(std::int32_t number) {
  return std::to_string(number);
}
inline std::string reportText(double watts) {
  return wattsText(watts);
}
inline std::string reportText(bool yes) {
  return yes ? "YES" : "NO";
}
inline std::string reportText(DeviceType type) {
  return deviceTypeText(type);
}

template <class Value>
Value outputOf(LumoReturn (LumoAccessDevice::*)(Value&) const);

/// Reads a row from the method of the device that gives its value.
template <auto method>
LumoReturn readValue(const ReportSection& section, ReportRow::Texts& texts) {
  decltype(outputOf(method)) value{};
  const LumoReturn ret = (section.device.*method)(value);
  if (ret == LUMO_RETURN_SUCCESS) texts[0] = reportText(value);
  return ret;
}

/// Reads a row that needs no further call.
template <auto textOf>
LumoReturn readKnown(const ReportSection& section, ReportRow::Texts& texts) {
  texts[0] = textOf(section);
  return LUMO_RETURN_SUCCESS;
}

/// A section that is rows and nothing else.
LumoReturn queryRows(std::span<const ReportRow> rows, const LumoAccessDevice& device,
                     nlohmann::ordered_json& document);

}  // namespace tolk
