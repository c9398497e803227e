#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

namespace lumo {

/// Objects that a caller makes and gives back by address, so that a plain address can be told from one.
/// The mutex is held for map operations alone; an object that is in use elsewhere outlives its removal.
template <class Object>
class OwnedObjects {
 public:
  /// Throws std::bad_alloc.
  Object* add(std::shared_ptr<Object> object) {
    const std::lock_guard lock(mutex_);
    Object* const address = object.get();
    objects_.emplace(address, std::move(object));
    return address;
  }

  /// Null for an address that is none of theirs.
  std::shared_ptr<Object> find(const Object* address) const {
    const std::lock_guard lock(mutex_);
    const auto found = objects_.find(address);
    return found == objects_.end() ? nullptr : found->second;
  }

  /// Whether there was such an object.
  bool remove(const Object* address) {
    const std::lock_guard lock(mutex_);
    return objects_.erase(address) != 0;
  }

  void clear() {
    const std::lock_guard lock(mutex_);
    objects_.clear();
  }

 private:
  mutable std::mutex mutex_;
  std::unordered_map<const Object*, std::shared_ptr<Object>> objects_;
};

}  // namespace lumo
