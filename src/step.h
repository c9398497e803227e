#pragma once

#include <memory>

namespace tolk {

/// One element of a run. A step does its work and names its successor; null ends the run. Steps run on
/// the worker thread alone, and a step that fails returns a CommandError as its successor.
class Step {
 public:
  virtual ~Step() = default;
  virtual std::shared_ptr<Step> work() = 0;
};

}  // namespace tolk
