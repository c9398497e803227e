#include "event_reader.h"

#include "device_lists.h"

namespace {

constexpr size_t kHeaderSize = 32;
constexpr size_t kRecordSize = 168;
constexpr size_t kMessageSize = 256;
constexpr size_t kTextAt = 40;
constexpr size_t kMessageUuidAt = 8;
constexpr size_t kMessageRecordAt = 24;
constexpr uint64_t kEventTypeXid = 1;

// The last two are of the message around a record.
const std::vector<std::string_view> kKeys{"xid", "scope", "severity", "attributes",    "time",
                                          "pid", "text",  "version",  "message_types", "message_version"};

void put(std::string& bytes, size_t offset, size_t width, uint64_t number) {
  for (size_t i = 0; i < width; ++i) bytes.at(offset + i) = static_cast<char>(number >> (8 * i));
}

uint64_t readAttributes(const JsonCursor& entry) {
  const auto given = entry.find("attributes");
  if (given) return given->number();
  const auto scope = entry.find("scope");
  const auto severity = entry.find("severity");
  const uint64_t scopeNumber = scope ? chooseFrom(*scope, {"process", "engine", "device", "link"}) : 0;
  const uint64_t severityNumber =
      severity ? chooseFrom(*severity, {"information", "warning", "error", "fatal"}) : 2;
  return (scopeNumber & 7) | (severityNumber & 7) << 3;
}

std::string readRecordFile(const JsonCursor& rows) {
  std::string file = faultRecordHeader();
  for (const JsonCursor& entry : rows.elements()) file += faultRecord(entry);
  return file;
}

// The digits of a uuid as bytes, in the order of the text.
std::string uuidBytes(const std::string& uuid) {
  std::string digits;
  for (const char c : uuid) {
    if (c != '-') digits += c;
  }
  std::string bytes;
  for (size_t i = 0; i + 1 < digits.size(); i += 2) {
    bytes += static_cast<char>(numberFromText("0x" + digits.substr(i, 2)).value_or(0));
  }
  bytes.resize(16, '\0');
  return bytes;
}

}  // namespace

std::string faultRecord(const JsonCursor& entry) {
  entry.allowKeys(kKeys);
  std::string record(kRecordSize, '\0');
  const auto version = entry.find("version");
  const auto pid = entry.find("pid");
  put(record, 0, 4, version ? version->whole(0, 0xFFFFFFFF) : 1);
  put(record, 4, 4, entry.require("xid").whole(0, 0xFFFFFFFF));
  put(record, 8, 8, readAttributes(entry));
  put(record, 16, 8, static_cast<uint64_t>(entry.require("time").moment()));
  put(record, 32, 8, pid ? pid->whole(0, 0xFFFFFFFF) : 0);
  if (const auto text = entry.find("text")) {
    const std::string told = text->text();
    if (told.size() > kRecordSize - kTextAt) text->fail("a text of at most 128 bytes");
    record.replace(kTextAt, told.size(), told);
  }
  return record;
}

std::string faultRecordHeader() {
  std::string header(kHeaderSize, '\0');
  header.replace(0, 8, "OVXIDREC");
  put(header, 8, 2, 1);
  return header;
}

std::string eventMessage(const std::string& uuid, const JsonCursor& entry) {
  const std::string record = faultRecord(entry);
  const auto types = entry.find("message_types");
  const auto version = entry.find("message_version");
  std::string message(kMessageSize, '\0');
  put(message, 0, 3, types ? types->whole(0, 0xFFFFFF) : kEventTypeXid);
  put(message, 3, 1, version ? version->whole(0, 0xFF) : 1);
  message.replace(kMessageUuidAt, 16, uuidBytes(uuid));
  message.replace(kMessageRecordAt, record.size(), record);
  return message;
}

void checkEventKeys(const JsonCursor& gpu) {
  checkRows(gpu, "xid_records", kKeys);
  checkRows(gpu, "events", kKeys);
}

void readEvents(const JsonCursor& gpu, Host& host, size_t index) {
  PciFunction& function = host.functions[index];
  if (const auto rows = gpu.find("xid_records")) {
    if (function.uuid.empty()) rows->failWith("a guest's GPU has no uuid to keep records by");
    host.faultRecords[function.uuid] = readRecordFile(*rows);
  }
  if (const auto rows = gpu.find("events")) {
    for (const JsonCursor& entry : rows->elements()) {
      function.events += eventMessage(function.uuid, entry);
    }
  }
}

void readOldRecords(const JsonCursor& top, Host& host) {
  const auto files = top.find("xid_records");
  if (!files) return;
  for (const auto& [uuid, rows] : files->members()) {
    if (uuid.empty() || uuid.find('/') != std::string::npos)
      rows.failWith("a GPU that is gone is named by its uuid");
    host.faultRecords[uuid] = readRecordFile(rows);
  }
}
