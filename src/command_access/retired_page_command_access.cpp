#include "command_access/retired_page_command_access.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <string>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_access/selected_fields.h"
#include "command_access/value_text.h"
#include "command_error.h"
#include "command_output/retired_page_output.h"
#include "common_define.h"
#include "host_environment.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;

/// What a line is made of.
struct PageSource {
  std::string queryTime;
  std::string uuid;
  const LumoRetiredPage* page = nullptr;  ///< null on a device without pages
};

template <auto valueOf>
Json ofPage(const PageSource& source) {
  return source.page == nullptr ? Json("[N/A]") : Json(valueOf(*source.page));
}

std::string addressText(const LumoRetiredPage& page) {
  std::array<char, 19> text;
  std::snprintf(text.data(), text.size(), "0x%llx", page.address);
  return text.data();
}

std::string timeText(const LumoRetiredPage& page) {
  return localTimeText(static_cast<std::time_t>(page.timestamp));
}

unsigned cause(const LumoRetiredPage& page) {
  return page.cause;
}

}  // namespace

struct RetiredPageField {
  std::string_view name;
  Json (*valueOf)(const PageSource&);
};

namespace {

constexpr RetiredPageField kFields[] = {
    {"timestamp", [](const PageSource& source) { return Json(source.queryTime); }},
    {"gpu_uuid", [](const PageSource& source) { return Json("GPU-" + source.uuid); }},
    {"retired_pages.address", ofPage<addressText>},
    {"retired_pages.timestamp", ofPage<timeText>},
    {"retired_pages.cause", ofPage<cause>},
};

}  // namespace

std::shared_ptr<Step> RetiredPageCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  if (auto failure = startLibrary()) return failure;
  if (hostHasMdevBus()) {
    return commandError("Error: the requested operation is not supported by installed driver.",
                        ExitCode::kUnsupported);
  }
  std::uint32_t count = 0;
  const StartWording wording{.noDevice = {"Error: no OV GPU device found.", ExitCode::kNoDevice}};
  if (auto failure = countDevices(wording, count)) return failure;
  Fields fields;
  if (auto failure = selectFields(options.at("-qrp").front(), kFields, fields)) return failure;
  std::vector<std::uint32_t> indices;
  if (auto failure = findDevices(count, indices)) return failure;

  auto document = Json::array();
  for (const auto index : indices) {
    const auto device = accessFactory->getAccessDeviceById(index);
    if (!device || queryRetiredPage(*device, fields, document) != LUMO_RETURN_SUCCESS) {
      TOLK_LOG(kError) << "failed to query retired page, device index =" << index;
      return commandError(kNotAvailable, ExitCode::kUnsupported);
    }
  }
  return std::make_shared<RetiredPageOutput>(std::move(document));
}

LumoReturn RetiredPageCommandAccess::queryRetiredPage(const LumoAccessDevice& device, const Fields& fields,
                                                      Json& document) {
  PageSource source;
  if (const LumoReturn ret = device.devGetUUID(source.uuid); ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "failed to get device uuid! error code[" << ret << "]";
    return ret;
  }
  source.queryTime = localTimeText(std::time(nullptr));
  std::vector<LumoRetiredPage> pages;
  if (const LumoReturn ret = device.memoryGetRetiredPages(pages); ret != LUMO_RETURN_SUCCESS) return ret;

  const auto append = [&] {
    auto& line = document.emplace_back(Json::object());
    for (const auto* const field : fields) line[std::string(field->name)] = field->valueOf(source);
  };
  if (pages.empty()) append();
  for (const auto& page : pages) {
    source.page = &page;
    append();
  }
  return LUMO_RETURN_SUCCESS;
}

}  // namespace tolk
