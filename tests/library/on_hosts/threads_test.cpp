#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "on_hosts/host_fixture.h"

// A server with eight GPUs, asked by many threads at once.

namespace {

constexpr unsigned kThreads = 8;
constexpr int kRounds = 20;

/// Runs a function in eight threads that start together.
void inThreads(const std::function<void(unsigned thread)>& run) {
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

class ServerHost : public tolk_test::HostFixture {
 protected:
  /// All that can be asked of one device, as one text.
  std::string ask(unsigned index) {
    std::string answer = name(device(index)) + " " + uuid(device(index));
    for (const auto& part :
         {utilization(index), temperature(index), totalMib(index), usedMib(index), eccMode(index),
          performanceState(index), property(index), processCount(index), linkWidth(index)}) {
      answer += " " + part;
    }
    return answer;
  }
};

TEST_F(ServerHost, EightThreadsEachOnADeviceOfItsOwn) {
  ASSERT_EQ(count(), kThreads);
  std::vector<std::string> alone;
  for (unsigned index = 0; index < kThreads; ++index) {
    alone.push_back(ask(index));
    EXPECT_EQ(alone[index].find("Unknown"), std::string::npos) << alone[index];
  }
  inThreads([&](unsigned thread) {
    for (int round = 0; round < kRounds; ++round) {
      EXPECT_EQ(ask(thread), alone[thread]);
    }
  });
}

TEST_F(ServerHost, EightThreadsOnOneDevice) {
  const std::string alone = ask(0);
  inThreads([&](unsigned) {
    for (int round = 0; round < kRounds; ++round) {
      EXPECT_EQ(ask(0), alone);
    }
  });
}

TEST(ServerHostStart, EightThreadsStartAndEndTheLibrary) {
  inThreads([](unsigned thread) {
    for (int round = 0; round < kRounds; ++round) {
      LumoLibrary* library = nullptr;
      ASSERT_EQ(lumoLibraryInit(&library), LUMO_RETURN_SUCCESS);
      unsigned number = 0;
      EXPECT_EQ(lumoLibraryCountDevice(library, &number), LUMO_RETURN_SUCCESS);
      EXPECT_EQ(number, kThreads);
      LumoDevice* device = nullptr;
      EXPECT_EQ(lumoLibraryInitDeviceByIndex(library, thread, &device), LUMO_RETURN_SUCCESS);
      unsigned index = 99;
      EXPECT_EQ(lumoDeviceGetIndex(device, &index), LUMO_RETURN_SUCCESS);
      EXPECT_EQ(index, thread);
      LumoGpu* gpu = nullptr;
      EXPECT_EQ(lumoDeviceInitGpu(device, &gpu), LUMO_RETURN_SUCCESS);
      unsigned utilization = 999;
      EXPECT_EQ(lumoGpuGetUtilization(gpu, &utilization), LUMO_RETURN_SUCCESS);
      EXPECT_LE(utilization, 100U);
      EXPECT_EQ(lumoLibraryShutDown(library), LUMO_RETURN_SUCCESS);
    }
  });
}

}  // namespace
