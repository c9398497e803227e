#include "thread_refusal.h"

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>

namespace tolk_test {
namespace {

std::atomic<bool> refuses = false;

}  // namespace

ThreadRefusal::ThreadRefusal() {
  refuses = true;
}

ThreadRefusal::~ThreadRefusal() {
  refuses = false;
}

}  // namespace tolk_test

/// Comes before the system's own in this program.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                              void* argument) noexcept {
  static const auto next = reinterpret_cast<decltype(&pthread_create)>(::dlsym(RTLD_NEXT, "pthread_create"));
  return tolk_test::refuses ? EAGAIN : next(thread, attributes, body, argument);
}
