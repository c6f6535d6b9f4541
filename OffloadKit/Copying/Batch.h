#pragma once

#include "OffloadKit/Copying/BatchLength.h"
#include "OffloadKit/Copying/LaneCopy.h"
#include "OffloadKit/Copying/Original.h"
#include "OffloadKit/Copying/Pipeline.h"
#include "OffloadKit/Records/OffloadError.h"
#include "OffloadKit/Records/OffloadPlan.h"
#include "OffloadKit/Records/OffloadResult.h"
#include "PlatformKit/Dates.h"

#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace OffloadKit {

/// What the batches of one run share. Everything in it outlives them.
struct CopyContext {
  const OffloadPlan& plan;
  const PlatformKit::Clock& clock;
  PlatformKit::Folder& card;
  Lanes& lanes;
  const TemporaryNames& temporaryNames;
  /// Whether temporary copies of any of the run's files can lie on a drive at the same time.
  bool namesAreDistinct;
  BatchLength& length;
  Pipeline& pipeline;
  const std::function<bool()>& isCancelled;
  /// May be empty; see OffloadEngine::afterWrite.
  const std::function<void(const PlatformKit::Path&)>& afterWrite;

  /// Throws OffloadError::cancelled after Stop. The run's thread.
  void throwIfCancelled() const {
    if (isCancelled()) throw OffloadError::cancelled();
  }
};

/// How the files of a card get to all destinations and are proven. Both take an increment in bytes:
/// `copied` those that were read and written, `verifying` a file's size times the files that were
/// read back.
struct CopyProgress {
  std::function<void(std::uint64_t)> copied;
  std::function<void(std::uint64_t)> verifying;
};

/// Files that lie one behind the other on the card and are copied together: one of any length, or
/// several small ones. They are read and written on every lane, flushed, read back from the drives
/// past the cache together with the original a second time, compared, and only then named. Where
/// nothing is to be written, the copies are read back while the card is read.
///
/// What can be seen from outside is as if one file had been copied after the other: the calls of
/// progress and of `isCancelled` and the final names come in the order of the files; only temporary
/// copies are made earlier. Belongs to the run's thread; what is not finished when it goes leaves
/// no temporary copy.
class Batch final : private Load {
 public:
  /// `files`: as many as BatchLength says; they and `context` outlive it.
  Batch(std::span<const SourceFile> files, const CopyContext& context);

  [[nodiscard]] std::span<const SourceFile> files() const { return sources_; }

  /// Lets the card fetch the beginning of what is read first. Returns at once.
  void fetch();
  /// Begins to make the temporary copies, where those cannot be in the way of the batch before.
  /// Returns at once; nothing else may be asked of the pipeline before `finish`.
  void begin();

  /// Finishes file `number` of the batch; to be called for each, in order. `next`: the batch whose
  /// files come next, null at the end; it fetches and begins while the drives are busy with this
  /// one. What goes wrong on one destination becomes that destination's outcome. Throws
  /// OffloadError::sourceUnreadable when the original cannot be read, changed its size or read
  /// differently the second time, and OffloadError::cancelled.
  OffloadedFile finish(std::size_t number, const CopyProgress& progress, Batch* next);

 private:
  struct File {
    File(const SourceFile& source, const CopyContext& context);
    const SourceFile& source;
    Original original;
    std::deque<LaneCopy> copies;  // one for each lane
    std::unique_ptr<HashKit::StreamingHasher> hasher;
    std::uint64_t bytesRead = 0;
    std::optional<OffloadError> unreadable;
    std::unique_ptr<FileDigest> secondReading;
    std::size_t readers = 0;
  };
  /// A stretch of one file on its way through memory, read in two parts where that suits direct
  /// reads, so that the drive has the second request before it has answered the first.
  struct Piece {
    File* file;
    std::uint64_t offset;
    std::span<std::byte> memory;
    std::size_t parts = 1;
    PlatformKit::Result<std::size_t> counts[2] = {std::size_t{0}, std::size_t{0}};

    [[nodiscard]] std::span<std::byte> memoryOf(std::size_t part) const;
    [[nodiscard]] PlatformKit::Result<std::span<const std::byte>> content() const;
    /// Whether it is a whole file, which one thread reads, judges and hashes.
    [[nodiscard]] bool isReadAtOnce() const { return parts == 1 && offset == 0 && holdsEnd(); }
    /// Whether the file ends in it; by its size alone, and with room to see that.
    [[nodiscard]] bool holdsEnd() const;
  };

  std::size_t layOut(std::size_t round, std::span<std::byte> memory) override;
  void read(std::size_t round, std::size_t part) override;
  void accept(std::size_t round) override;
  [[nodiscard]] bool isWriting() const override;
  void write(std::size_t round, std::size_t lane) override;
  void meanwhile(std::size_t round) override;
  void done(std::size_t round) override;

  void copyAll(const CopyProgress& progress, Batch* next);
  void startChoosing();
  void choose(std::size_t lane);
  void judge(Piece& piece);
  void giveUp(File& file);
  void fetchFrom(std::size_t file);
  void flush(Batch* next);
  void flushTogether(Batch* next);
  void settle();
  void readBack(const std::function<void()>& firstReading);
  [[nodiscard]] std::vector<OffloadedFile::Outcome> decide(File& file, const std::string& hash);
  [[nodiscard]] bool isGroup() const { return files_.size() > 1; }
  [[nodiscard]] std::vector<Piece>& piecesOf(std::size_t round) { return pieces_[round % 2]; }

  const CopyContext& context_;
  const std::span<const SourceFile> sources_;
  std::deque<File> files_;  // never moved: workers hold on to them
  std::size_t nextFile_ = 0;
  std::uint64_t nextOffset_ = 0;
  std::vector<Piece> pieces_[2];  // of a round and of the next one
  const CopyProgress* progress_ = nullptr;
  bool isCopied_ = false;
  std::exception_ptr failure_;  // of the batch as a whole
  const std::function<void(std::size_t)> choose_ = [this](std::size_t lane) { choose(lane); };
  // Behind everything that it works on, so that it ends first.
  std::optional<PlatformKit::WorkerPool::Batch> choosing_;
};

}  // namespace OffloadKit
