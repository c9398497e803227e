#include "support/driver_ways.h"

#include <array>

#include "linux/ap/misc/misc_mkis_provider.h"
#include "linux/ap/misc/mkis_protocol_v0/misc_kernel_accessor_v0.h"
#include "linux/ap/misc/mkis_protocol_v1/misc_kernel_accessor_v1.h"
#include "linux/ap/render/render_mkis_provider.h"
#include "linux/ap/render/render_protocol_v0/render_kernel_accessor.h"
#include "support/reply_checks.h"

namespace tolk_fuzz {
namespace {

using namespace kelp;
using namespace kelp::linux_;

template <class Param>
Param takeParam(FuzzInput& input) {
  return input.take<Param>();
}
/// A flag has two values.
template <>
SetPowerLimitParam takeParam(FuzzInput& input) {
  return {.limit = input.take<std::uint32_t>(), .persistent = input.take<std::uint8_t>() % 2 != 0};
}

template <class Result, class... Params>
void perform(const rusk::Callable<std::function<Stated<Result>(Params...)>>& operation, FuzzInput& input) {
  if (operation) checkReply(operation(takeParam<std::remove_cvref_t<Params>>(input)...));
}

/// One of the versions that a slot lists.
template <class Versions>
void performOne(const Versions& versions, FuzzInput& input) {
  const auto choice = input.take<std::uint8_t>();
  if (versions.empty()) return;
  perform(std::next(versions.begin(), choice % static_cast<std::ptrdiff_t>(versions.size()))->second, input);
}

template <class Accessor>
using Direct = void (*)(Accessor& accessor, FuzzInput& input);
template <class Provider>
using Agreed = void (*)(Provider& provider, FuzzInput& input);

/// The version that was agreed on.
template <auto Name, class Provider>
void performAgreed(Provider& provider, FuzzInput& input) {
  const auto agreed = provider.template getIntf<Name>();
  if (agreed.ok()) perform(agreed.value().operation, input);
}

constexpr std::array<Direct<MiscKernelAccessorBase>, 68> kMiscSlots{
#define MISC_INTERFACE(number, name, ...) \
  [](MiscKernelAccessorBase& accessor, FuzzInput& input) { performOne(accessor.do##name(), input); },
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE
};
constexpr std::array<Agreed<MiscMkisProvider>, 68> kMiscInterfaces{
#define MISC_INTERFACE(number, name, ...) performAgreed<MiscMkisIntfName::k##name, MiscMkisProvider>,
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE
};
static_assert(kMiscSlots.back() != nullptr && kMiscInterfaces.back() != nullptr);

constexpr std::array<Direct<RenderKernelAccessor>, 5> kRenderSlots{
#define RENDER_INTERFACE(number, name, slot, ...) \
  [](RenderKernelAccessor& accessor, FuzzInput& input) { performOne(accessor.slot(), input); },
#include "common/mkis/render_interfaces.def"
#undef RENDER_INTERFACE
};
constexpr std::array<Agreed<RenderMkisProvider>, 5> kRenderInterfaces{
#define RENDER_INTERFACE(number, name, ...) performAgreed<RenderMkisIntfName::k##name, RenderMkisProvider>,
#include "common/mkis/render_interfaces.def"
#undef RENDER_INTERFACE
};

/// As a caller does that asks one thing after the other.
template <class Table, class Peer>
void performRows(const Table& table, Peer& peer, FuzzInput& input) {
  while (!input.atEnd()) table[input.take<std::uint8_t>() % table.size()](peer, input);
}

void tryProtocolOne(DevArch arch, FuzzInput& input) {
  MiscKernelAccessorV1 accessor(NodeFile::open("/dev/ovgpu.0"), 1, 0);
  accessor.setArch(arch);
  performRows(kMiscSlots, accessor, input);
}

void tryProtocolZero(DevArch arch, FuzzInput& input) {
  MiscKernelAccessorV0 accessor(NodeFile::open("/dev/ovgpu.0"));
  accessor.setArch(arch);
  performRows(kMiscSlots, accessor, input);
}

void tryNegotiation(DevArch arch, FuzzInput& input) {
  MiscMkisProvider provider("ovgpu.0");
  if (!provider.init().ok() || !provider.postInit().ok()) return;
  provider.setArch(arch);
  performRows(kMiscInterfaces, provider, input);
}

void tryRender(DevArch arch, FuzzInput& input) {
  RenderKernelAccessor accessor(NodeFile::open("/dev/dri/renderD128"), arch);
  accessor.setVpuSpecVersion(input.take<std::int8_t>());
  if (accessor.postInit().ok()) performRows(kRenderSlots, accessor, input);
}

void tryRenderNegotiation(DevArch arch, FuzzInput& input) {
  RenderMkisProvider provider("renderD128", arch, 1);
  if (provider.init().ok() && provider.postInit().ok()) performRows(kRenderInterfaces, provider, input);
}

constexpr std::array kWays{tryProtocolOne, tryProtocolZero, tryNegotiation, tryRender, tryRenderNegotiation};

}  // namespace

void tryDriver(FuzzInput& input) {
  const auto way = input.take<std::uint8_t>() % kWays.size();
  const auto arch = DevArch{input.take<std::uint8_t>() % 5U};
  kWays[way](arch, input);
}

}  // namespace tolk_fuzz
