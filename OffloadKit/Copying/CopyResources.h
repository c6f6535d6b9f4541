#pragma once

#include "OffloadKit/Copying/CopyTargets.h"
#include "OffloadKit/Copying/DestinationHealth.h"
#include "OffloadKit/Copying/FolderFlush.h"
#include "OffloadKit/Copying/GroupPace.h"
#include "OffloadKit/Records/OffloadPlan.h"
#include "PlatformKit/AlignedBuffer.h"
#include "PlatformKit/System.h"
#include "PlatformKit/WorkerPool.h"

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

namespace OffloadKit {

/// What the copies of one run share. Everything in it outlives the copies.
struct CopyResources {
  const OffloadPlan& plan;
  PlatformKit::System system;
  const TemporaryNames& temporaryNames;
  /// Whether temporary copies of any of the run's files can lie on a drive at the same time.
  bool namesAreDistinct;
  DestinationHealth& health;
  FolderFlush& folders;
  PlatformKit::WorkerPool& workers;
  /// These read originals while the workers are busy with copies.
  PlatformKit::WorkerPool& originalReaders;
  GroupPace& pace;
  PlatformKit::AlignedBuffer& transferBuffer;
  /// One per file that a read-back can hash at a time: every destination, and the card.
  std::vector<PlatformKit::AlignedBuffer>& readBackBuffers;
  const std::function<bool()>& isCancelled;
  /// May be empty; see OffloadEngine::afterWrite.
  const std::function<void(const PlatformKit::Path&)>& afterWrite;

  /// The memory for the `number`th piece of the card that is read: two take turns, so that one is
  /// filled while the drives take the other. The second is the one for the original's second
  /// reading, which comes later.
  [[nodiscard]] std::span<std::byte> pieceBuffer(std::size_t number) const {
    return number % 2 == 0 ? transferBuffer.bytes() : readBackBuffers.back().bytes();
  }
  /// How many files a read-back reads at once for each file of the card: every copy, and the
  /// original too when the plan wants that.
  [[nodiscard]] std::size_t readers() const {
    return plan.destinations.size() + (plan.verifySource ? 1 : 0);
  }
  /// The number of the reader that reads the original, behind those of the copies.
  [[nodiscard]] std::size_t originalReader() const { return plan.destinations.size(); }
  /// Gives up the destinations that are not where they were. The run's thread.
  void checkPlaces() const;
  /// Throws OffloadError::cancelled after Stop. The run's thread.
  void throwIfCancelled() const;
};

/// Takes an increment in bytes handled.
using Advance = std::function<void(std::uint64_t)>;

/// How the files of a card get to all destinations and are proven: `copied` gets the bytes that
/// were read and written, `verifying` a file's size times the files that were read back.
struct CopyProgress {
  Advance copied;
  Advance verifying;
};

}  // namespace OffloadKit
