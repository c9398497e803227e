#include "model_manager.h"

#include <new>
#include <vector>

#include "kelp_log.h"
#include "linux/environment.h"
#include "linux/model_enumerator.h"

namespace kelp {

ModelManager::ModelManager() : environment_(std::make_shared<linux_::Environment>()) {
  enumerator_ = std::make_unique<linux_::ModelEnumerator>(environment_);
}

ModelManager::~ModelManager() = default;

Stated<std::shared_ptr<CoreModel>> ModelManager::getModel(const DevCuid& cuid) {
  {
    const std::lock_guard lock(mutex_);
    if (const auto found = models_.find(cuid); found != models_.end()) {
      return found->second;
    }
  }
  auto model = std::make_shared<CoreModel>(cuid, enumerator_->getKnownUuid(cuid));
  const Done done = model->init();
  {
    const std::lock_guard lock(mutex_);
    models_.emplace(cuid, model);
  }
  if (!done.ok()) {
    return done.state();
  }
  return model;
}

void ModelManager::closeOtherModelFile(const DevCuid& target) {
  std::vector<DevCuid> cuids;
  {
    const std::lock_guard lock(mutex_);
    for (const auto& [cuid, model] : models_) {
      cuids.push_back(cuid);
    }
  }
  // One look-up per model: a slow close never blocks a look-up of another for long.
  for (const DevCuid& cuid : cuids) {
    if (cuid == target) {
      continue;
    }
    std::shared_ptr<CoreModel> model;
    {
      const std::lock_guard lock(mutex_);
      if (const auto found = models_.find(cuid); found != models_.end()) {
        model = found->second;
      }
    }
    if (model != nullptr) {
      model->close();
    }
  }
}

void ModelManager::reinitOtherModelFile(const DevCuid& target) {
  const std::lock_guard lock(mutex_);
  for (const auto& [cuid, model] : models_) {
    if (cuid == target) {
      continue;
    }
    try {
      KELP_LOG(kInfo) << "reinit device " << cuid.intId;
      model->reopen(cuid);
    } catch (const std::bad_alloc&) {
      // One that stays closed answers state 5; the others are opened all the same.
    }
  }
}

}  // namespace kelp
