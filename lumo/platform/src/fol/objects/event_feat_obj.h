#pragma once

#include "kelp_return.h"
#include "objects/feat_obj.h"

namespace kelp {

/// The faults that a device reports.
class EventFeatObj : public FeatObj<EventFeatObj> {
 public:
  explicit EventFeatObj(const std::shared_ptr<CoreModel>& model) : FeatObj(model) {}

  /// Empties the driver's queues of messages of this device.
  virtual Stated<int> resetMessages() const;
};

}  // namespace kelp
