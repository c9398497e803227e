#pragma once

#include <optional>
#include <vector>

#include "dev_cuid.h"
#include "linux/ap/mki_access.h"
#include "linux/ap/render/render_kernel_accessor_base.h"

namespace kelp::linux_ {

enum class VpuOperation : u32;

/// Protocol 0 of the render node. The cores of the video engine never change, so they are read once,
/// by `postInit`, and every version of their interface answers from memory; the other queries have an
/// answer for each of these cores. A value that the driver says is not available has state 6.
class RenderKernelAccessor : public RenderKernelAccessorBase {
 public:
  using Utilizations = std::vector<Stated<float>>;
  using SessionStates = std::vector<std::vector<Stated<VpuSsInstState>>>;
  using Clocks = std::vector<Stated<unsigned int>>;
  using Cores = std::vector<VpuCoreSpecData>;

  /// With a vGPU's id only that vGPU's work counts, as far as the record of an agreed version can say so.
  RenderKernelAccessor(NodeFile node, DevArch arch, std::optional<u32> vgpuId = std::nullopt)
      : node_(std::move(node)), arch_(arch), vgpuId_(vgpuId) {}

  Done init() override { return 0; }
  Done postInit() override;
  void deinit() override { node_ = NodeFile(); }
  MkisStated<RemoteList> mkisList(const MkisProbe& probe) override;

  VersionMap<Operation<Utilizations>> getVpuUtil() override;
  VersionMap<Operation<VpuSsMetrics, QueryVpuSsMetricsParam>> getVpuSsMetrics() override;
  VersionMap<Operation<SessionStates>> getVpuSsStates() override;
  VersionMap<Operation<Clocks>> getVpuClock() override;
  VersionMap<Operation<Cores>> getVpuSpec() override;

  /// The version of interface 100004, the description of the cores, that was agreed on; it must be set before `postInit`.
  void setVpuSpecVersion(int version) { specVersion_ = version; }

 private:
  /// What is asked of the video engine, and the words in front of the state when that fails.
  struct Question {
    VpuOperation operation{};
    const char* failure = "";
    u32 coreId = 0;
    u32 instance = 0;
  };

  // Record is the request of a version, Reply its answer.
  template <class Record>
  Stated<Utilizations> queryUtil() const;
  template <class Record>
  Stated<VpuSsMetrics> querySsMetrics(const QueryVpuSsMetricsParam& param) const;
  template <class Record, class Reply>
  Stated<SessionStates> querySsStates() const;
  template <class Record>
  Stated<Clocks> queryClock() const;
  template <class Record>
  Stated<Cores> querySpec() const;
  /// Cores of the drivers that cannot be asked for them.
  Stated<Cores> getVpuSpecV0() const;

  template <class Record, class Reply>
  Stated<Reply> query(const Question& question) const;
  template <class Record>
  KelpReturn access(Record& record) const;
  void logCores() const;

  NodeFile node_;
  DevArch arch_;
  std::optional<u32> vgpuId_;
  int specVersion_ = kUnboundVersion;
  Cores cores_;
};

}  // namespace kelp::linux_
