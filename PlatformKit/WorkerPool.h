#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace PlatformKit {

/// Threads that are made once and then run one batch of numbered jobs after another. Starting a
/// batch makes no thread and allocates nothing.
///
/// The pool belongs to the thread that made it: only that thread starts batches and waits for them.
class WorkerPool {
 public:
  /// Makes `threads` threads (at least one). They receive none of the process's signals. Throws
  /// std::system_error when the system gives no more threads.
  explicit WorkerPool(std::size_t threads);
  /// Joins the threads.
  ~WorkerPool();
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  /// Runs `job(0)` to `job(count - 1)` on the workers, in any order, and returns when all are done.
  /// `job` is anything that can be called with a number. Throws the first exception that a job
  /// threw.
  template <class Callable>
  void parallelFor(std::size_t count, const Callable& job) {
    start(count, job).wait();
  }

  /// A batch that runs while its starter does something else; joined at the latest when it goes out
  /// of scope.
  class [[nodiscard]] Batch {
   public:
    ~Batch();
    Batch(Batch&& other) noexcept : pool_(std::exchange(other.pool_, nullptr)) {}
    Batch& operator=(Batch&&) = delete;
    /// Returns when every job is done; everything the jobs wrote is then visible to the caller.
    /// Throws the first exception that a job threw, once.
    void wait();

   private:
    friend class WorkerPool;
    explicit Batch(WorkerPool& pool) : pool_(&pool) {}
    WorkerPool* pool_;  // null once moved away
  };

  /// As `parallelFor`, but returns at once. `job` must live until the batch is joined; another
  /// batch cannot be started before: that throws std::logic_error.
  template <class Callable>
  Batch start(std::size_t count, const Callable& job) {
    return startJob(count, Job(job));
  }
  template <class Callable>
  Batch start(std::size_t count, const Callable&& job) = delete;

 private:
  // Refers to what is to be called, so that a batch allocates nothing.
  class Job {
   public:
    template <class Callable>
    explicit Job(const Callable& callable)
        : callable_(&callable), call_([](const void* what, std::size_t number) {
            (*static_cast<const Callable*>(what))(number);
          }) {}
    void operator()(std::size_t number) const { call_(callable_, number); }

   private:
    const void* callable_;
    void (*call_)(const void*, std::size_t);
  };

  Batch startJob(std::size_t count, Job job);
  void work();
  void stopAndJoin();

  std::mutex mutex_;
  std::condition_variable workArrived_;
  std::condition_variable batchDone_;
  std::optional<Job> job_;
  std::exception_ptr thrown_;
  std::size_t next_ = 0;
  std::size_t count_ = 0;
  std::size_t unfinished_ = 0;
  bool stopping_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace PlatformKit
