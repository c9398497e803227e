#include "command_access/event_search_command_access.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <future>
#include <iterator>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_error.h"
#include "command_output/event_search_output.h"
#include "common_define.h"
#include "rusk/text.h"

namespace tolk {

namespace {

constexpr std::uint32_t kMostRecords = 500;

constexpr StartFailure kNoSelection{"Error: failed to get GPU device", ExitCode::kOperationFailed};
constexpr StartFailure kNoTarget{"Error: no devices were found", ExitCode::kEnumerationFailed};

std::string hexText(unsigned number) {
  char text[9];
  std::snprintf(text, sizeof text, "%x", number);
  return text;
}

/// What the driver added, without the line ends behind it.
std::string additionalText(const LumoXidRecord& record) {
  std::string text(record.additional, strnlen(record.additional, sizeof record.additional));
  while (text.ends_with('\n')) text.pop_back();
  return text;
}

std::string messageText(const LumoXidRecord& record) {
  return "XID:" + hexText(record.xid) + " Severity:" + std::to_string(record.attributes >> 3 & 7) +
         " Scope:" + std::to_string(record.attributes & 7) +
         " Timestamp:" + std::to_string(record.timestamp) + " Pid:" + std::to_string(record.pid) +
         " Additional:" + additionalText(record);
}

/// The uuids of "-u". A blank behind a comma makes several values of them.
std::vector<std::string> splitUuids(const std::vector<std::string>& values) {
  std::string all;
  for (const auto& value : values) all += value + " ";
  auto uuids = rusk::split(all, ',');
  for (auto& uuid : uuids) uuid = rusk::trim(uuid);
  return uuids;
}

/// A GPU that never had a fault has no file to read them from: that is told in the log alone.
void takeMessages(EventSearchCommandAccess::Target& target, const std::string& name, LumoReturn ret,
                  const std::vector<LumoEventData>& events) {
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "device " << name << " get supported event info failed, error is " << ret;
  }
  for (const auto& event : events) {
    if (event.eventType == LUMO_EVENT_XID) target.messages.push_back(messageText(event.record));
  }
}

}  // namespace

std::string EventSearchCommandAccess::Target::key() const {
  return "GPU" + (device ? std::to_string(index) : "N/A") + " UUID:GPU-" + uuid;
}

std::shared_ptr<Step> EventSearchCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  if (auto failure = startLibrary()) return failure;
  std::uint32_t count = 0;
  if (accessFactory->getAccessLibrary()->getAccessDeviceNum(count) != LUMO_RETURN_SUCCESS) {
    return commandError(StartWording{}.noCount.message, StartWording{}.noCount.code);
  }
  std::vector<Target> targets;
  if (!selectDevices(count, targets)) return commandError(kNoSelection.message, kNoSelection.code);
  if (targets.empty()) return commandError(kNoTarget.message, kNoTarget.code);

  // Each task writes to its own target.
  std::vector<std::future<bool>> tasks;
  for (auto& target : targets) {
    const auto task = [this, &target] { return search(target); };
    try {
      tasks.push_back(std::async(std::launch::async, task));
    } catch (const std::system_error&) {
      // Where no thread is to be had this one must do.
      tasks.push_back(std::async(std::launch::deferred, task));
    }
  }
  const auto failures = std::ranges::count_if(tasks, [](auto& task) { return !task.get(); });
  if (failures != 0) return commandError(kNotAvailable, ExitCode::kUnsupported);

  auto document = nlohmann::ordered_json::object();
  for (const auto& target : targets) {
    for (const auto& message : target.messages) {
      auto& events = document[target.key()];
      events[std::to_string(events.size())] = message;
    }
  }
  return std::make_shared<EventSearchOutput>(std::move(document), hasOption("--json"));
}

bool EventSearchCommandAccess::listAttached(std::uint32_t count, std::vector<Target>& attached) const {
  for (std::uint32_t index = 0; index < count; ++index) {
    Target target{.index = index, .uuid = {}, .device = accessFactory->getAccessDeviceById(index), .messages = {}};
    if (!target.device || target.device->devGetUUID(target.uuid) != LUMO_RETURN_SUCCESS) return false;
    attached.push_back(std::move(target));
  }
  return true;
}

bool EventSearchCommandAccess::selectDevices(std::uint32_t count, std::vector<Target>& targets) const {
  std::vector<Target> attached;
  if (!listAttached(count, attached)) return false;
  const auto ids = options.find("-i");
  const auto uuids = options.find("-u");
  if (ids == options.end() && uuids == options.end()) {
    targets = std::move(attached);
    return true;
  }
  std::set<std::uint32_t> asked;
  std::vector<Target> inactive;
  if (ids != options.end()) {
    for (const auto& id : rusk::split(ids->second.front(), ',')) {
      if (const auto index = rusk::parseNumber<std::uint32_t>(id)) asked.insert(*index);
    }
  }
  if (uuids != options.end()) {
    for (const auto& uuid : splitUuids(uuids->second)) {
      const auto device = std::ranges::find(attached, uuid, &Target::uuid);
      if (device != attached.end()) {
        asked.insert(device->index);
      } else if (std::ranges::find(inactive, uuid, &Target::uuid) == inactive.end()) {
        TOLK_LOG(kInfo) << "device uuid " << uuid << "is inactive";
        inactive.push_back({.index = 0, .uuid = uuid, .device = nullptr, .messages = {}});
      }
    }
  }
  std::ranges::copy_if(attached, std::back_inserter(targets),
                       [&](const Target& target) { return asked.contains(target.index); });
  std::ranges::move(inactive, std::back_inserter(targets));
  return true;
}

std::uint32_t EventSearchCommandAccess::wantedCount() const {
  const auto count = options.find("-n");
  if (count == options.end()) return kMostRecords;
  return std::min(rusk::parseNumber<std::uint32_t>(count->second.front()).value_or(kMostRecords), kMostRecords);
}

bool EventSearchCommandAccess::search(Target& target) const {
  if (target.device) return searchTargetDeviceEvents(target);
  searchTargetUuidEvents(target);
  return true;
}

bool EventSearchCommandAccess::searchTargetDeviceEvents(Target& target) const {
  const std::string name = std::to_string(target.index);
  std::vector<unsigned long long> supported;
  if (const LumoReturn ret = target.device->getSupportedEventTypes(supported); ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "device " << name << " get supported event type failed, error is " << ret;
    return false;
  }
  if (const auto type = askedType(supported)) {
    std::vector<LumoEventData> events;
    takeMessages(target, name, target.device->getEventInfo(*type, wantedCount(), events), events);
  }
  return true;
}

void EventSearchCommandAccess::searchTargetUuidEvents(Target& target) const {
  if (const auto type = askedType({LUMO_EVENT_XID})) {
    std::vector<LumoEventData> events;
    takeMessages(target, target.uuid,
                 LumoAccessDevice::getTargetUuidEventInfo(target.uuid, *type, wantedCount(), events), events);
  }
}

std::optional<unsigned long long> EventSearchCommandAccess::askedType(
    const std::vector<unsigned long long>& supported) const {
  const auto& asked = options.at("-s").front();
  const auto type = rusk::parseNumber<unsigned long long>(asked);
  if (type && std::ranges::find(supported, *type) != supported.end()) return type;
  TOLK_LOG(kWarn) << "event type " << asked << " not support";
  return std::nullopt;
}

}  // namespace tolk
