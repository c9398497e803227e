#include "command_output/vgpu_query_output.h"

#include <utility>

#include "command_output/document_text.h"
#include "command_output/vgpu_output.h"

namespace tolk {

namespace {

bool beginsParagraph(std::string_view key) {
  return isDeviceKey(key) || hasVgpuUuid(key);
}

}  // namespace

VgpuQueryOutput::VgpuQueryOutput(nlohmann::ordered_json document) : document_(std::move(document)) {}

std::shared_ptr<Step> VgpuQueryOutput::work() {
  std::string out;
  appendDocument(out, document_, beginsParagraph);
  std::cout << out << std::flush;
  return nullptr;
}

}  // namespace tolk
