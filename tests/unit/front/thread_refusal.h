#pragma once

namespace tolk_test {

/// While it lives no thread can be started, as in a process that may have no more of them.
class ThreadRefusal {
 public:
  ThreadRefusal();
  ~ThreadRefusal();
  ThreadRefusal(const ThreadRefusal&) = delete;
  ThreadRefusal& operator=(const ThreadRefusal&) = delete;
};

}  // namespace tolk_test
