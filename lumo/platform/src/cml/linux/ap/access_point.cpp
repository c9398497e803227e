#include "linux/ap/access_point.h"

#include <algorithm>
#include <array>
#include <optional>

#include "common/efuse/efuse.h"
#include "kelp_log.h"
#include "linux/access_os.h"
#include "linux/ap/device_uuid.h"
#include "linux/fs_helper.h"
#include "linux/paths.h"
#include "linux/pci_access.h"
#include "pci_sbdf.h"
#include "rusk/text.h"

namespace kelp::linux_ {
namespace {

// Where the chip's identity may lie; the driver moves the window to its own bank.
constexpr QueryEfuseDataParam kIdentityBits{.startBit = 2048, .bitCount = 1024};

/// Where a function's folder tells of its NUMA node.
struct AffinityFile {
  AffinityType type;
  const char* file;
  const char* line;
};
constexpr std::array kAffinityFiles{
    AffinityFile{AffinityType::kCpuList, "/local_cpulist", "cpu affinity string file path is "},
    AffinityFile{AffinityType::kCpuBitmask, "/local_cpus", "cpu affinity bitmask file path is "},
    AffinityFile{AffinityType::kMemory, "/numa_node", "memory affinity file path is "},
};

/// Lowest firmware that the driver of a family is known to work with; no row, no check.
struct LowestFirmware {
  DevArch arch;
  unsigned int version;
};
constexpr std::array kLowestFirmware{
    LowestFirmware{DevArch::kWold, 703},
    LowestFirmware{DevArch::kFen1, 20001},
    LowestFirmware{DevArch::kFen2, 20001},
    LowestFirmware{DevArch::kTor1, 0},
};

}  // namespace

AccessPoint::~AccessPoint() = default;

std::string AccessPoint::miscName() const {
  return kMiscPrefix + std::to_string(cuid_.intId);
}

std::string AccessPoint::sbdf() const {
  return sbdfText(cuid_.sbdf);
}

Done AccessPoint::init() {
  if (devDesc_.ok()) {
    return 0;
  }
  if (cuid_.type == DevType::kMediated) {
    return initVirt();
  }
  if (auto done = initMiscContext(); !done.ok()) {
    return done;
  }
  if (auto done = initRenderContext(); !done.ok()) {
    miscContext_.reset();
    devDesc_ = {};
    return done;
  }
  if (cuid_.type != DevType::kGuest) {
    // Old firmware is worth a line in the log, never a refusal.
    static_cast<void>(checkFwVersion());
  }
  return 0;
}

Done AccessPoint::openMiscContext(MiscMkisProvider& context, const char* failure) const {
  if (const auto done = context.init(); !done.ok()) {
    KELP_LOG(kError) << failure << done.state();
    return toKelpReturn(done.state());
  }
  if (auto done = context.postInit(); !done.ok()) {
    KELP_LOG(kError) << failure << done.state();
    return done;
  }
  context.setArch(cuid_.arch);
  return 0;
}

Done AccessPoint::initMiscContext() {
  miscContext_.reset();
  auto context = std::make_unique<MiscMkisProvider>(miscName());
  if (auto done = openMiscContext(*context, "misc context init failed, state = "); !done.ok()) {
    return done;
  }
  auto desc = describe(*context);
  if (!desc.ok()) {
    return desc.state();
  }
  DevDesc described = desc.take();
  // A guest's GPU has no identity of its own.
  if (described.uuid.empty() && cuid_.type != DevType::kGuest) {
    auto uuid = makeUuid(*context, described);
    if (!uuid.ok()) {
      return uuid.state();
    }
    described.uuid = uuid.take();
  }
  devDesc_ = std::move(described);
  miscContext_ = std::move(context);
  return 0;
}

Stated<DevDesc> AccessPoint::describe(MiscMkisProvider& context) const {
  const auto intf = context.getIntf<MiscMkisIntfName::kQueryDevDesc>();
  if (!intf.ok()) {
    KELP_LOG(kError) << "get description failed, state = " << intf.state();
  } else if (intf.value().operation) {
    if (auto desc = intf.value().operation(); desc.ok()) {
      return desc;
    }
  }
  KELP_LOG(kWarn) << "Failed to query device desc from kmd, next to get info from os instead";
  auto desc = AccessOs::getDeviceDescFromOs(miscName());
  if (!desc.ok()) {
    KELP_LOG(kError) << "query device desc from os failed.";
  }
  return desc;
}

Stated<std::string> AccessPoint::makeUuid(MiscMkisProvider& context, const DevDesc& desc) const {
  const auto efuse = queryEfuse(context);
  if (!efuse.ok()) {
    KELP_LOG(kError) << "get efuse failed";
    // A chip family or a driver that delivers no efuse has a uuid all the same.
    if (efuse.state() != KelpReturn::kNotSupported) {
      return efuse.state();
    }
  }
  const std::uint64_t chip = efuse.ok() ? chipValue(efuse.value()) : 0;
  if (chip == 0) {
    return uuidOfNode(cuid_.intId);
  }
  if (cuid_.type != DevType::kMpcInstance) {
    return uuidOfChip(chip);
  }
  const auto profile = forward(&context, QueryMpcProfCmd());
  if (!profile.ok()) {
    return profile.state();
  }
  return uuidOfInstance(chip, profile.value().id, desc.parentMiscId);
}

Done AccessPoint::openRenderContext(const std::string& nodeName, const char* failure) {
  std::optional<std::uint32_t> vgpuId;
  if (cuid_.type == DevType::kMediated) {
    vgpuId = static_cast<std::uint32_t>(cuid_.intId);
  }
  auto context = std::make_unique<RenderMkisProvider>(nodeName, cuid_.arch, vgpuId);
  if (const auto done = context->init(); !done.ok()) {
    KELP_LOG(kError) << failure << done.state();
    return toKelpReturn(done.state());
  }
  if (const auto done = context->postInit(); !done.ok()) {
    // Without its cores the video engine answers "not supported"; the rest of the device works.
    KELP_LOG(kError) << failure << done.state();
    return 0;
  }
  renderContext_ = std::move(context);
  return 0;
}

Done AccessPoint::initRenderContext() {
  renderContext_.reset();
  const auto vpuEnabled = AccessOs::isVpuEnable();
  const Stated<std::string>& path = devDesc_.value().renderPath;
  if (cuid_.type == DevType::kMpcParent || !vpuEnabled.ok() || !vpuEnabled.value() || !path.ok()) {
    KELP_LOG(kInfo) << "not init render context, device type is " << cuid_.type << " vpu enable state is "
                    << vpuEnabled.state() << " vpu enable value is " << vpuEnabled.value();
    return 0;
  }
  const std::string nodeName = path.value().substr(path.value().rfind('/') + 1);
  return openRenderContext(nodeName, "render context init failed, state = ");
}

Done AccessPoint::checkFwVersion() {
  const std::string& path = devDesc_.value().miscPath.value();
  const DevArch arch = cuid_.arch;
  const auto versions = doExec(QuerySmcFwVersionCmd());
  if (!versions.ok()) {
    KELP_LOG(kError) << path << " read fw version failed, state = " << versions.state();
    return KelpReturn::kFailure;
  }
  const auto rtos = versions.value().find("rtos");
  if (rtos == versions.value().end() || !rtos->second.ok()) {
    KELP_LOG(kError) << path << "get rtos version failed";
    return KelpReturn::kFailure;
  }
  for (const LowestFirmware& row : kLowestFirmware) {
    if (row.arch != arch) {
      continue;
    }
    if (rtos->second.value() < row.version) {
      KELP_LOG(kWarn) << path << " arch is " << arch << "rtos version is " << rtos->second.value()
                      << " fw version is out-of-date, please update ovbios!";
    }
    return 0;
  }
  KELP_LOG(kError) << path << " arch is " << arch << " not supported. Fw version cannot be validated!";
  return KelpReturn::kFailure;
}

Stated<PcieInfo> AccessPoint::doExec(const QueryPcieInfoCmd& /*cmd*/) {
  auto info = forward(miscContext_.get(), QueryPciConfigDataCmd());
  if (info.ok()) {
    return info;
  }
  KELP_LOG(kError) << "get pci info from kmd error. error state is " << info.state();
  const std::string address = AccessOs::getPciBdfFromSysfs(miscName());
  if (address.empty()) {
    return KelpReturn::kFailure;
  }
  return readPcieInfoFromSysfs(address);
}

Stated<Efuse> AccessPoint::queryEfuse(MiscMkisProvider& context) const {
  const auto data = forward(&context, QueryEfuseDataCmd(kIdentityBits));
  if (!data.ok()) {
    return data.state();
  }
  return decodeEfuse(cuid_.arch, data.value());
}

Stated<Efuse> AccessPoint::doExec(const QueryEfuseCmd& /*cmd*/) {
  if (miscContext_ == nullptr) {
    return KelpReturn::kNotSupported;
  }
  return queryEfuse(*miscContext_);
}

Stated<unsigned long> AccessPoint::doExec(const QueryMpcParentCmd& cmd) {
  const auto parentMiscId = forward(miscContext_.get(), cmd);
  if (!parentMiscId.ok()) {
    return parentMiscId;
  }
  const std::string parent = AccessOs::getPciBdfFromSysfs(kMiscPrefix + std::to_string(parentMiscId.value()));
  const std::uint64_t packed = parent.empty() ? 0 : pciSbdfToUint64(parent);
  if (packed == 0) {
    return KelpReturn::kNotFound;
  }
  return static_cast<unsigned long>(packed);
}

Stated<std::string> AccessPoint::doExec(const QueryAffinityWithinNodeCmd& cmd) {
  const auto row = std::ranges::find(kAffinityFiles, cmd.type, &AffinityFile::type);
  if (row == kAffinityFiles.end()) {
    KELP_LOG(kError) << "invalid affinity type. type is " << cmd.type;
    return KelpReturn::kNotSupported;
  }
  const std::string path = std::string(kPciDevicesFolder) + "/" + sbdf() + row->file;
  KELP_LOG(kInfo) << row->line << path;
  std::string text;
  if (FsHelper::read(path, text) < 0) {
    return KelpReturn::kReadFailed;
  }
  return std::string(rusk::trim(text));
}

Stated<int> AccessPoint::doExec(const ResetDeviceCmd& cmd) {
  renderContext_.reset();
  auto done = forward(miscContext_.get(), cmd);
  const auto reopened = initRenderContext();
  KELP_LOG(kInfo) << "device " << cuid_.intId << " render context reinit state is " << reopened.state();
  return done;
}

}  // namespace kelp::linux_
