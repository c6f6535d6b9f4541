#pragma once

#include "OffloadKit/FileCopy.h"

#include <atomic>
#include <span>
#include <vector>

namespace OffloadKit {

/// How many threads work on each drive at once while many files are flushed or read back: enough
/// that the drive always has a request to go on with.
inline constexpr std::size_t kThreadsPerDrive = 4;
/// Direct reads want whole pages of so many bytes.
inline constexpr std::size_t kDirectPage = 4096;

/// Calls `step(lane, thread, number)` on the run's workers for every lane below `lanes` and every
/// number below `count`: in each lane kThreadsPerDrive numbers at a time, each on a thread of the
/// lane's own. Returns when all are done. The run's thread.
template <class Step>
void onEveryDrive(PlatformKit::WorkerPool& workers, std::size_t lanes, std::size_t count,
                  const Step& step) {
  std::vector<std::atomic<std::size_t>> next(lanes);
  const auto job = [&](std::size_t number) {
    const std::size_t lane = number / kThreadsPerDrive;
    for (;;) {
      const std::size_t mine = next[lane]++;
      if (mine >= count) return;
      step(lane, number % kThreadsPerDrive, mine);
    }
  };
  workers.parallelFor(lanes * kThreadsPerDrive, job);
}

/// Reads one file's digests, each drive's with two threads where the file is long enough. The run's
/// thread.
void readBack(FileCopy& copy, CopyResources& resources);

/// Reads the digests of many files, several of each drive at a time. The run's thread.
void readBack(std::span<FileCopy* const> copies, CopyResources& resources);

}  // namespace OffloadKit
