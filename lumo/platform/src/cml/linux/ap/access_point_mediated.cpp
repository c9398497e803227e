#include "kelp_log.h"
#include "linux/access_os.h"
#include "linux/ap/access_point.h"
#include "linux/entry_names.h"
#include "linux/fs_helper.h"
#include "linux/mdev/mdev_physical.h"
#include "linux/paths.h"

// The access point of a mediated device, and what the framework tells of the GPU that carries it.

namespace kelp::linux_ {
namespace {

/// Finds the entry of a folder that is a prefix and a number; `name` stays empty when there is none. The
/// result is that of the walk.
int searchNode(const std::string& folder, const char* prefix, std::string& name) {
  return FsHelper::searchEntry(
      folder, [=](const char* entry) { return numberBehind(prefix, entry).has_value(); }, name, kDirectories);
}

}  // namespace

Done AccessPoint::initVirt() {
  const std::string function = std::string(kPciDriverFolder) + "/" + sbdf();

  const std::string miscFolder = function + kMiscFolder;
  std::string miscName;
  if (const int result = searchNode(miscFolder, kMiscPrefix, miscName); result != 0 || miscName.empty()) {
    KELP_LOG(kError) << "search from " << miscFolder << "failed. return value is " << result << "miscName is";
    return KelpReturn::kFailure;
  }
  KELP_LOG(kInfo) << "virtual device sbdf " << sbdf() << " vgpu id " << cuid_.intId << " use misc name "
                  << miscName;
  auto context = std::make_unique<MiscMkisProvider>(miscName);
  if (auto done = openMiscContext(*context, "Misc context init failed, state = "); !done.ok()) {
    return done;
  }

  const std::string drmFolder = function + kDrmFolder;
  std::string renderName;
  if (const int result = searchNode(drmFolder, kRenderPrefix, renderName); result != 0) {
    KELP_LOG(kError) << "search from " << drmFolder << "failed. return value is " << result
                     << "renderName is";
    return KelpReturn::kFailure;
  }
  renderContext_.reset();
  const auto vpuEnabled = AccessOs::isVpuEnable();
  if (vpuEnabled.ok() && vpuEnabled.value() && !renderName.empty()) {
    KELP_LOG(kInfo) << "virtual device sbdf " << sbdf() << " vgpu id " << cuid_.intId << " use render name "
                    << renderName;
    // A vGPU without the video engine has all the rest.
    static_cast<void>(openRenderContext(renderName, "Render context init failed, state = "));
  }

  const auto device = MdevPhysical(sbdf()).findVirtual(cuid_.intId, knownUuid_);
  if (!device.ok()) {
    KELP_LOG(kError) << "Get vgpu uuid failed, state = " << device.state();
    renderContext_.reset();
    return device.state();
  }
  DevDesc desc;
  desc.uuid = device.value().getUuid();
  desc.sbdf = sbdf();
  desc.kmdFlagA = false;
  desc.kmdFlagB = false;
  desc.miscPath = std::string(kDeviceFolder) + "/" + miscName;
  if (!renderName.empty()) {
    desc.renderPath = std::string(kDrmDeviceFolder) + "/" + renderName;
  }
  devDesc_ = std::move(desc);
  miscContext_ = std::move(context);
  return 0;
}

Stated<std::vector<MdevVirtType>> AccessPoint::doExec(const QuerySupportedVirtTypesCmd& /*cmd*/) {
  const auto types = MdevPhysical(sbdf()).listTypes();
  if (!types.ok()) {
    return types.state();
  }
  std::vector<MdevVirtType> values;
  for (const MdevType& type : types.value()) {
    values.push_back(type.readVirtType());
  }
  return values;
}

Stated<std::vector<MdevVirtType>> AccessPoint::doExec(const QueryAvailableVirtTypesCmd& /*cmd*/) {
  const auto types = MdevPhysical(sbdf()).listTypes();
  if (!types.ok()) {
    return types.state();
  }
  std::vector<MdevVirtType> values;
  for (const MdevType& type : types.value()) {
    if (const auto available = type.readAvailableInstances(); available.ok() && available.value() > 0) {
      values.push_back(type.readVirtType());
    }
  }
  return values;
}

Stated<unsigned int> AccessPoint::doExec(const QueryAvailableVirtInstancesCmd& cmd) {
  const auto type = MdevPhysical(sbdf()).findType(cmd.typeId);
  if (!type.ok()) {
    return type.state();
  }
  return type.value().readAvailableInstances();
}

Stated<std::vector<std::string>> AccessPoint::doExec(const QueryActiveVirtUuidsCmd& /*cmd*/) {
  return MdevPhysical(sbdf()).listUuids();
}

Stated<MdevVirtType> AccessPoint::doExec(const QueryVirtTypeCmd& /*cmd*/) {
  if (cuid_.type != DevType::kMediated) {
    return KelpReturn::kNotSupported;
  }
  const auto type = MdevVirtual(devDesc_.value().uuid).findType();
  if (!type.ok()) {
    return type.state();
  }
  return type.value().readVirtType();
}

Stated<unsigned int> AccessPoint::doExec(const QueryVgpuIdCmd& /*cmd*/) {
  if (cuid_.type != DevType::kMediated) {
    return KelpReturn::kNotSupported;
  }
  return MdevVirtual(devDesc_.value().uuid).readVgpuId();
}

Stated<unsigned int> AccessPoint::doExec(const QueryVmPidCmd& /*cmd*/) {
  if (cuid_.type != DevType::kMediated) {
    return KelpReturn::kNotSupported;
  }
  return MdevVirtual(devDesc_.value().uuid).readVmPid();
}

}  // namespace kelp::linux_
