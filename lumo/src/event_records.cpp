#include "event_records.h"

#include <filesystem>
#include <fstream>

#include "kelp_log.h"
#include "record_text.h"

namespace lumo {
namespace {

constexpr const char* kReportFolder = "/var/log/ovgpu/event_report/";
constexpr std::uint16_t kMsgVersion = 1;
constexpr std::streamoff kRecordSize = sizeof(LumoXidRecord);

struct XidFileHeader {
  std::uint8_t magic[8];
  std::uint16_t version;
  std::uint8_t reserved[22];
};
static_assert(sizeof(XidFileHeader) == 32);
constexpr std::streamoff kHeaderSize = sizeof(XidFileHeader);

template <class Record>
bool readInto(std::istream& file, Record* records, std::streamoff size) {
  file.read(reinterpret_cast<char*>(records), size);
  return file.gcount() == size;
}

}  // namespace

const char* eventFileName(unsigned long long eventType) {
  return eventType == LUMO_EVENT_XID ? "xid_records" : nullptr;
}

std::vector<LumoXidRecord> readXidRecords(const std::string& path, unsigned int count, LumoReturn* status) {
  *status = LUMO_RETURN_UNKNOWN_ERROR;
  // Opening a pipe would wait for someone to write to it.
  std::error_code error;
  std::ifstream file;
  if (std::filesystem::is_regular_file(path, error)) file.open(path, std::ios::binary);
  if (!file.is_open()) {
    KELP_LOG(kError) << "failed to open" << path;
    return {};
  }
  XidFileHeader header{};
  if (!readInto(file, &header, kHeaderSize)) {
    KELP_LOG(kError) << "read xid header failed";
    return {};
  }
  if (header.version != kMsgVersion) {
    KELP_LOG(kError) << "xid header version is" << header.version << "current xid msg version is "
                     << kMsgVersion;
    return {};
  }
  const std::streamoff size = file.seekg(0, std::ios::end).tellg();
  const std::streamoff wanted = count * kRecordSize;
  const std::streamoff start = wanted + kHeaderSize > size ? kHeaderSize : size - wanted;
  if (start > size) {
    KELP_LOG(kError) << "failed to calculate the buffer to be read";
    return {};
  }
  if ((size - start) % kRecordSize != 0) {
    KELP_LOG(kError) << "the calculated buffer length does not meet the requirements";
    return {};
  }
  std::vector<LumoXidRecord> records(static_cast<std::size_t>((size - start) / kRecordSize));
  if (!readInto(file.seekg(start), records.data(), size - start)) {
    KELP_LOG(kError) << "read xid persistent data failed";
    return {};
  }
  *status = LUMO_RETURN_SUCCESS;
  return records;
}

std::vector<LumoEventData> getEventDataByEventType(unsigned int deviceIndex, const std::string& uuid,
                                                   unsigned long long eventType, unsigned int count,
                                                   LumoReturn* status) {
  KELP_LOG(kInfo) << "device " << deviceIndex << "query event" << eventType;
  const char* const fileName = eventFileName(eventType);
  if (fileName == nullptr) {
    *status = LUMO_RETURN_NOT_SUPPORTED;
    return {};
  }
  const std::vector<LumoXidRecord> records =
      readXidRecords(kReportFolder + uuid + "/" + fileName, count, status);
  std::vector<LumoEventData> events;
  for (auto record = records.rbegin(); record != records.rend(); ++record) {
    LumoEventData& event = events.emplace_back();
    event.deviceIndex = deviceIndex;
    event.eventType = LUMO_EVENT_XID;
    setText(event.uuid, uuid);
    event.record = *record;
  }
  return events;
}

}  // namespace lumo
