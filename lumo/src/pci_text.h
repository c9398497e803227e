#pragma once

#include <string>
#include <string_view>

namespace lumo {

/// Whether a text has the form of a PCI address: four to eight hexadecimal digits, ":", two, ":", two,
/// any one character, one digit.
bool checkSbdfFormat(std::string_view text);

/// The text if it has the form of a PCI address, else it is logged and the result is empty.
std::string formatOutputPciStr(const std::string& text);

}  // namespace lumo
