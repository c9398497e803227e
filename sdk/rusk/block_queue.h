#pragma once

#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

namespace rusk {

/// An unlimited queue between threads, oldest item first. Any number of producers and one consumer,
/// which sleeps in pop() while there is nothing to do.
template <class T>
class BlockQueue {
 public:
  void push(T item) {
    std::lock_guard lock(mutex_);
    items_.push_back(std::move(item));
    notEmpty_.notify_one();
  }

  T pop() {
    std::unique_lock lock(mutex_);
    notEmpty_.wait(lock, [this] { return !items_.empty(); });
    T item = std::move(items_.front());
    // Moves the rest forward, which costs nothing worth a ring: the queue holds a handful of items.
    items_.erase(items_.begin());
    return item;
  }

  bool empty() const {
    std::lock_guard lock(mutex_);
    return items_.empty();
  }

 private:
  std::vector<T> items_;
  mutable std::mutex mutex_;
  std::condition_variable notEmpty_;
};

}  // namespace rusk
