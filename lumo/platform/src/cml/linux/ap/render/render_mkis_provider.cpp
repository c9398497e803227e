#include "linux/ap/render/render_mkis_provider.h"

#include <array>
#include <cerrno>
#include <chrono>

#include "kelp_log.h"
#include "linux/ap/misc/mki_probe.h"
#include "linux/ap/render/render_protocol_v0/render_kernel_accessor.h"
#include "rusk/syscall_wrapper.h"

namespace kelp::linux_ {
namespace {

constexpr VersionRange kLocalProtocols{0, 0};

// An interrupted probe is repeated until it is answered; the bound keeps a driver that is busy for ever
// from hanging the tool.
constexpr std::chrono::seconds kLongestProbe{1};

constexpr std::array kDefaultList{100000, 100001, 100002, 100003, 100004};

}  // namespace

RenderMkisProvider::RenderMkisProvider(std::string nodeName, DevArch arch,
                                       std::optional<std::uint32_t> vgpuId)
    : nodeName_(std::move(nodeName)), arch_(arch), vgpuId_(vgpuId) {}

RenderMkisProvider::~RenderMkisProvider() = default;

MkisStated<int> RenderMkisProvider::init() {
  const std::string path = "/dev/dri/" + nodeName_;
  NodeFile node = NodeFile::open(path);
  if (!node.isOpen()) {
    const int error = errno;
    KELP_LOG(kError) << "open " << path << " failed. error is " << error;
    return MkisError::kFailure;
  }
  const auto probe = getMkisProbe(node.fd());
  if (!probe.ok()) {
    KELP_LOG(kError) << "get mkis probe failed. error code is " << probe.state();
    remoteList_ = mkisListDefault();
    accessor_ = std::make_unique<RenderKernelAccessor>(std::move(node), arch_, vgpuId_);
    return 0;
  }
  const auto protocol =
      versionStrategy(kLocalProtocols, {probe.value().currentMinor, probe.value().currentMajor});
  if (!protocol.ok()) {
    return protocol.state();
  }
  if (protocol.value() != 0) {
    KELP_LOG(kError) << "not supported mkis major version";
    return MkisError::kFailure;
  }
  KELP_LOG(kInfo) << "use mkis major 0 as protocol";
  auto accessor = std::make_unique<RenderKernelAccessor>(std::move(node), arch_, vgpuId_);
  auto list = accessor->mkisList(probe.value());
  if (!list.ok()) {
    return MkisError::kFailure;
  }
  remoteList_ = list.take();
  accessor_ = std::move(accessor);
  return 0;
}

MkisStated<MkisProbe> RenderMkisProvider::getMkisProbe(int fd) const {
  KELP_LOG(kInfo) << "through mkis1.0 query mkis version failed use mkis0.0 for a try";
  auto& system = rusk::SyscallWrapper::instance();
  MkiQueryProbeV0 record{};
  const auto end = std::chrono::steady_clock::now() + kLongestProbe;
  int result = 0;
  do {
    result = system.ioctl(fd, kRkiQueryProbeV0Request, &record);
  } while (result != 0 && (errno == EINTR || errno == EAGAIN) && std::chrono::steady_clock::now() < end);
  if (result != 0) {
    KELP_LOG(kError) << "through mkis0.0 query mkis version failed";
    return MkisError::kFailure;
  }
  const MkisProbe probe{record.major, record.minor, record.major, record.minor, record.interfaceCount};
  KELP_LOG(kInfo) << "use mkis0.0 to query remote mkis version success. current major version is "
                  << probe.currentMajor << "current minor version is " << probe.currentMinor
                  << "oldest major version is " << probe.oldMajor << "oldest minor version is "
                  << probe.oldMinor;
  return probe;
}

Done RenderMkisProvider::postInit() {
  if (accessor_ == nullptr) {
    return KelpReturn::kFailure;
  }
  accessor_->setVpuSpecVersion(getIntf<RenderMkisIntfName::kQueryVpuSpec>().value().version);
  return accessor_->postInit();
}

void RenderMkisProvider::deinit() {
  if (accessor_ != nullptr) {
    accessor_->deinit();
  }
  accessor_.reset();
  MkisProvider::deinit();
}

RenderKernelAccessorBase* RenderMkisProvider::getAccessor() {
  return accessor_.get();
}

RemoteList RenderMkisProvider::mkisListDefault() const {
  KELP_LOG(kDebug) << "Faking mkis list for legacy driver !";
  RemoteList list;
  for (const int name : kDefaultList) {
    list.emplace(name, VersionRange{0, 0});
  }
  return list;
}

}  // namespace kelp::linux_
