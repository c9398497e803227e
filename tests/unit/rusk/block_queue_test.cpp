#include "rusk/block_queue.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;

TEST(BlockQueue, ItemsLeaveInTheOrderOfTheirPush) {
  rusk::BlockQueue<int> queue;
  for (int item = 0; item < 5; ++item) queue.push(item);
  EXPECT_EQ(queue.pop(), 0);
  queue.push(5);
  for (int item = 1; item <= 5; ++item) EXPECT_EQ(queue.pop(), item);
}

TEST(BlockQueue, EmptyTellsWhetherSomethingWaits) {
  rusk::BlockQueue<int> queue;
  EXPECT_TRUE(queue.empty());
  queue.push(1);
  EXPECT_FALSE(queue.empty());
  EXPECT_EQ(queue.pop(), 1);
  EXPECT_TRUE(queue.empty());
}

TEST(BlockQueue, ItemsAreMoved) {
  rusk::BlockQueue<std::unique_ptr<int>> queue;
  queue.push(std::make_unique<int>(1));
  queue.push(std::make_unique<int>(2));
  EXPECT_EQ(*queue.pop(), 1);
  EXPECT_EQ(*queue.pop(), 2);
}

TEST(BlockQueue, QueueKeepsNothingOfAnItemThatLeft) {
  rusk::BlockQueue<std::shared_ptr<int>> queue;
  queue.push(std::make_shared<int>(1));
  queue.push(std::make_shared<int>(2));
  EXPECT_EQ(queue.pop().use_count(), 1);
  EXPECT_EQ(queue.pop().use_count(), 1);
}

TEST(BlockQueue, PopOnEmptyQueueSleepsUntilThePushWithoutPolling) {
  rusk::BlockQueue<int> queue;
  std::promise<void> started;
  std::promise<void> returned;
  long sleeps = 0;
  int item = 0;
  std::thread consumer([&] {
    rusage before{}, after{};
    started.set_value();
    ::getrusage(RUSAGE_THREAD, &before);
    item = queue.pop();
    ::getrusage(RUSAGE_THREAD, &after);
    sleeps = after.ru_nvcsw - before.ru_nvcsw;
    returned.set_value();
  });
  started.get_future().wait();
  EXPECT_EQ(returned.get_future().wait_for(300ms), std::future_status::timeout);
  queue.push(7);
  consumer.join();
  EXPECT_EQ(item, 7);
  // One sleep for the item, and a few at a contended mutex; a poll would sleep again and again.
  EXPECT_GE(sleeps, 1);
  EXPECT_LE(sleeps, 10);
}

TEST(BlockQueue, WaiterThatFindsTheQueueEmptyGoesBackToWaiting) {
  // The push wakes the waiter, but the pusher mostly takes the item away before the waiter runs.
  for (int round = 0; round < 20; ++round) {
    rusk::BlockQueue<int> queue;
    auto waiter = std::async(std::launch::async, [&] { return queue.pop(); });
    std::this_thread::sleep_for(2ms);
    queue.push(1);
    auto feeder = std::async(std::launch::async, [&] {
      std::this_thread::sleep_for(5ms);
      queue.push(2);
    });
    const int taken = queue.pop();
    EXPECT_EQ(taken + waiter.get(), 3);
    feeder.get();
    EXPECT_TRUE(queue.empty());
  }
}

TEST(BlockQueue, ManyProducersLoseNothingAndKeepTheirOrder) {
  constexpr int kProducers = 4;
  constexpr int kItems = 500;
  rusk::BlockQueue<std::pair<int, int>> queue;
  std::vector<std::thread> producers;
  for (int producer = 0; producer < kProducers; ++producer) {
    producers.emplace_back([&queue, producer] {
      for (int item = 0; item < kItems; ++item) queue.push({producer, item});
    });
  }
  std::vector<int> next(kProducers);
  for (int count = 0; count < kProducers * kItems; ++count) {
    const auto [producer, item] = queue.pop();
    EXPECT_EQ(item, next[static_cast<std::size_t>(producer)]++);
  }
  for (auto& producer : producers) producer.join();
  EXPECT_TRUE(queue.empty());
}

}  // namespace
