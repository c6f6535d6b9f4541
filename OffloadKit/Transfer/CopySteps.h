#pragma once

#include "OffloadKit/Transfer/FileDigest.h"
#include "OffloadKit/Transfer/PendingCopy.h"

#include <memory>
#include <optional>
#include <string>

/// The steps of a copy from an empty file to its final name. Each step is a type that only the step
/// before can make, so a copy that was not flushed cannot be read back, and one that was not found
/// identical cannot be named. Whatever step it goes away in, its temporary file goes with it,
/// except behind the last. Move-only; one thread at a time.
namespace OffloadKit {

class FlushedCopy;
class ProvenCopy;

/// Written to, under its temporary name.
class WritableCopy {
 public:
  /// As PendingCopy::create.
  static PlatformKit::Result<WritableCopy> create(PlatformKit::Folder& folder,
                                                  PlatformKit::Path temporary,
                                                  PlatformKit::Path final);

  [[nodiscard]] PlatformKit::WritableFile& file() { return *pending_.file(); }

  /// Returns when the copy is on the drive (fsync), and closes it; or the error that this met.
  [[nodiscard]] PlatformKit::Result<FlushedCopy> flush() &&;

 private:
  explicit WritableCopy(PendingCopy pending) : pending_(std::move(pending)) {}
  PendingCopy pending_;
};

/// On its drive, under its temporary name.
class FlushedCopy {
 public:
  [[nodiscard]] const PlatformKit::Path& temporary() const { return pending_.temporary(); }

  /// The digest of what its drive holds, to be worked on by any threads. The file stays open from
  /// then on, so that no other gets its identity. `size`: bytes it should have.
  FileDigest& readBack(HashKit::HashAlgorithm algorithm, std::uint64_t size);
  /// Null before `readBack`.
  [[nodiscard]] FileDigest* digest() const { return digest_.get(); }

  /// The proven copy if what was read back has this checksum, else nothing.
  [[nodiscard]] std::optional<ProvenCopy> prove(const std::string& hash) &&;

 private:
  friend class WritableCopy;
  FlushedCopy(PlatformKit::Folder& folder, PendingCopy pending)
      : folder_(&folder), pending_(std::move(pending)) {}

  PlatformKit::Folder* folder_;
  PendingCopy pending_;
  std::unique_ptr<FileDigest> digest_;
};

/// Found identical, still under its temporary name.
class ProvenCopy {
 public:
  /// Gives the copy its final name; whatever has that name by now stays. Answers 0 or the error
  /// number (EEXIST; ESTALE when the temporary name is no longer this copy's).
  [[nodiscard]] int giveFinalName() { return pending_.commit(); }

  /// Flushes the copy under whatever name it has, for file systems that write a moved file's size
  /// only then (VolumeFacts::moveKeepsContent). Answers 0 or the error number.
  [[nodiscard]] int flushAgain() { return digest_->flush(); }

  [[nodiscard]] const PlatformKit::Path& final() const { return pending_.final(); }
  [[nodiscard]] PlatformKit::ItemIdentity identity() const { return pending_.identity(); }
  /// The modification date that it had when it was named.
  [[nodiscard]] std::optional<PlatformKit::Date> modified() const { return pending_.modified(); }

 private:
  friend class FlushedCopy;
  ProvenCopy(PendingCopy pending, std::unique_ptr<FileDigest> digest)
      : pending_(std::move(pending)), digest_(std::move(digest)) {}

  PendingCopy pending_;
  std::unique_ptr<FileDigest> digest_;
};

}  // namespace OffloadKit
