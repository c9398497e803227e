#include "objects/mpc_feat_obj.h"

#include "kelp_log.h"
#include "objects/queries.h"

namespace kelp {
namespace {

/// What a search is logged as.
struct SearchTexts {
  const char* listed;
  const char* wanted;
};

template <class Key, class Field>
Stated<MpcConfiguration> findConfiguration(const Stated<std::vector<MpcConfiguration>>& configurations,
                                           const SearchTexts& texts, const Key& key,
                                           Field MpcConfiguration::*field) {
  if (!configurations.ok()) {
    KELP_LOG(kError) << "initSupportConfigsList() error, error value = " << configurations.state();
    return configurations.state();
  }
  for (const MpcConfiguration& configuration : configurations.value()) {
    KELP_LOG(kInfo) << texts.listed << configuration.*field;
    if (configuration.*field == key) {
      return configuration;
    }
  }
  KELP_LOG(kError) << texts.wanted << key << "not found.";
  return KelpReturn::kNotFound;
}

}  // namespace

MpcFeatObj::MpcFeatObj(const std::shared_ptr<CoreModel>& coreModel) : FeatObj(coreModel) {
  profiles_ = execFor({DevType::kMpcParent}, model(), QueryMpcProfListCmd());
  configurations_ = execFor({DevType::kMpcParent}, model(), QueryMpcConfListCmd());
}

Stated<MpcConfiguration> MpcFeatObj::getMpcConfiguration(std::uint32_t id) const {
  return findConfiguration(configurations_, {"current mpc device supported config id = ", "config id = "}, id,
                           &MpcConfiguration::id);
}

Stated<MpcConfiguration> MpcFeatObj::getMpcConfigurationByName(std::string_view name) const {
  return findConfiguration(configurations_, {"current mpc device supported config name = ", "config name = "},
                           name, &MpcConfiguration::name);
}

Stated<MpcMode> MpcFeatObj::getMode() const {
  switch (model().getCuid().type) {
    case DevType::kMpcParent:
    case DevType::kMpcInstance:
      return MpcMode::kOn;
    case DevType::kPhysical:
    case DevType::kMediated:
      return MpcMode::kOff;
    default:
      return KelpReturn::kNotSupported;
  }
}

Stated<int> MpcFeatObj::setConfiguration(std::uint32_t id) const {
  return execFor({DevType::kMpcParent}, model(), SetMpcConfCmd(SetMpcConfParam{.configId = id}));
}

Stated<MpcInstList> MpcFeatObj::queryInstances() const {
  return model().exec(QueryMpcInstListCmd());
}

Stated<MpcProfile> MpcFeatObj::queryInstanceProfile() const {
  return execFor({DevType::kMpcInstance}, model(), QueryMpcProfCmd());
}

Stated<int> MpcFeatObj::setMode(MpcMode mode) const {
  return model().exec(SetMpcSwitchCmd(SetMpcSwitchParam{.mode = mode}));
}

}  // namespace kelp
