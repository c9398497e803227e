#include "command_output/process_monitor_output.h"

#include <utility>

#include "command_output/text_table.h"

namespace tolk {

namespace {

constexpr std::array kTable{Column{"gpu", 5}, Column{"pid", 10}, Column{"memUtil", 10},
                            Column{"gpuUtil", 10}};

}  // namespace

ProcessMonitorOutput::ProcessMonitorOutput(nlohmann::ordered_json document)
    : document_(std::move(document)) {}

std::shared_ptr<Step> ProcessMonitorOutput::work() {
  std::string out;
  for (const auto& device : document_.at("Process")) {
    for (const auto& process : device) {
      if (out.empty()) appendHead(out, kTable);
      const auto cell = [&process](const char* key) -> std::string_view {
        return process.at(key).get_ref<const std::string&>();
      };
      appendCells(out, kTable, {cell("deviceId"), cell("pid"), cell("memory"), cell("gpu")});
    }
  }
  if (out.empty()) out = "no running process\n";
  std::cout << out << std::flush;
  return nullptr;
}

}  // namespace tolk
