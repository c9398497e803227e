#pragma once

#include <array>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "command_access/command_access_base.h"
#include "command_access/lumo_access/lumo_access_device.h"

namespace tolk {

/// The command `-q`: a long report on one GPU or all, in sections. A value that cannot be had reads
/// "N/A"; a device that cannot be named ends the command, and then nothing at all is printed.
class QueryCommandAccess : public CommandAccessBase {
 public:
  explicit QueryCommandAccess(ParsedOptions parsedOptions);

  std::shared_ptr<Step> work() override;

 private:
  using Json = nlohmann::ordered_json;

  /// Adds its rows to the device's member of the document.
  using QuerySection = LumoReturn (*)(const LumoAccessDevice& device, Json& document);

  struct Section {
    const char* key;  ///< as "-d" names it
    QuerySection query;
    bool shownInGuest = false;
  };

  /// All sections, in the order in which a report has them.
  static const std::array<Section, 13> selectQueryFun;

  /// The devices to report on. Null, or the step that reports the failure.
  std::shared_ptr<Step> selectDevices(std::uint32_t count, std::vector<std::uint32_t>& indices) const;

  LumoReturn queryDeviceInfo(std::uint32_t index, Json& document) const;

  /// Those that the user asked for, else all that the driver mode has.
  std::vector<std::string> sectionKeys() const;

  /// Runs the sections; all of them once more when the device changed its performance state meanwhile,
  /// so that no report is half of one state and half of the other.
  static LumoReturn querySelectInfo(const LumoAccessDevice& device, const std::vector<std::string>& keys,
                                    Json& document);
  static LumoReturn querySections(const LumoAccessDevice& device, const std::vector<std::string>& keys,
                                  Json& document);

  // query_command_access_identity.cpp
  static LumoReturn queryStaticInfo(const LumoAccessDevice& device, Json& document);
  static LumoReturn queryMemory(const LumoAccessDevice& device, Json& document);
  static LumoReturn queryMemorySpec(const LumoAccessDevice& device, Json& document);
  static LumoReturn queryMemoryInfo(const LumoAccessDevice& device, Json& document);
  static LumoReturn queryIntfInfo(const LumoAccessDevice& device, Json& document);

  // query_command_access_activity.cpp
  static LumoReturn queryUtilizationInfo(const LumoAccessDevice& device, Json& document);
  static LumoReturn queryTemperatureInfo(const LumoAccessDevice& device, Json& document);
  static LumoReturn queryPower(const LumoAccessDevice& device, Json& document);
  static LumoReturn queryFanSpeed(const LumoAccessDevice& device, Json& document);
  static LumoReturn queryClockInfo(const LumoAccessDevice& device, Json& document);
  static LumoReturn queryVideoInfo(const LumoAccessDevice& device, Json& document);

  // query_command_access_health.cpp
  static LumoReturn queryEcc(const LumoAccessDevice& device, Json& document);
  static LumoReturn queryRetiredPage(const LumoAccessDevice& device, Json& document);
  static LumoReturn queryPerfState(const LumoAccessDevice& device, Json& document);
  static LumoReturn queryThermalSlowdownCnt(const LumoAccessDevice& device, Json& document);
};

}  // namespace tolk
