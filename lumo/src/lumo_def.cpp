#include "lumo_def.h"

#include <array>
#include <string>
#include <string_view>

#include "kelp_log.h"

namespace lumo {
namespace {

/// The code of each platform state, by its number. State 1 has no counterpart.
constexpr std::array<LumoReturn, 17> kStatusOfState{
    LUMO_RETURN_SUCCESS,
    LUMO_RETURN_UNKNOWN_ERROR,
    LUMO_RETURN_DRIVER_NOT_LOADED,
    LUMO_RETURN_DRIVER_TOO_NEW,
    LUMO_RETURN_DRIVER_TOO_OLD,
    LUMO_RETURN_DRIVER_ACCESS_FAILED,  // not initialised
    LUMO_RETURN_NOT_SUPPORTED,
    LUMO_RETURN_NOT_FOUND,
    LUMO_RETURN_DRIVER_ACCESS_FAILED,  // file not readable
    LUMO_RETURN_INVALID_ARGUMENT,
    LUMO_RETURN_DRIVER_ACCESS_FAILED,
    LUMO_RETURN_DRIVER_ACCESS_FAILED,  // firmware failure
    LUMO_RETURN_INSUFFICIENT_SIZE,
    LUMO_RETURN_INSUFFICIENT_MEMORY,
    LUMO_RETURN_BUSY,
    LUMO_RETURN_INSUFFICIENT_PERMISSIONS,
    LUMO_RETURN_DEVICE_LOST,
};

struct CodeText {
  LumoReturn code;
  const char* text;
};

constexpr CodeText kTexts[] = {
    {LUMO_RETURN_SUCCESS, "Success"},
    {LUMO_RETURN_DRIVER_NOT_LOADED, "Driver Not Loaded"},
    {LUMO_RETURN_DRIVER_ACCESS_FAILED, "Access to the driver failed"},
    {LUMO_RETURN_INVALID_ARGUMENT, "Invalid Argument"},
    {LUMO_RETURN_NOT_SUPPORTED, "Not Supported"},
    {LUMO_RETURN_INSUFFICIENT_PERMISSIONS, "Insufficient Permissions"},
    {LUMO_RETURN_INSUFFICIENT_SIZE, "Insufficient Size"},
    {LUMO_RETURN_NOT_FOUND, "Not Found"},
    {LUMO_RETURN_INSUFFICIENT_MEMORY, "Insufficient Memory"},
    {LUMO_RETURN_DRIVER_TOO_OLD, "Driver too old"},
    {LUMO_RETURN_DRIVER_TOO_NEW, "Driver too new"},
};

/// What follows the last of some characters, the whole text when it has none.
std::string_view behindLast(std::string_view text, const char* characters) {
  return text.substr(text.find_last_of(characters) + 1);
}

}  // namespace

LumoReturn statusOf(kelp::KelpReturn state) {
  const auto number = static_cast<std::size_t>(state);
  return number < kStatusOfState.size() ? kStatusOfState[number] : LUMO_RETURN_UNKNOWN_ERROR;
}

void logFailedValue(kelp::KelpReturn state, const char* file, unsigned line) {
  const std::string_view name = behindLast(file, "/");
  RUSK_LOG_AS(kelp::libraryLog().logger, rusk::LogLevel::kError, "lumo_def", "consumeMv")
      << "Consuming mv with error, state = " << state << " (" << name << ":" << line << ")";
}

void logMissingFeature(std::source_location operation) {
  const std::string_view signature(operation.function_name());
  const std::string_view name = behindLast(signature.substr(0, signature.find('(')), " :");
  rusk::LogLine(behindLast(operation.file_name(), "/"), operation.line(), name, rusk::LogLevel::kError,
                kelp::libraryLog().logger)
      << "Feat not supported !";
}

void logDeprecated(const char* function) {
  KELP_LOG(kWarn) << std::string(function) + "() API is deprecated and will be removed in future.";
}

}  // namespace lumo

const char* lumoReturnText(LumoReturn code) {
  for (const lumo::CodeText& row : lumo::kTexts) {
    if (row.code == code) {
      return row.text;
    }
  }
  return "Unknown Error";
}
