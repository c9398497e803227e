// What the chip families and models of the maker have in common: identities and a typical device of each.
#ifndef FAMILIES_H
#define FAMILIES_H

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string_view>
#include <vector>

enum class Family : uint32_t { kWold = 1, kFen1 = 2, kFen2 = 3, kTor1 = 4 };

struct Model {
  uint16_t deviceId;
  std::string_view name;  // with its prefix
};

std::span<const Model> allModels();

/// Null when there is none.
const Model* findModel(uint16_t deviceId);
/// By name, with or without the prefix "OVT "; the lowest id of that name.
const Model* findModel(std::string_view name);

/// Of a device id; the high byte is its number.
bool isFamily(uint32_t number);

struct FamilyTraits {
  std::string_view name;  // of the family, lower case
  std::vector<uint32_t> gpuClocks;
  uint32_t memoryClock;
  std::vector<uint32_t> sensors;  // the first is the one that is shown
  uint32_t efuseStartBit;
};

const FamilyTraits& traitsOf(Family family);

/// A GPU entry of a host description with everything that a device of the family has.
const nlohmann::json& defaultsOf(Family family);

#endif
