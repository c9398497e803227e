#pragma once

namespace rusk {

/// Root of entries that differ in type and are kept behind one pointer; a dynamic cast gets them back.
class Type {
 public:
  virtual ~Type() = default;
};

}  // namespace rusk
