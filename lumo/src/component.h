#pragma once

#include <memory>
#include <source_location>
#include <string>

#include "dev_cuid.h"
#include "features.h"
#include "lumo_def.h"

namespace lumo {

/// Base of a part of a device. It keeps its owner by a weak link; the owner's name is read once, when
/// the part is made.
///
/// Operations may run on several threads. On a failure they store the code and return a default.
template <class Index, class Owner>
class Component {
 public:
  Component(Index index, const std::shared_ptr<Owner>& owner)
      : index_(index), owner_(owner), type_(owner->getType()), name_(owner->readName()) {}
  virtual ~Component() = default;

  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;

 protected:
  const std::string& getName() const { return name_; }

  /// What every operation starts with: the feature that it asks, kept together with its device until
  /// the caller lets go, or null and the code. A mediated device has no parts of its own.
  template <class Feature>
  std::shared_ptr<Feature> enter(std::shared_ptr<Feature> kelp::Features::*place, LumoReturn* status,
                                 std::source_location operation = std::source_location::current()) const {
    if (type_ == kelp::DevType::kMediated) {
      *status = LUMO_RETURN_NOT_SUPPORTED;
      return nullptr;
    }
    const std::shared_ptr<Owner> owner = owner_.lock();
    if (owner == nullptr) {
      *status = LUMO_RETURN_UNKNOWN_ERROR;
      return nullptr;
    }
    Feature* feature = (owner->getFeatures().*place).get();
    if (feature == nullptr) {
      logMissingFeature(operation);
      *status = LUMO_RETURN_NOT_SUPPORTED;
      return nullptr;
    }
    return std::shared_ptr<Feature>(owner, feature);
  }

 private:
  Index index_;
  std::weak_ptr<Owner> owner_;
  kelp::DevType type_;
  std::string name_;
};

}  // namespace lumo
