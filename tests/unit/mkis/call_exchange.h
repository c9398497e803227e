#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "driver_script.h"
#include "linux/ap/misc/misc_mkis_provider.h"

namespace tolk_test {

/// A number at an offset of a payload, or a text whose field is as long as the text.
struct Field {
  Field(std::size_t at, std::size_t width, std::uint64_t number) : offset(at), bytes(width) {
    std::memcpy(bytes.data(), &number, width);
  }
  Field(std::size_t at, const std::string& text) : offset(at), bytes(text.begin(), text.end()) {}

  std::size_t offset;
  std::vector<std::uint8_t> bytes;
};

struct Fields : std::vector<Field> {
  using std::vector<Field>::vector;

  void putInto(std::uint8_t* payload) const {
    for (const Field& field : *this) {
      std::memcpy(payload + field.offset, field.bytes.data(), field.bytes.size());
    }
  }
};

/// The driver's side of calls of one version of an interface. Checks that what comes is a well-formed
/// call, keeps the payloads that came, and answers with `reply` on a payload of rubbish: bytes that are
/// no reply field come back in any state.
class CallScript {
 public:
  static constexpr const char* kNode = "/dev/ovgpu.3";

  CallScript(std::uint16_t interface, std::uint8_t version, std::size_t payloadSize,
             DriverScript::Reply reply)
      : driver_({{interface, version, version}}), provider_("ovgpu.3") {
    driver_.allowOpen(kNode);
    driver_.currentMajor = 1;
    driver_.currentMinor = 0;
    driver_.on(interface, [=, this](std::uint8_t* payload) {
      const std::uint8_t* const record = payload - 40;
      EXPECT_EQ(get<std::uint16_t>(record, 0), 1U);
      EXPECT_EQ(get<std::uint16_t>(record, 2), 0U);
      EXPECT_EQ(get<std::uint32_t>(record, 4), 13U);
      EXPECT_EQ(get<std::uint32_t>(record, 8), 2U);
      EXPECT_EQ(get<std::uint32_t>(record, 12), 16 + payloadSize);
      EXPECT_EQ(get<std::uint64_t>(record, 16), 0U);
      EXPECT_EQ(get<std::uint32_t>(record, 24), interface + (std::uint32_t{version} << 16));
      EXPECT_EQ(get<std::uint32_t>(record, 28), payloadSize);
      EXPECT_EQ(get<std::uint64_t>(record, 32), 0U);
      if (testing::Test::HasFailure()) {
        return 3U;
      }
      sent.emplace_back(payload, payload + payloadSize);
      std::memset(payload, 0xA5, payloadSize);
      return reply(payload);
    });
    EXPECT_TRUE(provider_.init().ok());
  }

  template <kelp::linux_::MiscMkisIntfName Name, class... Params>
  auto perform(Params... params) {
    const auto intf = provider_.getIntf<Name>();
    EXPECT_TRUE(intf.ok());
    return intf.value().operation(params...);
  }

  std::vector<std::vector<std::uint8_t>> sent;

 private:
  DriverScript driver_;
  kelp::linux_::MiscMkisProvider provider_;
};

/// One call of one version of an interface: `request` is all that its payload may hold on the way in,
/// `reply` what the driver writes.
template <kelp::linux_::MiscMkisIntfName Name, class... Params>
auto exchange(std::uint8_t version, std::size_t payloadSize, const Fields& request, const Fields& reply,
              Params... params) {
  CallScript script(static_cast<std::uint16_t>(Name), version, payloadSize, [&](std::uint8_t* payload) {
    reply.putInto(payload);
    return 0U;
  });
  auto result = script.perform<Name>(params...);
  std::vector<std::uint8_t> expected(payloadSize);
  request.putInto(expected.data());
  EXPECT_EQ(script.sent, (std::vector<std::vector<std::uint8_t>>{expected}));
  EXPECT_TRUE(result.ok()) << "state " << static_cast<unsigned>(result.state());
  return result;
}

}  // namespace tolk_test
