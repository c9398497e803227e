#include <string>

#include "linux/mdev/mdev_type.h"
#include "support/drained_log.h"

// The description of a type of vGPUs.

namespace {

using kelp::linux_::MdevType;
using kelp::linux_::MdevTypeInfo;
using tolk_fuzz::expect;

template <class Value>
bool areSame(const kelp::Stated<Value>& one, const kelp::Stated<Value>& other) {
  return one.state() == other.state() && one.value() == other.value();
}

template <class Number>
void print(std::string& text, const char* key, const kelp::Stated<Number>& number) {
  if (number.ok()) text += std::string(text.empty() ? "" : ",") + key + "=" + std::to_string(number.value());
}

std::string print(const MdevTypeInfo& info) {
  std::string text;
  if (info.maxResolution.ok()) text = "max_resolution=" + info.maxResolution.value();
  print(text, "max_encode_num", info.maxEncodeNum);
  print(text, "max_decode_num", info.maxDecodeNum);
  print(text, "framebuffer", info.framebuffer);
  print(text, "max_instances", info.maxInstances);
  print(text, "max_ov_virtual_display", info.maxVirtualDisplay);
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static tolk_fuzz::DrainedLog log;
  const MdevTypeInfo info = MdevType::decode({reinterpret_cast<const char*>(data), size});
  const MdevTypeInfo again = MdevType::decode(print(info));
  expect(areSame(info.maxResolution, again.maxResolution) && areSame(info.maxEncodeNum, again.maxEncodeNum) &&
             areSame(info.maxDecodeNum, again.maxDecodeNum) && areSame(info.framebuffer, again.framebuffer) &&
             areSame(info.maxInstances, again.maxInstances) &&
             areSame(info.maxVirtualDisplay, again.maxVirtualDisplay),
         "a description that is printed reads the same");
  return 0;
}
