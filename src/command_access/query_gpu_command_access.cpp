#include "command_access/query_gpu_command_access.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_access/value_text.h"
#include "command_error.h"
#include "command_output/query_gpu_output.h"
#include "common_define.h"
#include "query_gpu_fields.h"
#include "rusk/text.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;
using Fields = std::vector<const QueryGpuField*>;

constexpr StartFailure kNoDevices{"Error: no devices were found.", ExitCode::kNoDevice};

Json readFields(const Fields& fields, const QueryGpuSource& gpu) {
  auto row = Json::object();
  for (const auto* const field : fields) {
    auto value = field->query(gpu);
    row[std::string(field->name)] = value ? value->append(queryGpuUnit(field->name)) : kNoValue;
  }
  return row;
}

}  // namespace

std::shared_ptr<Step> QueryGpuCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  if (auto failure = startLibrary()) return failure;
  Fields fields;
  if (auto failure = listFields(fields)) return failure;
  Devices targets;
  if (auto failure = getTargetDevices(targets)) return failure;

  // Each thread writes to a place of its own.
  std::vector<Json> rows(targets.size());
  std::vector<std::thread> readers;
  readers.reserve(targets.size());
  for (auto row = rows.begin(); const auto& target : targets) {
    const QueryGpuSource gpu{*target.second, *accessFactory->getAccessSystem(), deviceCount_};
    const auto read = [&fields, gpu, &place = *row++] { place = readFields(fields, gpu); };
    try {
      readers.emplace_back(read);
    } catch (const std::system_error&) {
      // Where no thread is to be had this one must do.
      read();
    }
  }
  for (auto& reader : readers) reader.join();

  targets.clear();
  endLibrary();

  std::vector<std::string> names;
  for (const auto* const field : fields) names.emplace_back(field->name);
  return std::make_shared<QueryGpuOutput>(Json(std::move(rows)), std::move(names), wantsHeader());
}

std::shared_ptr<Step> QueryGpuCommandAccess::listFields(Fields& fields) const {
  for (const auto& name : rusk::split(options.at("--query-gpu").front(), ',')) {
    const auto* const field = findQueryGpuField(name);
    if (field == nullptr) {
      return commandError("Field \"" + name + "\" is not a valid field to query.", ExitCode::kUnsupported);
    }
    if (std::ranges::find(fields, field) == fields.end()) fields.push_back(field);
  }
  return nullptr;
}

std::shared_ptr<Step> QueryGpuCommandAccess::getTargetDevices(Devices& targets) {
  const LumoReturn ret = accessFactory->getAccessLibrary()->getAccessDeviceNum(deviceCount_);
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "lumoLibraryCountDevice() failed, ret = " << ret;
    return commandError(kNoDevices.message, kNoDevices.code);
  }
  for (std::uint32_t index = 0; index < deviceCount_; ++index) {
    if (auto device = accessFactory->getAccessDeviceById(index)) {
      targets.emplace(index, std::move(device));
    } else {
      TOLK_LOG(kError) << "devicee index " << index << " get gandle failed";  // sic
    }
  }
  if (const auto ids = options.find("-i"); ids != options.end()) {
    const Devices all = std::exchange(targets, {});
    for (const auto& id : rusk::split(ids->second.front(), ',')) {
      const auto index = rusk::parseNumber<std::uint32_t>(id);
      if (!index) return commandError("stol", ExitCode::kBadArgument);  // sic
      if (const auto found = all.find(*index); found != all.end()) targets.insert(*found);
    }
  }
  return targets.empty() ? commandError(kNoDevices.message, kNoDevices.code) : nullptr;
}

bool QueryGpuCommandAccess::wantsHeader() const {
  const auto format = options.find("--format");
  if (format == options.end()) return true;
  const auto words = rusk::split(format->second.front(), ',');
  return std::ranges::find(words, "noheader") == words.end();
}

}  // namespace tolk
