#include <array>
#include <cerrno>
#include <vector>

#include "kelp_log.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_list_records.h"
#include "linux/ap/misc/mkis_protocol_v1/misc_kernel_accessor_v1.h"
#include "rusk/syscall_wrapper.h"

// How records of protocol 1 reach the driver, and the two that fetch its list.

namespace kelp::linux_ {
namespace {

/// The driver's status, by its number.
constexpr std::array kStates{
    KelpReturn::kSuccess,         // 0 done
    KelpReturn::kBadArgument,     // 1 bad argument
    KelpReturn::kNotSupported,    // 2 unknown interface
    KelpReturn::kBadArgument,     // 3 bad size
    KelpReturn::kNotSupported,    // 4 unknown version
    KelpReturn::kNotSupported,    // 5 not supported by this device
    KelpReturn::kBufferTooSmall,  // 6 buffer too small
    KelpReturn::kBusy,            // 7 busy
    KelpReturn::kOutOfMemory,     // 8 out of memory
    KelpReturn::kDeviceLost,      // 9 device lost
    KelpReturn::kFirmwareFailed,  // 10 firmware failure
    KelpReturn::kReadFailed,      // 11 input or output failure
    KelpReturn::kNotFound,        // 12 no such object
};

int send(int fd, MciHeader& header) {
  return rusk::SyscallWrapper::instance().ioctl(fd, kMciRequest, &header);
}

}  // namespace

MciHeader MiscKernelAccessorV1::newHeader(MciPduType type, std::size_t bodySize) const {
  return {.major = major_,
          .minor = minor_,
          .status = kMciStatusUnanswered,
          .pduType = static_cast<u32>(type),
          .bodySize = static_cast<u32>(bodySize),
          .reserved = 0};
}

KelpReturn MiscKernelAccessorV1::access(const char* recordName, MciHeader& header) const {
  if (fd() < 0) {
    KELP_LOG(kError) << "access<" << recordName << "fd is invalid !";
    return KelpReturn::kFailure;
  }
  if (const int result = send(fd(), header); result != 0) {
    const int error = errno;
    KELP_LOG(kError) << "access<" << recordName << "> ioctl return error = " << result
                     << ", errno = " << error;
    return KelpReturn::kFailure;
  }
  const u32 status = header.status;
  return status < kStates.size() ? kStates[status] : KelpReturn::kFailure;
}

MkisStated<u16> MiscKernelAccessorV1::scanPdu() const {
  MkisScanPduHeaderPv1 scan{};
  scan.header = newHeader(MciPduType::kScan, sizeof scan - sizeof scan.header);
  if (send(fd(), scan.header) != 0) {
    const int error = errno;
    KELP_LOG(kError) << "scan pdu ioctl failed. errno is " << error;
    return MkisError::kFailure;
  }
  if (const u32 status = scan.header.status; status != 0) {
    KELP_LOG(kError) << "scan pdu status is" << status;
    return MkisError::kFailure;
  }
  const u16 count = scan.listEntryCount;
  KELP_LOG(kInfo) << "scan pdu: list entries" << count << "device event types" << u16{scan.deviceEventTypes}
                  << "misc nodes" << u16{scan.miscNodes} << "render nodes" << u16{scan.renderNodes};
  return count;
}

MkisStated<RemoteList> MiscKernelAccessorV1::mkisList(const MkisProbe& /*probe*/) {
  const auto count = scanPdu();
  if (!count.ok()) {
    return count.state();
  }
  // Sized for the count that the driver reported, so that nothing it delivers lies outside.
  const std::size_t room = std::max<std::size_t>(count.value(), kMciListMinEntries);
  std::vector<u8> bytes(sizeof(MciListHead) + room * sizeof(MciListEntry));
  MciListHead head{};
  head.header = newHeader(MciPduType::kList, (count.value() + std::size_t{1}) * sizeof(MciListEntry));
  head.listEntryCount = count.value();
  std::memcpy(bytes.data(), &head, sizeof head);
  auto& header = *reinterpret_cast<MciHeader*>(bytes.data());
  if (send(fd(), header) != 0) {
    const int error = errno;
    KELP_LOG(kError) << "get remote interface list ioctl failed. errno is " << error;
    return MkisError::kFailure;
  }
  if (const u32 status = header.status; status != 0) {
    KELP_LOG(kError) << "mkis list status is " << status;
    return MkisError::kFailure;
  }
  RemoteList list;
  for (u16 i = 0; i < count.value(); ++i) {
    MciListEntry entry{};
    std::memcpy(&entry, bytes.data() + sizeof(MciListHead) + i * sizeof entry, sizeof entry);
    KELP_LOG(kInfo) << "remote interface list index " << i << " name id is " << u16{entry.name}
                    << " version range is [" << unsigned{entry.minVersion} << "-"
                    << unsigned{entry.maxVersion} << "]";
    list.emplace(int{entry.name}, VersionRange{entry.minVersion, entry.maxVersion});
  }
  return list;
}

}  // namespace kelp::linux_
