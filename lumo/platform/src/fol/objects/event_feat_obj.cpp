#include "objects/event_feat_obj.h"

#include "core_model.h"

namespace kelp {

Stated<int> EventFeatObj::resetMessages() const {
  return model().exec(ResetDeviceEventMsgsCmd());
}

}  // namespace kelp
