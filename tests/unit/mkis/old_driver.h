#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "call_exchange.h"
#include "linux/ap/misc/misc_mkis_provider.h"
#include "support/scripted_driver.h"

namespace tolk_test {

/// A driver of protocol 0: fails the newer probe, lists interfaces with one version each, and has a request
/// per record. Time stands still in it: sleeps are counted and end at once.
class OldDriver : public ScriptedDriver {
 public:
  static constexpr const char* kNode = "/dev/ovgpu.3";
  static constexpr std::uint32_t kCommand = 0xC1084D01;

  struct Entry {
    std::uint32_t name;
    std::uint32_t version;
  };

  explicit OldDriver(std::vector<Entry> listed) {
    allowOpen(kNode);
    fail(0xC00C4DAE, ENOTTY);
    answer(0xC0104DB0, [count = static_cast<std::uint32_t>(listed.size())](std::uint8_t* r) {
      put<std::uint32_t>(r, 4, count);
      return 0;
    });
    answer(0xC1484DB1, [listed = std::move(listed)](std::uint8_t* r) {
      const auto start = get<std::uint32_t>(r, 0);
      const auto count = std::min<std::uint32_t>(20, static_cast<std::uint32_t>(listed.size()) - start);
      put<std::uint32_t>(r, 4, count);
      for (std::uint32_t i = 0; i < count; ++i) {
        put<std::uint32_t>(r, 8 + i * 16, listed[start + i].name);
        put<std::uint32_t>(r, 12 + i * 16, listed[start + i].version);
      }
      return 0;
    });
  }

  int nanosleep(const timespec& time, timespec& left) override {
    const std::int64_t asked = time.tv_sec * 1'000'000'000 + time.tv_nsec;
    if (interruptions > 0) {
      --interruptions;
      slept += asked / 2;
      left = {.tv_sec = 0, .tv_nsec = asked - asked / 2};
      errno = EINTR;
      return -1;
    }
    ++sleeps;
    slept += asked;
    errno = 0;  // which a call that works may change, too
    return 0;
  }

  int interruptions = 0;
  int sleeps = 0;          ///< that came to their end
  std::int64_t slept = 0;  ///< nanoseconds
};

/// One request of a record: `request` is all that the record may hold on the way in, `reply` what the driver
/// writes. What is no reply field comes back in any state.
template <kelp::linux_::MiscMkisIntfName Name, class... Params>
auto exchangeRecord(std::uint32_t version, std::uint32_t number, std::size_t size, const Fields& request,
                    const Fields& reply, Params... params) {
  EXPECT_EQ((number >> 16) & 0x3FFF, size) << "the size is part of the number";
  OldDriver driver({{static_cast<std::uint32_t>(Name), version}});
  driver.answer(number, [&](std::uint8_t* record) {
    std::vector<std::uint8_t> expected(size);
    request.putInto(expected.data());
    EXPECT_EQ(std::vector<std::uint8_t>(record, record + size), expected);
    std::memset(record, 0xA5, size);
    reply.putInto(record);
    return 0;
  });
  kelp::linux_::MiscMkisProvider provider("ovgpu.3");
  EXPECT_TRUE(provider.init().ok());
  const auto intf = provider.getIntf<Name>();
  EXPECT_TRUE(intf.ok());
  EXPECT_EQ(intf.value().version, static_cast<int>(version));
  auto result = intf.value().operation(params...);
  EXPECT_EQ(driver.count(number), 1U);
  EXPECT_TRUE(result.ok()) << "state " << static_cast<unsigned>(result.state());
  return result;
}

}  // namespace tolk_test
