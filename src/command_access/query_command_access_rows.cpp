#include "command_access/query_command_access_rows.h"

#include <utility>

#include "common_define.h"
#include "driver_mode.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;

/// A second pass may find a group where the first had a plain row, and the other way round.
Json& groupIn(Json& parent, std::string_view key) {
  Json& group = parent[std::string(key)];
  if (!group.is_object()) group = Json::object();
  return group;
}

void logFailure(std::string_view text, LumoReturn status) {
  if (text.ends_with('[')) {
    TOLK_LOG(kError) << text << status << "]";
  } else {
    TOLK_LOG(kError) << text;
  }
}

}  // namespace

ReportSection::ReportSection(const LumoAccessDevice& sectionDevice, Json& document) : device(sectionDevice) {
  std::uint32_t index = 0;
  status_ = device.devGetIndex(index);
  if (status_ != LUMO_RETURN_SUCCESS) return;
  status_ = device.devGetPciInfo(pci);
  if (status_ != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "can not get device pci info! error code[" << status_ << "]";
    return;
  }
  report_ = &groupIn(document, "GPU" + std::to_string(index) + " " + pci.sbdf);
}

void ReportSection::put(std::string_view path, std::string text) {
  Json* group = report_;
  for (auto end = path.find('/'); end != std::string_view::npos; end = path.find('/')) {
    group = &groupIn(*group, path.substr(0, end));
    path.remove_prefix(end + 1);
  }
  (*group)[std::string(path)] = std::move(text);
}

void ReportSection::putRows(std::span<const ReportRow> rows) {
  for (const auto& row : rows) {
    if (row.hiddenInGuest && driverMode() == DriverMode::kGuest) continue;
    ReportRow::Texts texts;
    const LumoReturn ret = row.read(*this, texts);
    if (ret == LUMO_RETURN_SUCCESS) {
      for (auto& text : texts) text += row.unit;
    } else {
      if (row.failureLog != nullptr) logFailure(row.failureLog, ret);
      texts.fill(kNoValue);
    }
    put(row.path, std::move(texts[0]));
    if (row.secondPath != nullptr) put(row.secondPath, std::move(texts[1]));
  }
}

LumoReturn queryRows(std::span<const ReportRow> rows, const LumoAccessDevice& device, Json& document) {
  ReportSection section(device, document);
  if (section.status() == LUMO_RETURN_SUCCESS) section.putRows(rows);
  return section.status();
}

}  // namespace tolk
