#pragma once

#include "OffloadKit/Records/SourceFile.h"
#include "OffloadKit/Transfer/TemporaryNames.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>

namespace OffloadKit {

/// How many of a card's files are copied together. What small files cost one by one is mostly
/// waiting, for one flush and one answer of the drive each, so the more are taken at a time, the
/// less is waited for; but until a batch is done nobody sees progress, and Stop waits for it. So a
/// batch of small files should be done in less than a second, whatever the drives. One thread.
class BatchLength {
 public:
  /// `chunkSize`: bytes of a buffer, which is what the first batch takes. `lanes`: drives that are
  /// written at once; so many copies of each file are open at a time. `isGrouping`: whether files
  /// are copied together at all. `names` outlives it; `namesAreDistinct`: whether all of the run's
  /// files can be on their way at the same time.
  BatchLength(std::size_t chunkSize, std::size_t lanes, bool isGrouping,
              const TemporaryNames& names, bool namesAreDistinct);

  /// How many files from the beginning of `files`, which has some, make the next batch: a file as
  /// long as a buffer goes alone; small ones together, while they fit what the pace allows, leave
  /// enough descriptors, and no two of them would have the same temporary copy on a drive that does
  /// not tell upper from lower case.
  [[nodiscard]] std::size_t of(std::span<const SourceFile> files) const;

  /// A batch of several files was done in that time.
  void done(std::span<const SourceFile> files, std::chrono::duration<double> time);

 private:
  /// What a file takes of the room: some, even if it is empty.
  [[nodiscard]] std::uint64_t shareOf(const SourceFile& file) const;

  const std::uint64_t chunkSize_;
  const std::size_t mostFiles_;
  const TemporaryNames& names_;
  const bool namesAreDistinct_;
  std::uint64_t room_;  // bytes, an eighth of a buffer to eight of them
};

}  // namespace OffloadKit
