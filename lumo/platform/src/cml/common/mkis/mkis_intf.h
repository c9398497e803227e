#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <unordered_map>

#include "kelp_return.h"
#include "mkis_error.h"
#include "rusk/callable.h"
#include "rusk/type.h"

namespace kelp {

/// What a driver answers when it is asked which protocol it speaks. As a range of protocol versions
/// `currentMinor` is the lowest and `currentMajor` the highest; the names are the driver's.
struct MkisProbe {
  std::uint16_t currentMajor = 0;
  std::uint16_t currentMinor = 0;
  std::uint16_t oldMajor = 0;
  std::uint16_t oldMinor = 0;
  std::uint32_t interfaceCount = 0;
};

struct VersionRange {
  std::uint32_t min = 0;
  std::uint32_t max = 0;
};

/// The driver's interfaces by number. A number that a list holds twice keeps its first range.
using RemoteList = std::unordered_map<int, VersionRange>;

/// The operation behind one version of an interface.
template <class Result, class... Params>
using Operation = rusk::Callable<std::function<Stated<Result>(Params...)>>;

/// Every version of an interface that an accessor can speak, ascending.
template <class Op>
using VersionMap = std::map<std::uint32_t, Op>;

constexpr int kUnboundVersion = -256;

/// An interface that was agreed on with the driver.
template <class IntfName>
struct MkisIntfBase : rusk::Type {
  IntfName name{};
  int version = kUnboundVersion;
};

/// An agreed interface with the operation that speaks the agreed version. A version inside the common
/// range that nobody implements leaves the operation unbound.
template <class IntfName, IntfName Name, class Op>
struct MkisIntf : MkisIntfBase<IntfName> {
  MkisIntf() { this->name = Name; }
  MkisIntf(int agreed, Op bound) : operation(std::move(bound)) {
    this->name = Name;
    this->version = agreed;
  }

  Op operation;
};

/// The highest version that both sides have. Fails with kRemoteTooNew or kRemoteTooOld when the ranges
/// do not meet. Serves protocols and interfaces alike.
MkisStated<std::uint32_t> versionStrategy(const VersionRange& local, const VersionRange& remote);

}  // namespace kelp
