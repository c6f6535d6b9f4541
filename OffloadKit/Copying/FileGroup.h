#pragma once

#include "OffloadKit/Copying/CopyBatch.h"
#include "OffloadKit/Copying/FileCopy.h"
#include "OffloadKit/Copying/ReadBack.h"
#include "OffloadKit/Records/OffloadError.h"

#include <atomic>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace OffloadKit {

/// How many files from the beginning of `files` on make one group: at least one, and more while each
/// fits the transfer buffer, together they fit what the pace allows, leave enough descriptors, and
/// no two of them would have the same temporary copy on a drive that does not tell upper from lower
/// case.
std::size_t groupLength(std::span<const SourceFile> files, const CopyResources& resources);

/// Copies several small files at once, because what they cost one by one is mostly waiting: for one
/// flush and one answer of the drive each. The group is read and written everywhere, in rounds that
/// fit the transfer buffer, flushed together and read back together; nothing of it has its final
/// name before. Where nothing is to be written, the copies are read back while the card is read.
///
/// What can be seen from outside is as if one file had been copied after the other (see
/// StreamedCopy), with the calls of progress, of `isCancelled` and the final names in the order of
/// the files; only temporary copies are made earlier. Used once, on the run's thread.
class FileGroup final : public CopyBatch {
 public:
  /// `files`: as many as groupLength says; they outlive the group.
  FileGroup(std::span<const SourceFile> files, CopyResources& resources);

  void fetch() override;
  void begin() override;
  /// The first call does the work of all.
  OffloadedFile finish(std::size_t number, const CopyProgress& progress, CopyBatch* next) override;

 private:
  struct Item {
    Item(const SourceFile& file, CopyResources& resources) : copy(file, resources) {}
    /// What was read, until the round after the next is read.
    [[nodiscard]] std::span<const std::byte> content() const { return memory.first(bytesRead); }
    FileCopy copy;
    std::span<std::byte> memory;  // its own part of the piece that its round is read into
    std::uint64_t bytesRead = 0;
    std::string hash;
    std::size_t readers = 0;
    std::optional<OffloadError> unreadable;
  };

  /// What flushing answered on one destination.
  struct Flushes {
    bool asked = false;
    int volumeError = 0;
    std::atomic<std::size_t> done = 0;
    std::atomic<std::size_t> failed = 0;
  };

  void prepare(CopyBatch* next);
  void copyAll(CopyBatch* next);
  void startChoosing();
  void chooseTargets(std::size_t destination);
  void chooseAndReadFirst();
  /// Reads one round while the drives take the one before.
  void copyRounds();
  void fetchRound(std::size_t round);
  void readRound(std::size_t round);
  /// Reads and hashes one; any thread.
  void read(Item& item);
  void readOriginal(Item& item);
  void checkThatItEnds(Item& item);
  void writeRound(std::size_t round, std::size_t destination);
  void flush(CopyBatch* next);
  void settle();
  void readBack(const FirstReading& firstReading);

  CopyResources& resources_;
  std::deque<Item> items_;  // never moved: workers hold on to them
  // Consecutive items that fit the transfer buffer together.
  std::vector<std::vector<Item*>> rounds_;
  std::vector<Flushes> flushes_;  // one per destination
  std::uint64_t share_ = 0;       // of what GroupPace gives
  bool prepared_ = false;
  std::string failure_;  // of the group as a whole
  const std::function<void(std::size_t)> choose_ = [this](std::size_t i) { chooseTargets(i); };
  // Behind everything that it works on, so that it ends first.
  std::optional<PlatformKit::WorkerPool::Batch> choosing_;
};

}  // namespace OffloadKit
