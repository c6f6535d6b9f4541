#pragma once

#include "OffloadKit/CopyBatch.h"
#include "OffloadKit/FileCopy.h"

namespace OffloadKit {

/// Copies one file of any length to all destinations and proves every copy: streams it in chunks,
/// hashing on the way; flushes the copies; reads every copy (and every copy of an earlier run, and
/// with the plan's `verifySource` the original again) back from its drive; compares checksums; and
/// only then gives each copy its final name.
class StreamedCopy final : public CopyBatch {
 public:
  /// Both outlive it.
  StreamedCopy(const SourceFile& file, CopyResources& resources)
      : resources_(resources), copy_(file, resources) {}

  void fetch() override { copy_.fetch(); }
  OffloadedFile finish(std::size_t number, const CopyProgress& progress, CopyBatch* next) override;

 private:
  void chooseTargets();
  std::string stream(const Advance& copied);
  void writeEverywhere(std::span<const std::byte> chunk, std::uint64_t offset,
                       HashKit::StreamingHasher& hasher);
  void flushEverywhere();

  CopyResources& resources_;
  FileCopy copy_;
};

}  // namespace OffloadKit
