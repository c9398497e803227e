#pragma once

#include <string_view>
#include <vector>

#include "kelp_return.h"
#include "mpc_values.h"
#include "objects/feat_obj.h"

namespace kelp {

/// The division of a GPU into MPC instances, as its parent and its instances see it. What a parent can
/// be divided into is read once, by the constructor; a read that failed is kept as a state.
class MpcFeatObj : public FeatObj<MpcFeatObj> {
 public:
  explicit MpcFeatObj(const std::shared_ptr<CoreModel>& model);

  /// State 6 unless the device is an MPC parent.
  virtual Stated<std::vector<MpcProfile>> getSupportedProfiles() const { return profiles_; }
  virtual Stated<std::vector<MpcConfiguration>> getSupportedConfigurations() const { return configurations_; }
  /// A supported configuration; state 7 for one that is not.
  virtual Stated<MpcConfiguration> getMpcConfiguration(std::uint32_t id) const;
  virtual Stated<MpcConfiguration> getMpcConfigurationByName(std::string_view name) const;
  virtual Stated<MpcMode> getMode() const;
  /// Replaces the instances of an MPC parent.
  virtual Stated<int> setConfiguration(std::uint32_t id) const;
  virtual Stated<MpcInstList> queryInstances() const;
  /// Profile of this instance; state 6 unless the device is one.
  virtual Stated<MpcProfile> queryInstanceProfile() const;
  /// Makes a GPU an MPC parent, or takes its instances away.
  virtual Stated<int> setMode(MpcMode mode) const;

 private:
  Stated<std::vector<MpcProfile>> profiles_;
  Stated<std::vector<MpcConfiguration>> configurations_;
};

}  // namespace kelp
