#include "PlatformKit/WorkerPool.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

namespace PlatformKit {
namespace {

constexpr auto kLongEnough = std::chrono::seconds(30);

/// Something one thread waits for and another one tells.
class Event {
 public:
  void happen() {
    const std::lock_guard lock(mutex_);
    happened_ = true;
    changed_.notify_all();
  }
  bool wait() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, kLongEnough, [this] { return happened_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool happened_ = false;
};

// The slots are plain numbers: under the thread sanitizer this shows as well that what the jobs
// wrote is visible to the starter, and that no job of a batch runs into the next one.
TEST(WorkerPool, RunsEveryJobExactlyOnceHoweverManyThereAre) {
  for (const std::size_t threads : {0U, 1U, 3U, 8U}) {
    WorkerPool pool(threads);
    for (const std::size_t count : {0U, 1U, 2U, 7U, 1000U}) {
      std::vector<int> runs(count);
      pool.parallelFor(count, [&](std::size_t number) { ++runs.at(number); });
      EXPECT_EQ(runs, std::vector<int>(count, 1)) << threads << " threads";
    }
  }
}

TEST(WorkerPool, RunsOneBatchAfterAnother) {
  WorkerPool pool(4);
  std::vector<int> runs(6);
  for (int round = 0; round < 3000; ++round) {
    const std::size_t count = 1 + static_cast<std::size_t>(round) % runs.size();
    const auto job = [&, round](std::size_t number) { runs[number] += round; };
    pool.start(count, job).wait();
    ASSERT_EQ(std::accumulate(runs.begin(), runs.end(), 0), static_cast<int>(count) * round);
    std::fill(runs.begin(), runs.end(), 0);
  }
}

TEST(WorkerPool, RunsItsJobsInParallelToEachOtherAndToTheStarter) {
  WorkerPool pool(3);
  std::array<Event, 3> arrivals;
  Event starterWentOn;
  std::array<bool, 3> met{};
  const auto job = [&](std::size_t mine) {
    arrivals.at(mine).happen();
    met.at(mine) = starterWentOn.wait();
    for (Event& other : arrivals) met.at(mine) = met.at(mine) && other.wait();
  };
  for (int round = 0; round < 2; ++round) {
    WorkerPool::Batch batch = pool.start(3, job);
    starterWentOn.happen();
    batch.wait();
    EXPECT_EQ(met, (std::array{true, true, true}));
  }
}

TEST(WorkerPool, ABatchIsJoinedWhenAnExceptionLeavesItsScope) {
  WorkerPool pool(2);
  std::vector<int> runs(20);
  const auto job = [&](std::size_t number) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    ++runs[number];
  };
  try {
    const WorkerPool::Batch batch = pool.start(runs.size(), job);
    throw std::runtime_error("the starter fails");
  } catch (const std::runtime_error&) {
    EXPECT_EQ(runs, std::vector<int>(20, 1));
  }
  pool.parallelFor(runs.size(), job);
  EXPECT_EQ(runs, std::vector<int>(20, 2));
}

TEST(WorkerPool, ReceivesNoneOfTheProcesssSignals) {
  static std::atomic<int> received;
  received = 0;
  struct sigaction action {};
  struct sigaction before {};
  action.sa_handler = [](int) { ++received; };
  ASSERT_EQ(sigaction(SIGUSR1, &action, &before), 0);
  WorkerPool pool(2);

  sigset_t signals;
  sigset_t usual;
  sigemptyset(&signals);
  sigaddset(&signals, SIGUSR1);
  ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &signals, &usual), 0);
  EXPECT_EQ(sigismember(&usual, SIGUSR1), 0) << "making a pool blocked its maker's signals";
  Event sent;
  const auto job = [&](std::size_t) {
    EXPECT_TRUE(sent.wait());
    for (int i = 0; i < 20; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  };
  {
    const WorkerPool::Batch batch = pool.start(2, job);
    EXPECT_EQ(kill(getpid(), SIGUSR1), 0);
    sent.happen();
  }
  EXPECT_EQ(received, 0);
  pthread_sigmask(SIG_SETMASK, &usual, nullptr);  // now it comes to the one who may have it
  EXPECT_EQ(received, 1);
  sigaction(SIGUSR1, &before, nullptr);
}

}  // namespace
}  // namespace PlatformKit
