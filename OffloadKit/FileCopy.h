#pragma once

#include "OffloadKit/CopyTargets.h"
#include "OffloadKit/DestinationHealth.h"
#include "OffloadKit/FileDigest.h"
#include "OffloadKit/FolderFlush.h"
#include "OffloadKit/OffloadPlan.h"
#include "OffloadKit/OffloadResult.h"
#include "PlatformKit/AlignedBuffer.h"
#include "PlatformKit/System.h"
#include "PlatformKit/WorkerPool.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace OffloadKit {

/// What the copies of one run share. Everything in it outlives the copies.
struct CopyResources {
  const OffloadPlan& plan;
  PlatformKit::System system;
  const TemporaryNames& temporaryNames;
  DestinationHealth& health;
  FolderFlush& folders;
  PlatformKit::WorkerPool& workers;
  PlatformKit::AlignedBuffer& transferBuffer;
  /// One per file that a read-back can hash at a time: every destination, and the card.
  std::vector<PlatformKit::AlignedBuffer>& readBackBuffers;
  const std::function<bool()>& isCancelled;
  /// May be empty; see OffloadEngine::afterWrite.
  const std::function<void(const PlatformKit::Path&)>& afterWrite;
};

/// Takes an increment in bytes handled.
using Advance = std::function<void(std::uint64_t)>;

/// Copies one file of the source to all destinations at once and proves every copy: streams it,
/// hashing on the way; flushes the copies; reads every copy (and every copy of an earlier run, and
/// with the plan's `verifySource` the source again) back from its drive; compares checksums; and
/// only then gives each copy its final name and dates. Used once, on the run's thread.
class FileCopy {
 public:
  FileCopy(const SourceFile& file, CopyResources& resources);

  /// `copied` gets the bytes of every chunk, `verifying` the file's size times the files read back.
  /// What goes wrong on one destination becomes that destination's outcome. Throws
  /// OffloadError::sourceUnreadable when the source cannot be read, changed its size or read
  /// differently the second time, and OffloadError::cancelled; no temporary copy is left then.
  OffloadedFile run(const Advance& copied, const Advance& verifying);

 private:
  std::string streamSource(const Advance& copied);
  void writeChunk(std::span<const std::byte> chunk, std::uint64_t offset,
                  HashKit::StreamingHasher& hasher);
  void finishWrites();
  void flushCopies();
  void readBack(const std::string& hash, const Advance& verifying);
  void hashAll(const std::vector<FileDigest*>& digests);
  void decide(std::size_t destination, const PlatformKit::Result<std::string>& copyHash,
              const std::string& hash);
  void giveFinalName(std::size_t destination);
  void throwIfCancelled() const;
  [[noreturn]] void sourceUnreadable(const std::string& why) const;

  const SourceFile& file_;
  CopyResources& resources_;
  const PlatformKit::Path source_;
  std::vector<OffloadedFile::Outcome> outcomes_;
  std::vector<CopyTarget> targets_;
  std::vector<int> writeErrors_;  // one slot per destination, each written by one worker at a time
};

}  // namespace OffloadKit
