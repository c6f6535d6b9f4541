#include "PlatformKit/WorkerPool.h"

#include "PlatformKit/Posix/SignalMask.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace PlatformKit {

WorkerPool::WorkerPool(std::size_t threads) {
  const AllSignalsBlocked inheritedByTheThreads;
  try {
    for (std::size_t i = 0; i < std::max<std::size_t>(threads, 1); ++i) {
      threads_.emplace_back([this] { work(); });
    }
  } catch (...) {
    stopAndJoin();
    throw;
  }
}

WorkerPool::~WorkerPool() {
  stopAndJoin();
}

void WorkerPool::stopAndJoin() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  workArrived_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

WorkerPool::Batch WorkerPool::startJob(std::size_t count, Job job) {
  {
    const std::lock_guard lock(mutex_);
    if (unfinished_ != 0) throw std::logic_error("the batch before is still running");
    job_ = job;
    thrown_ = nullptr;
    next_ = 0;
    count_ = count;
    unfinished_ = count;
  }
  for (std::size_t i = 0; i < std::min(count, threads_.size()); ++i) workArrived_.notify_one();
  return Batch(*this);
}

void WorkerPool::Batch::wait() {
  std::unique_lock lock(pool_->mutex_);
  pool_->batchDone_.wait(lock, [this] { return pool_->unfinished_ == 0; });
  if (pool_->thrown_) std::rethrow_exception(std::exchange(pool_->thrown_, nullptr));
}

WorkerPool::Batch::~Batch() {
  if (pool_ == nullptr) return;
  std::unique_lock lock(pool_->mutex_);
  pool_->batchDone_.wait(lock, [this] { return pool_->unfinished_ == 0; });
}

void WorkerPool::work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    workArrived_.wait(lock, [this] { return stopping_ || next_ < count_; });
    if (stopping_) return;
    const std::size_t mine = next_++;
    const Job job = *job_;
    lock.unlock();
    std::exception_ptr thrown;
    try {
      job(mine);
    } catch (...) {
      thrown = std::current_exception();
    }
    lock.lock();
    if (thrown && !thrown_) thrown_ = thrown;
    if (--unfinished_ == 0) batchDone_.notify_one();
  }
}

}  // namespace PlatformKit
