#pragma once

#include <cstdint>
#include <string>

#include "lumo.h"

namespace tolk {

/// Such as "0x004F" for four digits; a larger number has more.
std::string hexText(std::uint32_t number, int digits);

/// Generation of PCI Express for the speed of a lane in GT/s.
std::string pcieGenerationText(float speed);

/// Two decimals, cut and not rounded: "12.34" for 12.3456.
std::string wattsText(double watts);

/// Such as "DP".
const char* displayTypeText(std::uint32_t type);

/// Such as "1920x1080@59.94Hz".
std::string resolutionText(const LumoDispIntfSpec& spec);

}  // namespace tolk
