#pragma once

#include <memory>

namespace kelp {

class CoreModel;

/// Base of the features of a device: what one kind of question is asked through. `T` is the derived
/// class.
///
/// Owned by a device object, and null there when the device lacks the feature. It reads the device
/// object's own pointer to the core model, so that it must not outlive the device object, and holds
/// nothing but what its constructor read, so that it can be used from several threads. An operation
/// that a class does not have answers state 6 and logs nothing.
template <class T>
class FeatObj {
 public:
  virtual ~FeatObj() = default;

  FeatObj(const FeatObj&) = delete;
  FeatObj& operator=(const FeatObj&) = delete;

 protected:
  explicit FeatObj(const std::shared_ptr<CoreModel>& model) : model_(&model) {}

  const CoreModel& model() const { return **model_; }

 private:
  const std::shared_ptr<CoreModel>* model_;
};

}  // namespace kelp
