#include "linux/ap/misc/misc_mkis_provider.h"

#include <cerrno>

#include "kelp_log.h"
#include "linux/ap/misc/mki_probe.h"
#include "linux/ap/misc/mkis_protocol_v0/misc_kernel_accessor_v0.h"
#include "linux/ap/misc/mkis_protocol_v1/misc_kernel_accessor_v1.h"
#include "rusk/syscall_wrapper.h"

namespace kelp::linux_ {
namespace {

constexpr VersionRange kLocalProtocols{0, 1};

// The interfaces that every driver has, however old.
constexpr int kDefaultListEnd = 7;

}  // namespace

MkisStated<int> MiscMkisProvider::init() {
  const std::string path = "/dev/" + miscName_;
  NodeFile node = NodeFile::open(path);
  if (!node.isOpen()) {
    const int error = errno;
    KELP_LOG(kError) << "open " << path << " failed. value is " << node.fd() << " errno is " << error;
    return MkisError::kFailure;
  }
  const auto probe = getMkisProbe(node.fd());
  if (!probe.ok()) {
    KELP_LOG(kError) << "get mkis probe failed. use default mkis list";
    remoteList_ = mkisListDefault();
    accessor_ = std::make_unique<MiscKernelAccessorV0>(std::move(node));
    return 0;
  }
  return initByProbe(std::move(node), probe.value());
}

MkisStated<int> MiscMkisProvider::initByProbe(NodeFile node, const MkisProbe& probe) {
  const auto protocol = versionStrategy(kLocalProtocols, {probe.currentMinor, probe.currentMajor});
  if (!protocol.ok()) {
    return protocol.state();
  }
  std::unique_ptr<MiscKernelAccessorBase> accessor;
  if (protocol.value() == 0) {
    accessor = std::make_unique<MiscKernelAccessorV0>(std::move(node));
  } else {
    accessor =
        std::make_unique<MiscKernelAccessorV1>(std::move(node), probe.currentMajor, probe.currentMinor);
  }
  auto list = accessor->mkisList(probe);
  if (!list.ok()) {
    return MkisError::kFailure;
  }
  remoteList_ = list.take();
  accessor_ = std::move(accessor);
  return 0;
}

MkisStated<MkisProbe> MiscMkisProvider::getMkisProbe(int fd) const {
  auto& system = rusk::SyscallWrapper::instance();
  MkiQueryProbeV1 v1{};
  if (system.ioctl(fd, kMkiQueryProbeV1Request, &v1) == 0) {
    const MkisProbe probe{v1.currentMajor, v1.currentMinor, v1.oldMajor, v1.oldMinor, 0};
    KELP_LOG(kInfo) << "use V1 query remote mkis version success, remote mkis version info is "
                    << "current major " << probe.currentMajor << "current minor " << probe.currentMinor
                    << "old major " << probe.oldMajor << "old minor " << probe.oldMinor;
    return probe;
  }
  KELP_LOG(kWarn) << "use getMkisProbeV1 query remote mkis version failed, use v0 for a try";
  MkiQueryProbeV0 v0{};
  if (system.ioctl(fd, kMkiQueryProbeV0Request, &v0) == 0) {
    const MkisProbe probe{v0.major, v0.minor, v0.major, v0.minor, v0.interfaceCount};
    KELP_LOG(kInfo) << "use V0 query remote mkis version success, remote mkis version info is "
                    << "current major " << probe.currentMajor << "current minor " << probe.currentMinor
                    << "old major " << probe.oldMajor << "old minor " << probe.oldMinor << "interface count "
                    << probe.interfaceCount;
    return probe;
  }
  KELP_LOG(kError) << "use getMkisProbeV1 and V0 query remote mkis version all failed";
  return MkisError::kFailure;
}

Done MiscMkisProvider::postInit() {
  if (accessor_ == nullptr) {
    return KelpReturn::kFailure;
  }
  return accessor_->postInit();
}

void MiscMkisProvider::deinit() {
  accessor_.reset();
  MkisProvider::deinit();
}

RemoteList MiscMkisProvider::mkisListDefault() const {
  KELP_LOG(kDebug) << "Faking mkis list for legacy driver !";
  RemoteList list;
  for (int name = 0; name < kDefaultListEnd; ++name) {
    list.emplace(name, VersionRange{0, 0});
  }
  return list;
}

void MiscMkisProvider::setArch(DevArch arch) {
  if (accessor_ != nullptr) {
    accessor_->setArch(arch);
  }
}

}  // namespace kelp::linux_
