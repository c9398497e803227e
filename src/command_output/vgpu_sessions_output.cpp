#include "command_output/vgpu_sessions_output.h"

#include <utility>

#include "command_output/text_table.h"

namespace tolk {

namespace {

constexpr std::array kTable{Column{"UUID", 37}, Column{"SessionId", 10}, Column{"CodecType", 10},
                            Column{"hRes", 5},  Column{"vRes", 5},       Column{"FPS", 4}};

}  // namespace

VgpuSessionsOutput::VgpuSessionsOutput(nlohmann::ordered_json document) : document_(std::move(document)) {}

std::shared_ptr<Step> VgpuSessionsOutput::work() {
  std::string out;
  for (const auto& [uuid, sessions] : document_.items()) {
    for (const auto& [id, session] : sessions.items()) {
      if (out.empty()) appendHead(out, kTable);
      const auto cell = [&session](const char* key) -> std::string_view {
        return session.at(key).get_ref<const std::string&>();
      };
      appendCells(
          out, kTable,
          {uuid, id, cell("Codec Type"), cell("hResolution"), cell("vResolution"), cell("frameRate")});
    }
  }
  if (out.empty()) out = "no active sessions\n";
  std::cout << out << std::flush;
  return nullptr;
}

}  // namespace tolk
