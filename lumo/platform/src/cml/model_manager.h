#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

#include "core_model.h"
#include "environment_base.h"
#include "model_enumerator_base.h"

namespace kelp {

/// Keeps one core model per device identity, and the two objects that know the operating system.
///
/// Owned by the device manager. The mutex guards the map alone, never a model's input and output.
class ModelManager {
 public:
  ModelManager();
  virtual ~ModelManager();

  ModelEnumeratorBase& getEnumerator() { return *enumerator_; }
  EnvironmentBase& getEnvironment() { return *environment_; }

  /// The model of a device, made and initialised on first use. A model whose `init` failed is kept
  /// too: the first call returns the failing state, later ones the model with state 0, whose commands
  /// then answer state 5.
  Stated<std::shared_ptr<CoreModel>> getModel(const DevCuid& cuid);

  /// Closes the nodes of every device but one, as the driver wants it around a reset.
  void closeOtherModelFile(const DevCuid& target);
  void reinitOtherModelFile(const DevCuid& target);

 private:
  std::unique_ptr<ModelEnumeratorBase> enumerator_;
  std::shared_ptr<EnvironmentBase> environment_;
  std::unordered_map<DevCuid, std::shared_ptr<CoreModel>> models_;
  std::mutex mutex_;
};

}  // namespace kelp
