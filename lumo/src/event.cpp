#include "event.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <limits>

#include "device.h"
#include "event_files.h"
#include "kelp_log.h"
#include "record_text.h"

namespace lumo {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr unsigned kMsgVersion = 1;
constexpr unsigned kXidVersion = 1;
/// No event of a type that is asked for has come.
constexpr LumoReturn kNoEvent = LUMO_RETURN_DRIVER_ACCESS_FAILED;
constexpr int kReadyAtOnce = 16;

struct EventMessage {
  std::uint32_t typeAndVersion;  ///< types in the low 24 bits
  std::uint32_t reserved;
  std::array<std::uint8_t, 16> uuid;
  LumoXidRecord record;
  std::array<std::uint8_t, 64> reservedBehind;

  unsigned long long types() const { return typeAndVersion & 0xff'ffff; }
  unsigned version() const { return typeAndVersion >> 24; }
};
static_assert(sizeof(EventMessage) == 256);

std::string hexText(const std::array<std::uint8_t, 16>& bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += {kDigits[byte >> 4], kDigits[byte & 0xf]};
  }
  return text;
}

/// What epoll can be told: whole milliseconds, so that a wait never ends early.
int pollTime(Clock::duration left) {
  const auto rounded = std::chrono::ceil<milliseconds>(std::max(left, Clock::duration::zero()));
  return static_cast<int>(std::min<milliseconds::rep>(rounded.count(), std::numeric_limits<int>::max()));
}

}  // namespace

Event::Event()
    : startTime_(std::chrono::duration_cast<milliseconds>(
          std::chrono::system_clock::now().time_since_epoch())),
      poller_(::epoll_create1(EPOLL_CLOEXEC)) {
  if (poller_ < 0) {
    KELP_LOG(kError) << "poller create error code is" << errno;
  }
  fileOfNode_ = findEventFiles();
}

Event::~Event() {
  for (const auto& [fd, index] : indexOfFd_) {
    ::close(fd);
  }
  if (poller_ >= 0) {
    ::close(poller_);
  }
}

LumoReturn Event::registerDevEvent(const Device& device, unsigned long long eventTypes) {
  LumoReturn status = LUMO_RETURN_SUCCESS;
  const std::uint32_t index = device.getIndex(&status);
  KELP_LOG(kInfo) << "get device index" << index;
  if (status != LUMO_RETURN_SUCCESS) {
    return status;
  }
  if ((device.getSupportedEventTypes(&status) & eventTypes) == 0) {
    return LUMO_RETURN_NOT_SUPPORTED;
  }
  if (const auto registered = typesOfIndex_.find(index); registered != typesOfIndex_.end()) {
    registered->second = eventTypes;
    return LUMO_RETURN_SUCCESS;
  }
  const auto file = fileOfNode_.find(device.getMiscPath(&status));
  if (status != LUMO_RETURN_SUCCESS) return status;
  return file == fileOfNode_.end() ? LUMO_RETURN_NOT_FOUND : openEventFile(file->second, index, eventTypes);
}

LumoReturn Event::openEventFile(const std::string& path, std::uint32_t index, unsigned long long eventTypes) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  KELP_LOG(kInfo) << "event file handle fd is" << fd;
  if (fd < 0) {
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  // From here on the descriptor is closed with this object, whatever happens.
  indexOfFd_.emplace(fd, index);
  epoll_event interest{};
  interest.events = EPOLLIN;
  interest.data.fd = fd;
  if (::epoll_ctl(poller_, EPOLL_CTL_ADD, fd, &interest) != 0) {
    KELP_LOG(kError) << "poller add device" << index << "failed";
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  typesOfIndex_.emplace(index, eventTypes);
  KELP_LOG(kInfo) << "device index" << index << "file fd is" << fd << "event type is" << eventTypes;
  return LUMO_RETURN_SUCCESS;
}

LumoReturn Event::setEventWait(milliseconds timeout, LumoEventData* data) {
  const Clock::time_point end = Clock::now() + timeout;
  std::array<epoll_event, kReadyAtOnce> ready;
  do {
    const int count = ::epoll_wait(poller_, ready.data(), kReadyAtOnce, pollTime(end - Clock::now()));
    // A signal of the caller's is no failure of the wait, which goes on for what is left of it.
    if (count < 0 && errno != EINTR) {
      const int error = errno;
      KELP_LOG(kError) << "epoll_wait error str: " << std::strerror(error) << " errno: " << error;
      return LUMO_RETURN_UNKNOWN_ERROR;
    }
    for (int i = 0; i < count; ++i) {
      if ((ready[static_cast<std::size_t>(i)].events & EPOLLIN) == 0) continue;
      const LumoReturn status = eventWaitWapper(ready[static_cast<std::size_t>(i)].data.fd, data);
      if (status != kNoEvent) return status;
    }
  } while (Clock::now() < end);
  return kNoEvent;
}

LumoReturn Event::eventWaitWapper(int fd, LumoEventData* data) const {
  EventMessage message;
  if (::read(fd, &message, sizeof message) != sizeof message) {
    return kNoEvent;
  }
  if (message.version() != kMsgVersion) {
    KELP_LOG(kError) << "current remote event version is" << message.version() << "local event version is"
                     << kMsgVersion;
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  const std::uint32_t index = indexOfFd_.at(fd);
  const auto types = typesOfIndex_.find(index);
  if (types == typesOfIndex_.end() || (message.types() & types->second & LUMO_EVENT_XID) == 0) {
    return kNoEvent;
  }
  if (message.record.version != kXidVersion) {
    KELP_LOG(kError) << "current local xid event struct version is " << kXidVersion
                     << "remote struct version is" << message.record.version;
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  if (static_cast<double>(message.record.timestamp) < static_cast<double>(startTime_.count()) / 1000.0) {
    return kNoEvent;
  }
  *data = {};
  data->deviceIndex = index;
  data->eventType = LUMO_EVENT_XID;
  setText(data->uuid, hexText(message.uuid));
  data->record = message.record;
  return LUMO_RETURN_SUCCESS;
}

}  // namespace lumo
