#include "linux/ap/render/render_protocol_v0/render_kernel_accessor.h"

#include <array>
#include <cerrno>
#include <cstdio>
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

constexpr std::array kFixedCores{
    FixedCores{DevArch::kWold, 1, VpuCoreKind::kDecoder, 1, 16},
    FixedCores{DevArch::kWold, 1, VpuCoreKind::kEncoder, 1, 8},
    FixedCores{DevArch::kFen1, 2, VpuCoreKind::kDecoder, 2, 16},
    FixedCores{DevArch::kFen1, 2, VpuCoreKind::kEncoder, 2, 8},
    FixedCores{DevArch::kFen2, 4, VpuCoreKind::kDecoder, 2, 16},
    FixedCores{DevArch::kFen2, 2, VpuCoreKind::kEncoder, 2, 8},
};

std::vector<VpuCoreSpecData> readVpuSpec(const VpuSpecReply& reply) {
  std::vector<VpuCoreSpecData> cores;
  for (const VpuCoreSpec& core : std::span(reply.cores, rowsOf(reply.coreCount, reply.cores))) {
    cores.push_back({.kind = static_cast<VpuCoreKind>(core.kind),
                     .threadCount = core.threadCount,
                     .maxInstances = core.maxInstances,
                     .maxClock = unlessAllOnes<unsigned int>(u32{core.maxClock})});
  }
  return cores;
}

KelpReturn specFailure(KelpReturn state) {
  KELP_LOG(kError) << "failed to query vpu specification, access error is " << state;
  return state;
}

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

Done RenderKernelAccessor::postInit() {
  using Getter = Stated<Cores> (RenderKernelAccessor::*)() const;
  constexpr std::array<Getter, 3> kGetters{&RenderKernelAccessor::getVpuSpecV0,
                                           &RenderKernelAccessor::getVpuSpecV1,
                                           &RenderKernelAccessor::getVpuSpecV2};
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

VersionMap<Operation<std::vector<VpuCoreSpecData>>> RenderKernelAccessor::getVpuSpec() {
  const auto cores = [this] { return Stated<Cores>(cores_); };
  return {{0, cores}, {1, cores}, {2, cores}};
}

Stated<std::vector<VpuCoreSpecData>> RenderKernelAccessor::getVpuSpecV0() const {
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

Stated<std::vector<VpuCoreSpecData>> RenderKernelAccessor::getVpuSpecV1() const {
  RkiGetVpuInfoV1 record{};
  record.operation = static_cast<u16>(VpuOperation::kSpecification);
  if (const KelpReturn state = access(record); state != KelpReturn::kSuccess) {
    return specFailure(state);
  }
  VpuSpecReply reply{};
  static_assert(sizeof reply <= sizeof record.reply);
  std::memcpy(&reply, record.reply, sizeof reply);
  return readVpuSpec(reply);
}

Stated<std::vector<VpuCoreSpecData>> RenderKernelAccessor::getVpuSpecV2() const {
  VpuSpecReply reply{};
  RkiGetVpuInfoV2 record{};
  record.operation = static_cast<u32>(VpuOperation::kSpecification);
  record.replySize = sizeof reply;
  record.replyAddress = reinterpret_cast<u64>(&reply);
  if (const KelpReturn state = access(record); state != KelpReturn::kSuccess) {
    return specFailure(state);
  }
  return readVpuSpec(reply);
}

}  // namespace kelp::linux_
