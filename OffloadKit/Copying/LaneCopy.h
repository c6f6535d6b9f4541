#pragma once

#include "OffloadKit/Copying/Lane.h"
#include "OffloadKit/Records/OffloadResult.h"
#include "OffloadKit/Records/SourceFile.h"
#include "OffloadKit/Transfer/CopySteps.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace OffloadKit {

/// Whether a copy of the file lies in `folder` already, at `path`: a regular file of the same size
/// whose modification date differs by less than two seconds (file systems round dates). Content is
/// not looked at. Any error counts as no. Any thread.
[[nodiscard]] bool isThere(PlatformKit::Folder& folder, const PlatformKit::Path& path,
                           const SourceFile& file);

/// The folder that was asked for last, so that the files of a batch that lie in one folder ask the
/// drive once. Starts empty; of one lane; one thread at a time.
struct KnownFolder {
  PlatformKit::Path path;
  bool exists = false;
};

/// One file's copy on one lane: which step it has come to, what went wrong, and in the end the
/// outcome. The steps are types (see CopySteps), and what is not the next step does nothing. Steps
/// up to `flush` may be made on any one thread; the others belong to the run's.
class LaneCopy {
 public:
  /// Both outlive it.
  LaneCopy(Lane& lane, const SourceFile& file) : lane_(lane), file_(file) {}

  /// Decides what to do, unless the lane is given up: nothing where something else has the name or
  /// a link is in the way, resume where a copy is already there, else write; missing folders are
  /// made, the temporary copy is opened. `card`: where the original lies. `temporary`: the relative
  /// path of the temporary copy.
  void choose(PlatformKit::Folder& card, const std::string& temporary, KnownFolder& known);

  /// Whether it is being written and has not failed.
  [[nodiscard]] bool isWriting() const {
    return std::holds_alternative<WritableCopy>(step_) && writeError_ == 0;
  }
  /// Writes the next `chunk`, which begins at `offset` (bytes); `window`: see writeBehind.
  void write(std::span<const std::byte> chunk, std::uint64_t offset, std::uint64_t window);
  /// Dates the copy as the original, before it is flushed, so that a power cut before the move
  /// leaves one that the next run knows.
  void setDates();
  /// Returns when the copy is on the drive. Answers whether one was flushed without an error.
  bool flush();

  /// Turns what went wrong into the outcome. Behind a flush that succeeded `afterWrite`, which may
  /// be empty, is told the copy's whole path.
  void settle(const std::function<void(const PlatformKit::Path&)>& afterWrite);

  /// The digest to be read back; null where there is nothing to be read.
  [[nodiscard]] FileDigest* startReadBack(HashKit::HashAlgorithm algorithm);
  /// Ends the reading of it; nothing is wanted of it any more. Any thread.
  void giveUpReadBack();
  /// Compares what was read back with `hash`, that of the original's first reading, and gives a new
  /// copy that equals it its final name. Answers the outcome; once.
  OffloadedFile::Outcome decide(const std::string& hash);

 private:
  struct Undecided {};
  /// A copy from an earlier run, which is only read back.
  struct Existing {
    std::unique_ptr<FileDigest> digest;
  };
  using Step = std::variant<Undecided, Reason, Existing, WritableCopy, FlushedCopy>;

  void fail(Reason reason) { step_ = std::move(reason); }
  void create(const std::string& temporary, KnownFolder& known);
  /// `error`: of reaching a place below the lane's folder.
  void refuse(int error);
  [[nodiscard]] FileDigest* digest() const;
  [[nodiscard]] bool isLost(bool isReadBack) const;
  void compare(const std::string& hash);
  void giveFinalName(ProvenCopy copy);

  Lane& lane_;
  const SourceFile& file_;
  Step step_;
  int writeError_ = 0;
  int chooseError_ = 0;
  bool wasGivenUp_ = false;  // the lane, before this copy was read back
  std::optional<OffloadedFile::Outcome> verified_;
};

}  // namespace OffloadKit
