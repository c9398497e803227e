#pragma once

#include <string>

#include "board_values.h"
#include "disp_values.h"
#include "gpu_values.h"
#include "kelp_return.h"
#include "memory_values.h"
#include "mpc_values.h"
#include "sablink_values.h"
#include "support/property.h"
#include "vpu_values.h"

// What holds for the value of a reply, whatever the driver wrote: no more rows than its record has.

namespace tolk_fuzz {

constexpr std::size_t kMostText = 256;

template <class Value>
void checkValue(const Value& /*value*/) {}

inline void checkValue(const std::string& text) {
  expect(text.size() <= kMostText && text.find('\0') == std::string::npos, "a text ends in its field");
}
inline void checkValue(const kelp::ProcessMemoryMap& processes) {
  expect(processes.size() <= 80, "as many processes as a record has");
}
inline void checkValue(const kelp::ProcessGpuUtilMap& processes) {
  expect(processes.size() <= 80, "as many processes as a record has");
}
inline void checkValue(const std::vector<kelp::MpcProfile>& profiles) {
  expect(profiles.size() <= 32, "as many profiles as a record has");
}
inline void checkValue(const std::vector<kelp::MpcConfiguration>& configurations) {
  expect(configurations.size() <= 32, "as many configurations as a record has");
  for (const auto& configuration : configurations) {
    checkValue(configuration.name);
    expect(configuration.profileIds.size() <= 32, "as many instances as a configuration has");
  }
}
inline void checkValue(const kelp::MpcInstList& instances) {
  expect(instances.size() <= 17, "as many instances as a record has");
}
inline void checkValue(const std::vector<kelp::SablinkLayout>& links) {
  expect(links.size() <= 48, "as many links as a record has");
}
inline void checkValue(const std::vector<kelp::SablinkPath>& paths) {
  expect(paths.size() <= 16, "as many paths as a record has");
  for (const auto& path : paths) expect(path.miscIds.size() <= 24, "as many devices as a path has");
}
inline void checkValue(const kelp::SablinkSerdesStatus& status) {
  expect(status.laneCount <= status.lanes.size(), "as many lanes as a link has");
}
inline void checkValue(const kelp::EfuseData& burnt) {
  expect(burnt.words.size() <= 32, "as many words as a record has");
}
inline void checkValue(const kelp::GpuSpec& spec) {
  expect(spec.unitsPerCore.value().size() <= 256, "as many cores as a byte counts");
}
inline void checkValue(const std::vector<kelp::DispInterfaceInfo>& displays) {
  expect(displays.size() <= 8, "as many displays as a record has");
}
inline void checkValue(const std::vector<kelp::VpuCoreSpecData>& cores) {
  expect(cores.size() <= 16, "as many cores as a record has");
}
inline void checkValue(const std::vector<std::vector<kelp::Stated<kelp::VpuSsInstState>>>& cores) {
  expect(cores.size() <= 16, "as many cores as a record has");
  for (const auto& core : cores) expect(core.size() <= 36, "as many instances as a record has");
}

template <class Value>
void checkReply(const kelp::Stated<Value>& reply) {
  if (reply.ok()) checkValue(reply.value());
}

}  // namespace tolk_fuzz
