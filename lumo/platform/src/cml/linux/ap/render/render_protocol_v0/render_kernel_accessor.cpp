#include "linux/ap/render/render_protocol_v0/render_kernel_accessor.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <span>

#include "kelp_log.h"
#include "linux/ap/render/render_protocol_v0/rki_records.h"
#include "rusk/syscall_wrapper.h"

namespace kelp::linux_ {
namespace {

/// Cores of the same make, as drivers that can't be asked for them have them.
struct FixedCores {
  DevArch arch;
  u32 count;
  VpuCoreKind kind;
  u32 threadCount;
  u32 maxInstances;
};

// States of a session.
constexpr u32 kSessionActive = 1;
constexpr u32 kNoSession = 0xFFFFFFFF;

constexpr std::array kFixedCores{
    FixedCores{DevArch::kWold, 1, VpuCoreKind::kDecoder, 1, 16},
    FixedCores{DevArch::kWold, 1, VpuCoreKind::kEncoder, 1, 8},
    FixedCores{DevArch::kFen1, 2, VpuCoreKind::kDecoder, 2, 16},
    FixedCores{DevArch::kFen1, 2, VpuCoreKind::kEncoder, 2, 8},
    FixedCores{DevArch::kFen2, 4, VpuCoreKind::kDecoder, 2, 16},
    FixedCores{DevArch::kFen2, 2, VpuCoreKind::kEncoder, 2, 8},
};

}  // namespace

template <class Record>
KelpReturn RenderKernelAccessor::access(Record& record) const {
  using Traits = MkiTraits<Record>;
  if (!node_.isOpen()) {
    KELP_LOG(kError) << "access<" << Traits::kName << "fd is invalid !";
    return KelpReturn::kFailure;
  }
  const int result = rusk::SyscallWrapper::instance().ioctl(node_.fd(), Traits::kRequest, &record);
  if (result != 0) {
    const int error = errno;
    std::array<char, 16> request{};
    std::snprintf(request.data(), request.size(), "%x", Traits::kRequest);
    KELP_LOG(kError) << "access<" << Traits::kName << "> ioctl return error = " << result
                     << ", errno = " << error << ", ioctl:0x" << request.data();
    return KelpReturn::kFailure;
  }
  return KelpReturn::kSuccess;
}

MkisStated<RemoteList> RenderKernelAccessor::mkisList(const MkisProbe& probe) {
  return fetchMkisList(probe.interfaceCount, [this](MkiMkisList& page) {
    RkiMkisList record{page};
    const bool sent = access(record) == KelpReturn::kSuccess;
    page = record;
    return sent;
  });
}

template <class Record, class Reply>
Stated<Reply> RenderKernelAccessor::query(const Question& question) const {
  Reply reply{};
  Record record{};
  record.operation = static_cast<decltype(record.operation)>(question.operation);
  record.coreId = static_cast<decltype(record.coreId)>(question.coreId);
  record.instance = question.instance;
  constexpr bool kIsInline = requires {
    record.reply;
  };
  if constexpr (!kIsInline) {
    record.replySize = sizeof reply;
    record.replyAddress = reinterpret_cast<u64>(&reply);
    record.vgpuId = vgpuId_.value_or(0);
    record.vgpuValid = vgpuId_.has_value() ? 1 : 0;
  }
  if (const KelpReturn state = access(record); state != KelpReturn::kSuccess) {
    KELP_LOG(kError) << question.failure << state;
    return state;
  }
  if constexpr (kIsInline) {
    static_assert(sizeof reply <= sizeof record.reply);
    std::memcpy(&reply, record.reply, sizeof reply);
  }
  return reply;
}

template <class Record>
Stated<RenderKernelAccessor::Utilizations> RenderKernelAccessor::queryUtil() const {
  const auto reply =
      query<Record, VpuUtilReply>({.operation = VpuOperation::kUtilization,
                                   .failure = "failed to query vpu core utilization, access error is "});
  if (!reply.ok()) {
    return reply.state();
  }
  Utilizations utilizations;
  for (const VpuCoreBusy& core : std::span(reply.value().cores).first(cores_.size())) {
    utilizations.push_back(unlessAllOnes<float>(u32{core.percent}));
  }
  return utilizations;
}

VersionMap<Operation<RenderKernelAccessor::Utilizations>> RenderKernelAccessor::getVpuUtil() {
  return {{0, [this] { return queryUtil<RkiGetVpuInfoV0>(); }},
          {1, [this] { return queryUtil<RkiGetVpuInfoV1>(); }},
          {2, [this] { return queryUtil<RkiGetVpuInfoV2>(); }}};
}

template <class Record>
Stated<VpuSsMetrics> RenderKernelAccessor::querySsMetrics(const QueryVpuSsMetricsParam& param) const {
  // The older record has 16 bits for the core: a larger number must not come out as another core.
  if (param.coreId >= cores_.size()) {
    return KelpReturn::kFailure;
  }
  const auto reply =
      query<Record, VpuSsMetricsReply>({.operation = VpuOperation::kSessionMetrics,
                                        .failure = "failed to query vpu session metrics, access error is ",
                                        .coreId = param.coreId,
                                        .instance = param.instance});
  if (!reply.ok()) {
    return reply.state();
  }
  const VpuSsMetricsReply& metrics = reply.value();
  if (metrics.status > kSessionActive) {
    return KelpReturn::kFailure;
  }
  return VpuSsMetrics{.status = metrics.status,
                      .pid = metrics.pid,
                      .codec = metrics.codec,
                      .hRes = metrics.hRes,
                      .vRes = metrics.vRes,
                      .fps = metrics.fps,
                      .bitrate = metrics.bitrate,
                      .sessionId = metrics.sessionId};
}

VersionMap<Operation<VpuSsMetrics, QueryVpuSsMetricsParam>> RenderKernelAccessor::getVpuSsMetrics() {
  using Param = QueryVpuSsMetricsParam;
  return {{0, [this](const Param& param) { return querySsMetrics<RkiGetVpuInfoV0>(param); }},
          {1, [this](const Param& param) { return querySsMetrics<RkiGetVpuInfoV1>(param); }},
          {2, [this](const Param& param) { return querySsMetrics<RkiGetVpuInfoV2>(param); }}};
}

template <class Record, class Reply>
Stated<RenderKernelAccessor::SessionStates> RenderKernelAccessor::querySsStates() const {
  SessionStates states;
  for (u32 coreId = 0; coreId < cores_.size(); ++coreId) {
    const auto reply =
        query<Record, Reply>({.operation = VpuOperation::kSessionStates,
                              .failure = "failed to query vpu session states, access error is ",
                              .coreId = coreId});
    if (!reply.ok()) {
      return reply.state();
    }
    const Reply& core = reply.value();
    auto& instances = states.emplace_back();
    for (const VpuInstanceState& instance : std::span(core.instances, rowsOf(core.count, core.instances))) {
      if (instance.state == kNoSession) {
        instances.emplace_back(KelpReturn::kNotSupported);
      } else {
        instances.emplace_back(VpuSsInstState{.active = instance.state == kSessionActive});
      }
    }
  }
  return states;
}

VersionMap<Operation<RenderKernelAccessor::SessionStates>> RenderKernelAccessor::getVpuSsStates() {
  return {{0, [this] { return querySsStates<RkiGetVpuInfoV0, VpuSsStatesReplyV3>(); }},
          {1, [this] { return querySsStates<RkiGetVpuInfoV1, VpuSsStatesReplyV3>(); }},
          {2, [this] { return querySsStates<RkiGetVpuInfoV2, VpuSsStatesReplyV2>(); }},
          {3, [this] { return querySsStates<RkiGetVpuInfoV2, VpuSsStatesReplyV3>(); }}};
}

template <class Record>
Stated<RenderKernelAccessor::Clocks> RenderKernelAccessor::queryClock() const {
  const auto reply = query<Record, VpuClockReply>(
      {.operation = VpuOperation::kClock, .failure = "failed to query vpu core clock, access error is "});
  if (!reply.ok()) {
    return reply.state();
  }
  Clocks clocks;
  for (const VpuCoreClock& core : std::span(reply.value().cores).first(cores_.size())) {
    clocks.push_back(unlessAllOnes<unsigned int>(u32{core.hertz}));
  }
  return clocks;
}

VersionMap<Operation<RenderKernelAccessor::Clocks>> RenderKernelAccessor::getVpuClock() {
  return {{0, [this] { return queryClock<RkiGetVpuInfoV0>(); }},
          {1, [this] { return queryClock<RkiGetVpuInfoV1>(); }},
          {2, [this] { return queryClock<RkiGetVpuInfoV2>(); }}};
}

template <class Record>
Stated<RenderKernelAccessor::Cores> RenderKernelAccessor::querySpec() const {
  const auto reply =
      query<Record, VpuSpecReply>({.operation = VpuOperation::kCoreProperties,
                                   .failure = "failed to query vpu specification, access error is "});
  if (!reply.ok()) {
    return reply.state();
  }
  const VpuSpecReply& spec = reply.value();
  Cores cores;
  for (const VpuCoreSpec& core : std::span(spec.cores, rowsOf(spec.coreCount, spec.cores))) {
    cores.push_back({.kind = static_cast<VpuCoreKind>(core.kind),
                     .threadCount = core.threadCount,
                     .maxInstances = core.maxInstances,
                     .maxClock = unlessAllOnes<unsigned int>(u32{core.maxClock})});
  }
  return cores;
}

VersionMap<Operation<RenderKernelAccessor::Cores>> RenderKernelAccessor::getVpuSpec() {
  const auto cores = [this] { return Stated<Cores>(cores_); };
  return {{0, cores}, {1, cores}, {2, cores}};
}

Stated<RenderKernelAccessor::Cores> RenderKernelAccessor::getVpuSpecV0() const {
  Cores cores;
  for (const FixedCores& row : kFixedCores) {
    if (row.arch == arch_) {
      cores.insert(cores.end(), row.count,
                   {.kind = row.kind,
                    .threadCount = row.threadCount,
                    .maxInstances = row.maxInstances,
                    .maxClock = {}});
    }
  }
  if (cores.empty()) {
    KELP_LOG(kError) << std::string(__func__) + ": unsupported arch " << arch_;
    return KelpReturn::kFailure;
  }
  return cores;
}

Done RenderKernelAccessor::postInit() {
  using Getter = Stated<Cores> (RenderKernelAccessor::*)() const;
  constexpr std::array<Getter, 3> kGetters{&RenderKernelAccessor::getVpuSpecV0,
                                           &RenderKernelAccessor::querySpec<RkiGetVpuInfoV1>,
                                           &RenderKernelAccessor::querySpec<RkiGetVpuInfoV2>};
  if (specVersion_ < 0 || static_cast<std::size_t>(specVersion_) >= kGetters.size()) {
    KELP_LOG(kError) << "RenderKernelAccessor::postInit(): unsupported vpu spec interface version: "
                     << specVersion_;
    return KelpReturn::kFailure;
  }
  auto cores = (this->*kGetters[static_cast<std::size_t>(specVersion_)])();
  if (!cores.ok()) {
    return cores.state();
  }
  cores_ = cores.take();
  logCores();
  return 0;
}

void RenderKernelAccessor::logCores() const {
  auto&& line = KELP_LOG(kInfo);
  line << "RenderKernelAccessor::postInit(): arch = " << arch_ << ", coreCount = " << cores_.size() << ",  {";
  for (const VpuCoreSpecData& core : cores_) {
    line << std::to_string(static_cast<u32>(core.kind)) + "/" + std::to_string(core.threadCount) + "/" +
                std::to_string(core.maxInstances);
  }
}

}  // namespace kelp::linux_
