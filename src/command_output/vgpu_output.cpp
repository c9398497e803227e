#include "command_output/vgpu_output.h"

#include <algorithm>
#include <utility>

#include "command_output/document_text.h"

namespace tolk {

namespace {

constexpr std::string_view kBlankSpace = " \t\n\v\f\r";

/// What a uuid looks like, with an "x" for each letter or digit.
constexpr std::string_view kUuidForm = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isLetterOrDigit(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool beginsWithUuid(std::string_view text) {
  return text.size() >= kUuidForm.size() &&
         std::ranges::equal(text.substr(0, kUuidForm.size()), kUuidForm,
                            [](char c, char form) { return form == 'x' ? isLetterOrDigit(c) : c == form; });
}

bool beginsWithDigit(std::string_view text) {
  return !text.empty() && isDigit(text.front());
}

/// Whether what stands behind some blank space of the key passes a test.
bool anyBehindBlank(std::string_view key, bool (*test)(std::string_view)) {
  for (auto at = key.find_first_of(kBlankSpace); at != std::string_view::npos;
       at = key.find_first_of(kBlankSpace, at + 1)) {
    if (test(key.substr(at + 1))) return true;
  }
  return false;
}

bool beginsParagraph(std::string_view key) {
  return isDeviceKey(key) || hasVgpuUuid(key) || hasNumber(key);
}

}  // namespace

VgpuOutput::VgpuOutput(nlohmann::ordered_json document) : document_(std::move(document)) {}

std::shared_ptr<Step> VgpuOutput::work() {
  std::string out;
  appendDocument(out, document_, beginsParagraph);
  std::cout << out << std::flush;
  return nullptr;
}

bool hasVgpuUuid(std::string_view key) {
  return anyBehindBlank(key, beginsWithUuid);
}

bool hasNumber(std::string_view key) {
  return anyBehindBlank(key, beginsWithDigit);
}

}  // namespace tolk
