#pragma once

#include "OffloadKit/Copying/CopyResources.h"
#include "OffloadKit/Records/OffloadResult.h"
#include "OffloadKit/Transfer/FileDigest.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace OffloadKit {

/// One file of the card on its way to all destinations: what is to be done on each, what went wrong
/// there, and in the end the outcome. The steps are made in the order in which they stand here, by
/// whoever decides what overlaps (StreamedCopy, FileGroup). Steps that take a destination may run
/// on several threads, one for each destination; the others belong to the run's thread. What is not
/// finished when this object goes leaves no temporary copy.
class FileCopy {
 public:
  FileCopy(const SourceFile& file, CopyResources& resources);

  [[nodiscard]] const SourceFile& file() const { return file_; }

  /// Opens the original, unless that is done, and lets the card fetch its beginning, as much as
  /// fits a transfer buffer; one that is worth requests of its own and fits as a whole is opened to
  /// be read past the cache. Returns at once; what fails is told by `original`.
  void fetch();
  /// The open original, which `closeOriginal` closes. Throws OffloadError::sourceUnreadable when it
  /// cannot be opened.
  [[nodiscard]] PlatformKit::ReadableFile& original();
  /// Opens it once more, to be read past the cache. Throws as above.
  [[nodiscard]] std::unique_ptr<PlatformKit::ReadableFile> openPastCache();
  void closeOriginal() { original_.reset(); }

  /// Decides what is to be done on a destination that is not given up. `folder`: that
  /// destination's.
  void chooseTarget(std::size_t destination, KnownFolder& folder);
  /// Turns what went wrong so far into outcomes; nothing is done where the destination was given
  /// up.
  void settleTargets();

  /// Writes the file's next `chunk`, which begins at `offset` (bytes), where the copy is to be
  /// written and has not failed.
  void write(std::size_t destination, std::span<const std::byte> chunk, std::uint64_t offset);
  /// Whether a copy is being written there and has not failed.
  [[nodiscard]] bool isWriting(std::size_t destination) {
    return copies_[destination].writable() != nullptr;
  }
  /// Whether one is being written on any destination.
  [[nodiscard]] bool isWriting();
  /// Dates the copy as the original, before it is flushed, so that a power cut before the move
  /// leaves one that the next run knows.
  void setDates(std::size_t destination);
  /// Returns when the copy is on the drive (fsync), and closes it. Answers whether a copy was flushed
  /// without an error.
  bool flush(std::size_t destination);
  /// Closes the copies, tells `afterWrite`, and turns failed writes into outcomes.
  void settleWrites();

  /// Makes a digest of every copy that is to be read back and, if the plan wants that, of the
  /// original; answers how many there are.
  std::size_t prepareReadBack();
  /// The digest of the copy on a destination or, for the number behind the last destination's, of
  /// the original; null where nothing is to be read.
  [[nodiscard]] FileDigest* digest(std::size_t reader) const { return digests_[reader].get(); }
  /// Ends the reading of all digests, of which nothing is wanted any more.
  void giveUpDigests();

  /// Compares all digests with `hash`, that of the first reading, and gives what equals it its
  /// final name. Throws OffloadError::sourceUnreadable when the original read differently.
  OffloadedFile decide(std::string hash);

  /// Throws OffloadError::sourceUnreadable with the file's path and the reason.
  [[noreturn]] void sourceUnreadable(int error) const;
  [[noreturn]] void sourceChangedSize() const;

 private:
  struct Copy {
    std::optional<TargetChoice> choice;
    OffloadedFile::Outcome outcome;
    int writeError = 0;
    bool wasGivenUp = false;  ///< the destination, before this copy was read back

    template <class Target>
    [[nodiscard]] Target* as() {
      return choice ? std::get_if<Target>(&choice->target) : nullptr;
    }
    /// The file to write to; null where nothing is to be written any more.
    [[nodiscard]] PlatformKit::WritableFile* writable();
    void fail(Reason reason);
  };

  void compare(std::size_t destination, const std::string& hash);
  /// Whether the destination was given up so that nothing more is to be tried there.
  [[nodiscard]] bool isLost(std::size_t destination, bool isReadBack) const;
  void giveFinalName(std::size_t destination, PendingCopy& copy);

  const SourceFile& file_;
  CopyResources& resources_;
  const PlatformKit::Path source_;
  std::optional<PlatformKit::Result<std::unique_ptr<PlatformKit::ReadableFile>>> original_;
  std::vector<Copy> copies_;  // one per destination
  std::vector<std::unique_ptr<FileDigest>> digests_;
};

}  // namespace OffloadKit
