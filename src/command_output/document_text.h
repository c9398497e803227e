#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace tolk {

/// Tells the keys that begin a paragraph of their own. The key comes with its indent.
using BeginsParagraph = bool (*)(std::string_view indentedKey);

/// Appends a document of texts as lines in reading order: a key indented by its depth in a column of 50,
/// then the text, or the lines of the object below it. An empty line goes before each key that begins a
/// paragraph; without a test for them, before none. A value that is neither text nor object throws.
void appendDocument(std::string& out, const nlohmann::ordered_json& document,
                    BeginsParagraph beginsParagraph = nullptr);

/// Whether the key ends in what a report calls a device: "GPU0 00000000:01:00.0".
bool isDeviceKey(std::string_view key);

}  // namespace tolk
