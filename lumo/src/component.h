#pragma once

#include <memory>
#include <source_location>
#include <string>

#include "dev_cuid.h"
#include "feature_question.h"
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
  kelp::DevType getType() const { return type_; }

  /// The only model whose maximum clocks are known to be true.
  bool hasMaxClocks() const { return name_ == "OVT B230E"; }

  /// The owner, or null and the code.
  std::shared_ptr<Owner> lockOwner(LumoReturn* status) const {
    std::shared_ptr<Owner> owner = owner_.lock();
    if (owner == nullptr) {
      *status = LUMO_RETURN_UNKNOWN_ERROR;
    }
    return owner;
  }

  /// What an operation of every kind of device starts with: the feature that it asks, kept together with
  /// its device until the caller lets go, or null and the code.
  template <class Feature>
  std::shared_ptr<Feature> enterAny(std::shared_ptr<Feature> kelp::Features::*place, LumoReturn* status,
                                    std::source_location operation = std::source_location::current()) const {
    const std::shared_ptr<Owner> owner = lockOwner(status);
    if (owner == nullptr) {
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

  /// What every other operation starts with. A mediated device has no parts of its own.
  template <class Feature>
  std::shared_ptr<Feature> enter(std::shared_ptr<Feature> kelp::Features::*place, LumoReturn* status,
                                 std::source_location operation = std::source_location::current()) const {
    if (type_ == kelp::DevType::kMediated) {
      *status = LUMO_RETURN_NOT_SUPPORTED;
      return nullptr;
    }
    return enterAny(place, status, operation);
  }

  /// The whole of most operations: one question to one feature.
  template <class Feature, class Question>
  Answer<Question, Feature> ask(std::shared_ptr<Feature> kelp::Features::*place, LumoReturn* status,
                                const Question& question,
                                std::source_location operation = std::source_location::current()) const {
    const std::shared_ptr<Feature> feature = enter(place, status, operation);
    if (feature == nullptr) {
      return {};
    }
    return askFeature(feature.get(), status, question, operation);
  }

 private:
  Index index_;
  std::weak_ptr<Owner> owner_;
  kelp::DevType type_;
  std::string name_;
};

}  // namespace lumo
