#include "command_output/codec_session_output.h"

#include <utility>

#include "command_output/text_table.h"

namespace tolk {

namespace {

constexpr std::array kTable{Column{"GpuId", 6},      Column{"SessionId", 10},    Column{"Pid", 7},
                            Column{"CodecType", 10}, Column{"hRes", 5},          Column{"vRes", 5},
                            Column{"FPS", 4},        Column{"bitRate(kbps)", 14}};

}  // namespace

CodecSessionOutput::CodecSessionOutput(nlohmann::ordered_json document) : devices_(std::move(document)) {}

std::shared_ptr<Step> CodecSessionOutput::work() {
  std::string out;
  for (const auto& [index, sessions] : devices_.items()) {
    for (const auto& [id, session] : sessions.items()) {
      if (out.empty()) appendHead(out, kTable);
      const auto cell = [&session](const char* key) -> std::string_view {
        return session.at(key).get_ref<const std::string&>();
      };
      appendCells(out, kTable,
                  {index, id, cell("Pid"), cell("Codec Type"), cell("hResolution"), cell("vResolution"),
                   cell("frameRate"), cell("bitRate(kbps)")});
    }
  }
  if (out.empty()) out = "no active sessions\n";
  std::cout << out << std::flush;
  return nullptr;
}

}  // namespace tolk
