#pragma once

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "access_point_base.h"
#include "commands.h"
#include "linux/ap/misc/misc_mkis_provider.h"
#include "linux/ap/render/render_mkis_provider.h"

namespace kelp::linux_ {

/// The door to one device's nodes: what was negotiated on its misc node and, where there is a video
/// engine, on its render node, and the device's description. A query arrives as a command and is sent
/// in the version that is agreed on at that moment.
///
/// Owned by the device's core model and used under the device model's locks.
class AccessPoint : public AccessPointBase {
 public:
  /// @param knownUuid of a mediated device, where to look for it first; may be empty
  explicit AccessPoint(const DevCuid& cuid, std::string knownUuid = {})
      : cuid_(cuid), knownUuid_(std::move(knownUuid)) {}
  ~AccessPoint() override;

  const DevCuid& getCuid() const override { return cuid_; }
  const Stated<DevDesc>& getDevDesc() const override { return devDesc_; }
  Done init() override;

  /// A command that is one call of one interface. State 6 without the context of its node.
  template <class Cmd>
  Stated<typename Cmd::Result> doExec(const Cmd& cmd) {
    using Name = std::remove_const_t<decltype(IntfOf<Cmd>::kName)>;
    if constexpr (std::is_same_v<Name, MiscMkisIntfName>) {
      return forward(miscContext_.get(), cmd);
    } else {
      return forward(renderContext_.get(), cmd);
    }
  }

  // Commands that do more than forward.
  Stated<PcieInfo> doExec(const QueryPcieInfoCmd& cmd);
  Stated<Efuse> doExec(const QueryEfuseCmd& cmd);
  /// The driver names the parent by its node; the result is that node's packed PCI address.
  Stated<unsigned long> doExec(const QueryMpcParentCmd& cmd);
  Stated<std::string> doExec(const QueryAffinityWithinNodeCmd& cmd);
  /// Closes the render node, resets, and opens it again; the misc node stays open over the reset. A render
  /// node that does not come back does not change the result.
  Stated<int> doExec(const ResetDeviceCmd& cmd);
  // What the mediated device framework tells, in access_point_mediated.cpp.
  Stated<std::vector<MdevVirtType>> doExec(const QuerySupportedVirtTypesCmd& cmd);
  Stated<std::vector<MdevVirtType>> doExec(const QueryAvailableVirtTypesCmd& cmd);
  Stated<unsigned int> doExec(const QueryAvailableVirtInstancesCmd& cmd);
  Stated<std::vector<std::string>> doExec(const QueryActiveVirtUuidsCmd& cmd);
  Stated<MdevVirtType> doExec(const QueryVirtTypeCmd& cmd);
  Stated<unsigned int> doExec(const QueryVgpuIdCmd& cmd);
  Stated<unsigned int> doExec(const QueryVmPidCmd& cmd);

 private:
  template <class Provider, class Cmd>
  static Stated<typename Cmd::Result> forward(Provider* context, const Cmd& cmd) {
    if (context == nullptr) {
      return KelpReturn::kNotSupported;
    }
    const auto intf = context->template getIntf<IntfOf<Cmd>::kName>();
    if (!intf.ok()) {
      return toKelpReturn(intf.state());
    }
    if (!intf.value().operation) {
      return KelpReturn::kNotSupported;
    }
    return std::apply(intf.value().operation, cmd.params);
  }

  Done initMiscContext();
  Done initRenderContext();
  /// A mediated device has no nodes of its own: it is reached over those of the GPU that carries it.
  Done initVirt();
  Done checkFwVersion();

  /// Negotiates on a misc node; `failure` is what the log says in front of the state.
  Done openMiscContext(MiscMkisProvider& context, const char* failure) const;
  /// Negotiates on a render node, and keeps it when the video engine tells its cores.
  Done openRenderContext(const std::string& nodeName, const char* failure);

  std::string miscName() const;
  std::string sbdf() const;
  Stated<DevDesc> describe(MiscMkisProvider& context) const;
  Stated<std::string> makeUuid(MiscMkisProvider& context, const DevDesc& desc) const;
  Stated<Efuse> queryEfuse(MiscMkisProvider& context) const;

  DevCuid cuid_;
  std::string knownUuid_;
  Stated<DevDesc> devDesc_;
  std::unique_ptr<MiscMkisProvider> miscContext_;
  std::unique_ptr<RenderMkisProvider> renderContext_;
};

}  // namespace kelp::linux_
