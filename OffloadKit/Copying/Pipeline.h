#pragma once

#include "OffloadKit/Transfer/FileDigest.h"
#include "PlatformKit/AlignedBuffer.h"
#include "PlatformKit/WorkerPool.h"

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

namespace OffloadKit {

/// What goes through a pipeline: it comes in rounds, each as much as one buffer takes. The
/// pipeline's caller is the one thread that owns it; two methods are called on other threads and
/// say so.
class Load {
 public:
  virtual ~Load() = default;

  /// Lays round `round` out in this memory, which belongs to it until the round after the next is
  /// laid out. Answers how many parts it is read in, each by a thread; 0 behind the last round.
  /// Called for each round in order, when the one before has been accepted.
  virtual std::size_t layOut(std::size_t round, std::span<std::byte> memory) = 0;
  /// Reads one part of a round. Any thread, several at once.
  virtual void read(std::size_t round, std::size_t part) = 0;
  /// Judges what was read of a round, before any of it is handed on.
  virtual void accept(std::size_t round) = 0;
  /// Whether anything is to be written at all.
  [[nodiscard]] virtual bool isWriting() const = 0;
  /// Writes a round on one lane. A thread of the lane's own.
  virtual void write(std::size_t round, std::size_t lane) = 0;
  /// Done while the round is being written and the next one read.
  virtual void meanwhile(std::size_t round) = 0;
  /// The round was written. May throw to end the transfer.
  virtual void done(std::size_t round) = 0;
};

/// What one drive reads back: files, in order. A digest that is null is passed over.
struct ReadBackLane {
  std::vector<FileDigest*> digests;
  /// These wait until the first reading of what they read a second time is done.
  bool isSecondReading = false;
};

/// The only loop between a card and its drives, with its threads and its memory: while the lanes
/// write one round, the next one is read; and what the lanes hold is read back on all of them at
/// once. It knows bytes and lanes, and neither plans nor names. One thread owns it and calls it;
/// what it starts is joined before a call returns.
///
/// Memory: (lanes + 2) × the chunk size, allocated once.
class Pipeline {
 public:
  /// How many threads read back on each drive at once while there are many files: enough that the
  /// drive always has a request to go on with.
  static constexpr std::size_t threadsPerDrive = 4;
  /// How many threads flush on each drive at once: a drive answers with one flush of its own to all
  /// that wait for one.
  static constexpr std::size_t flushesPerDrive = 12;

  /// `chunkSize`: bytes of each buffer, at least 1. Throws std::bad_alloc and std::system_error
  /// when the system gives no memory or threads.
  Pipeline(std::size_t lanes, std::size_t chunkSize);

  [[nodiscard]] std::size_t chunkSize() const { return chunkSize_; }
  /// Whether several files can be read back at once: each thread then needs a whole page.
  [[nodiscard]] bool takesGroups() const;

  /// Reads the first round of a load. Returns when that is in memory.
  void prime(Load& load);
  /// Takes a primed load through, from its first round to its last. Throws what the load throws.
  void transfer(Load& load);

  /// Reads every digest of every lane, all lanes at once: a single file of each with two threads in
  /// turn where it is long (`fileSize` bytes), many files several at a time. With a `firstReading`,
  /// calls that meanwhile, on this thread; second readings wait for it. When it throws, the digests
  /// are given up and the exception goes on.
  void readBack(std::span<const ReadBackLane> lanes, std::uint64_t fileSize,
                const std::function<void()>& firstReading = {});

  /// Calls `step(lane)` for every lane, each on a thread of its own, and `meanwhile()` here.
  /// Returns when all are done.
  void onEveryLane(const std::function<void(std::size_t)>& step,
                   const std::function<void()>& meanwhile = {});
  /// Calls `step(lane, number)` for every lane and every number below `count`, on each lane so many
  /// at a time as it flushes at once. Returns when all are done.
  void flushEach(std::size_t count, const std::function<void(std::size_t, std::size_t)>& step);

  /// Starts `step(lane)` for every lane and returns. `step` lives until the answer is joined, and
  /// nothing else that needs the lanes' threads may be started before.
  [[nodiscard]] PlatformKit::WorkerPool::Batch startOnEveryLane(
      const std::function<void(std::size_t)>& step) {
    return workers_.start(lanes_, step);
  }

 private:
  [[nodiscard]] std::span<std::byte> roundMemory(std::size_t round);
  [[nodiscard]] std::span<std::byte> readBackMemory(std::size_t lane, std::size_t threads,
                                                    std::size_t thread);

  const std::size_t lanes_;
  const std::size_t chunkSize_;
  PlatformKit::WorkerPool workers_;
  // These read originals while the workers are busy with copies.
  PlatformKit::WorkerPool readers_;
  PlatformKit::AlignedBuffer transferBuffer_;
  // One for each lane, and one for the second reading of the originals.
  std::vector<PlatformKit::AlignedBuffer> readBackBuffers_;
  std::size_t firstParts_ = 0;
};

}  // namespace OffloadKit
