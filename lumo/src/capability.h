#pragma once

#include <functional>
#include <type_traits>

#include "device.h"

/// Operations that only some devices have, as the property word tells: the others do not support them.
namespace lumo {

/// The part that a device plays in MPC.
enum class MpcRole : unsigned { kNone = 0, kParent = 1, kInstance = 2 };

inline MpcRole mpcRoleOf(unsigned long long property) {
  return static_cast<MpcRole>((property & LUMO_PROPERTY_MPC_TYPE_MASK) >> LUMO_PROPERTY_MPC_TYPE_SHIFT);
}

inline bool isMpcParent(unsigned long long property) {
  return mpcRoleOf(property) == MpcRole::kParent;
}

inline bool isMpcInstance(unsigned long long property) {
  return mpcRoleOf(property) == MpcRole::kInstance;
}

/// A divided device can be divided, whatever its description says.
inline bool isMpcCapable(unsigned long long property) {
  return (property & LUMO_PROPERTY_MPC_CAPABLE) != 0 || mpcRoleOf(property) != MpcRole::kNone;
}

inline bool isSablinkCapable(unsigned long long property) {
  return (property & LUMO_PROPERTY_SABLINK_CAPABLE) != 0;
}

using Capability = bool (*)(unsigned long long property);

/// Whether a device has a capability; the code when it has not.
inline bool checkCapability(const Device& device, Capability capability, LumoReturn* status) {
  const unsigned long long property = device.getProperty(status);
  if (*status == LUMO_RETURN_SUCCESS && !capability(property)) {
    *status = LUMO_RETURN_NOT_SUPPORTED;
  }
  return *status == LUMO_RETURN_SUCCESS;
}

/// An operation of the devices with a capability alone.
template <class Operation>
auto onlyFor(Capability capability, Operation operation) {
  return [=](Device& device, LumoReturn* status) {
    using Result = std::invoke_result_t<const Operation&, Device&, LumoReturn*>;
    if constexpr (std::is_void_v<Result>) {
      if (checkCapability(device, capability, status)) {
        std::invoke(operation, device, status);
      }
    } else {
      return checkCapability(device, capability, status) ? std::invoke(operation, device, status) : Result{};
    }
  };
}

}  // namespace lumo
