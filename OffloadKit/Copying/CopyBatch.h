#pragma once

#include "OffloadKit/Copying/CopyResources.h"
#include "OffloadKit/Records/OffloadResult.h"

#include <memory>
#include <span>

namespace OffloadKit {

/// One or more files, one behind the other on the card, that are copied together. Belongs to the
/// run's thread. What is not finished when it goes leaves no temporary copy.
class CopyBatch {
 public:
  virtual ~CopyBatch() = default;

  /// Lets the card fetch the beginning of what this batch reads first. Returns at once.
  virtual void fetch() = 0;

  /// Begins what may be done while the files of the batch before get their final names. Returns at
  /// once.
  virtual void begin() {}

  /// Finishes file `number` of the batch; to be called for each, in order. `next`: the batch whose
  /// files come next, null at the end; it fetches while the drives are busy with this one. What
  /// goes wrong on one destination becomes that destination's outcome. Throws
  /// OffloadError::sourceUnreadable when the original cannot be read, changed its size or read
  /// differently the second time, and OffloadError::cancelled.
  virtual OffloadedFile finish(std::size_t number, const CopyProgress& progress,
                               CopyBatch* next) = 0;
};

/// The files that begin a run's next batch, and how many they are; no batch for no files. `files`
/// and `resources` outlive it.
struct NextBatch {
  std::span<const SourceFile> files;
  std::unique_ptr<CopyBatch> batch;
};
NextBatch nextBatch(std::span<const SourceFile> files, CopyResources& resources);

}  // namespace OffloadKit
