#pragma once

#include "OffloadKit/Copying/CopyBatch.h"
#include "OffloadKit/Copying/FileCopy.h"

namespace OffloadKit {

/// Copies one file of any length to all destinations and proves every copy: streams it in chunks,
/// hashing on the way; flushes the copies; reads every copy (and every copy of an earlier run, and
/// with the plan's `verifySource` the original again) back from its drive; compares checksums; and
/// only then gives each copy its final name. Where nothing is to be written, the copies are read
/// while the card is.
class StreamedCopy final : public CopyBatch {
 public:
  /// Both outlive it.
  StreamedCopy(const SourceFile& file, CopyResources& resources)
      : resources_(resources),
        copy_(file, resources),
        hasher_(HashKit::makeHasher(resources.plan.algorithm)) {}

  void fetch() override { copy_.fetch(); }
  OffloadedFile finish(std::size_t number, const CopyProgress& progress, CopyBatch* next) override;

 private:
  void chooseTargets();
  /// One chunk is read while the one before is taken over.
  void stream(const Advance& copied);
  /// The open original to read at that offset (bytes).
  [[nodiscard]] PlatformKit::ReadableFile& originalAt(std::uint64_t offset);
  /// Hashes a chunk, the last before `offset_`, while the drives write it.
  void takeOver(std::span<const std::byte> chunk);
  void finishOriginal(CopyBatch* next);
  void flushEverywhere();

  CopyResources& resources_;
  FileCopy copy_;
  const std::unique_ptr<HashKit::StreamingHasher> hasher_;
  std::unique_ptr<PlatformKit::ReadableFile> rest_;  // the original, behind its first chunk
  std::uint64_t offset_ = 0;                         // up to which it has been read
};

}  // namespace OffloadKit
