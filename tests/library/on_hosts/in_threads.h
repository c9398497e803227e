#pragma once

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

namespace tolk_test {

inline constexpr unsigned kThreads = 8;

/// Runs a function in eight threads that start together.
inline void inThreads(const std::function<void(unsigned thread)>& run) {
  std::atomic<unsigned> waiting = kThreads;
  std::vector<std::thread> threads;
  for (unsigned thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      --waiting;
      while (waiting != 0) {
        std::this_thread::yield();
      }
      run(thread);
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

/// Runs a function again and again for as long as LUMO_TEST_SECONDS says, ten seconds without it.
inline void forAWhile(const std::function<void()>& run) {
  const char* const told = std::getenv("LUMO_TEST_SECONDS");
  const auto end =
      std::chrono::steady_clock::now() + std::chrono::seconds(told != nullptr ? std::atoi(told) : 10);
  do {
    run();
  } while (std::chrono::steady_clock::now() < end);
}

}  // namespace tolk_test
