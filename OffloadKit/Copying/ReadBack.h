#pragma once

#include "OffloadKit/Copying/FileCopy.h"

#include <atomic>
#include <functional>
#include <span>
#include <vector>

namespace OffloadKit {

/// How many threads read on each drive at once while many files are read back: enough that the drive
/// always has a request to go on with.
inline constexpr std::size_t kThreadsPerDrive = 4;
/// How many threads flush on each drive at once: a drive answers with one flush of its own to all
/// that wait for one.
inline constexpr std::size_t kFlushesPerDrive = 12;

/// Calls `step(lane, thread, number)` on the run's workers for every lane below `lanes` and every
/// number below `count`: in each lane `threads` numbers at a time, each on a thread of the lane's
/// own. Calls `meanwhile()` here while they work. Returns when all are done. The run's thread.
template <class Step, class Meanwhile>
void onEveryDrive(PlatformKit::WorkerPool& workers, std::size_t lanes, std::size_t threads,
                  std::size_t count, const Step& step, const Meanwhile& meanwhile) {
  std::vector<std::atomic<std::size_t>> next(lanes);
  const auto job = [&](std::size_t number) {
    const std::size_t lane = number / threads;
    for (;;) {
      const std::size_t mine = next[lane]++;
      if (mine >= count) return;
      step(lane, number % threads, mine);
    }
  };
  auto working = workers.start(lanes * threads, job);
  meanwhile();
  working.wait();
}

/// What reads the originals the first time, on the run's thread, while copies of an earlier run are
/// read back.
using FirstReading = std::function<void()>;

/// Reads one file's digests, each drive's with two threads where the file is long enough. With a
/// `firstReading`, calls that while the copies are read; the original's digest, which is its second
/// reading, waits until it is done. When it throws, the digests are given up and the exception goes
/// on. The run's thread.
void readBack(FileCopy& copy, CopyResources& resources, const FirstReading& firstReading = {});

/// Reads the digests of many files, several of each drive at a time; else as above.
void readBack(std::span<FileCopy* const> copies, CopyResources& resources,
              const FirstReading& firstReading = {});

}  // namespace OffloadKit
