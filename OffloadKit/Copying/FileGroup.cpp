#include "OffloadKit/Copying/FileGroup.h"

#include "OffloadKit/Copying/ReadBack.h"
#include "OffloadKit/Transfer/Transfer.h"
#include "PlatformKit/Posix/OpenFiles.h"

#include <algorithm>
#include <array>
#include <set>
#include <stdexcept>

namespace OffloadKit {
namespace {

// Left to everything else that a program has open, but no more than half of a low limit.
constexpr std::size_t kOtherOpenFiles = 256;

// While a group's files get their names, what was read back of them is still open: every copy, and
// the original a second time. The next group's originals and copies are being opened by then.
std::size_t mostFiles(std::size_t destinations) {
  const std::size_t limit = PlatformKit::openFilesLimit();
  const std::size_t ours = limit - std::min(kOtherOpenFiles, limit / 2);
  return ours / (2 * (destinations + 1));
}

// Bytes: whole pages, and one byte at least by which a file that has grown is known.
std::uint64_t memoryFor(std::uint64_t fileSize) {
  return (fileSize / kDirectPage + 1) * kDirectPage;
}

}  // namespace

std::size_t groupLength(std::span<const SourceFile> files, const CopyResources& resources) {
  const std::size_t most = std::min(files.size(), mostFiles(resources.plan.destinations.size()));
  // Too small a buffer to be shared by the threads that read back.
  if (resources.plan.chunkSize < kThreadsPerDrive * kDirectPage) return 1;
  std::uint64_t room = resources.pace.room();
  std::set<std::string> temporaryCopies;
  std::size_t count = 0;
  while (count < most && files[count].size <= resources.plan.chunkSize) {
    const std::uint64_t share = resources.pace.shareOf(files[count].size);
    if (share > room) break;
    const std::string& path = files[count].relativePath;
    if (!resources.namesAreDistinct &&
        !temporaryCopies.insert(resources.temporaryNames.keyOf(path)).second) {
      break;
    }
    room -= share;
    ++count;
  }
  return std::max<std::size_t>(count, 1);
}

FileGroup::FileGroup(std::span<const SourceFile> files, CopyResources& resources)
    : resources_(resources), flushes_(resources.plan.destinations.size()) {
  std::uint64_t left = 0;
  for (const SourceFile& file : files) {
    if (file.size > left || rounds_.empty()) {
      rounds_.emplace_back();
      left = resources.plan.chunkSize;
    }
    rounds_.back().push_back(&items_.emplace_back(file, resources));
    left -= std::min(left, memoryFor(file.size));
    share_ += resources.pace.shareOf(file.size);
  }
}

void FileGroup::fetch() {
  fetchRound(0);
}

void FileGroup::begin() {
  // Else a temporary copy might be one of those that have yet to get their names.
  if (!resources_.namesAreDistinct) return;
  startChoosing();
}

OffloadedFile FileGroup::finish(std::size_t number, const CopyProgress& progress, CopyBatch* next) {
  if (!prepared_) {
    prepare(next);
    if (next != nullptr) next->begin();
  }
  Item& item = items_[number];
  if (!failure_.empty()) throw std::runtime_error(failure_);
  resources_.throwIfCancelled();
  if (item.bytesRead > 0) {
    progress.copied(item.bytesRead);
    resources_.throwIfCancelled();
  }
  if (item.unreadable) throw *item.unreadable;
  progress.verifying(item.copy.file().size * item.readers);
  return item.copy.decide(std::move(item.hash));
}

void FileGroup::prepare(CopyBatch* next) {
  prepared_ = true;
  try {
    copyAll(next);
  } catch (const OffloadError&) {
    throw;
  } catch (const std::exception& error) {
    failure_ = error.what();
  }
}

void FileGroup::copyAll(CopyBatch* next) {
  const auto started = resources_.system.clock.now();
  chooseAndReadFirst();
  if (std::any_of(items_.begin(), items_.end(), [](Item& item) { return item.copy.isWriting(); })) {
    copyRounds();
    flush(next);
    settle();
    resources_.throwIfCancelled();
    readBack({});
  } else {
    for (Item& item : items_) item.copy.settleTargets();
    readBack([&] {
      for (std::size_t round = 1; round < rounds_.size(); ++round) readRound(round);
      if (next != nullptr) next->fetch();
    });
  }
  resources_.checkPlaces();
  resources_.pace.groupDone(share_, resources_.system.clock.now() - started);
}

void FileGroup::startChoosing() {
  resources_.checkPlaces();
  choosing_.emplace(resources_.workers.start(resources_.plan.destinations.size(), choose_));
}

void FileGroup::chooseTargets(std::size_t destination) {
  KnownFolder folder;
  for (Item& item : items_) item.copy.chooseTarget(destination, folder);
}

void FileGroup::chooseAndReadFirst() {
  if (!choosing_) startChoosing();
  fetchRound(0);
  readRound(0);
  choosing_->wait();
}

void FileGroup::copyRounds() {
  for (std::size_t round = 0; round < rounds_.size(); ++round) {
    const auto write = [&](std::size_t i) { writeRound(round, i); };
    auto writing = resources_.workers.start(resources_.plan.destinations.size(), write);
    if (round + 1 < rounds_.size()) readRound(round + 1);
    writing.wait();
    resources_.throwIfCancelled();
  }
}

void FileGroup::fetchRound(std::size_t round) {
  if (round >= rounds_.size()) return;
  for (Item* item : rounds_[round]) item->copy.fetch();
}

void FileGroup::readRound(std::size_t round) {
  std::span<std::byte> room = resources_.pieceBuffer(round);
  for (Item* item : rounds_[round]) {
    item->memory = room.first(std::min(room.size(), memoryFor(item->copy.file().size)));
    room = room.subspan(item->memory.size());
  }
  const auto readOne = [&](std::size_t number) { read(*rounds_[round][number]); };
  auto reading = resources_.originalReaders.start(rounds_[round].size(), readOne);
  fetchRound(round + 1);
  reading.wait();
}

void FileGroup::read(Item& item) {
  try {
    readOriginal(item);
  } catch (const OffloadError& error) {
    item.unreadable = error;
  }
  item.copy.closeOriginal();
}

void FileGroup::readOriginal(Item& item) {
  PlatformKit::ReadableFile& source = item.copy.original();
  const std::uint64_t size = item.copy.file().size;
  const std::size_t asked = lengthToAsk(0, item.memory.size(), size);
  const auto count = readFully(source, item.memory.first(asked), 0);
  if (!count.ok()) item.copy.sourceUnreadable(count.error());
  item.bytesRead = count.value();
  if (item.bytesRead != size) item.copy.sourceChangedSize();
  // Where there was room for more, the end was seen.
  if (item.bytesRead == asked) checkThatItEnds(item);
  source.discard(0, item.bytesRead);
  const auto hasher = makeHasher(resources_.plan.algorithm);
  hasher->update(item.content());
  item.hash = hasher->finalize();
}

void FileGroup::checkThatItEnds(Item& item) {
  std::array<std::byte, 1> beyond{};
  const auto more = item.copy.original().readAt(beyond, item.bytesRead);
  if (!more.ok()) item.copy.sourceUnreadable(more.error());
  if (more.value() != 0) item.copy.sourceChangedSize();
}

void FileGroup::writeRound(std::size_t round, std::size_t destination) {
  for (Item* item : rounds_[round]) {
    if (item->unreadable) continue;
    if (item->bytesRead > 0) item->copy.write(destination, item->content(), 0);
    item->copy.setDates(destination);
  }
}

void FileGroup::flush(CopyBatch* next) {
  // The drive writes everything in one go, so that the flush of each copy, which alone tells of
  // that copy's errors, finds little to do.
  const auto flushVolume = [&](std::size_t i) {
    Flushes& flushes = flushes_[i];
    flushes.asked = std::any_of(items_.begin(), items_.end(),
                                [i](Item& item) { return item.copy.isWriting(i); });
    if (!flushes.asked) return;
    flushes.volumeError = resources_.system.fileSystem.flushVolume(resources_.plan.destinations[i]);
  };
  const std::size_t destinations = resources_.plan.destinations.size();
  auto flushing = resources_.workers.start(destinations, flushVolume);
  if (next != nullptr) next->fetch();
  flushing.wait();
  const auto flushOne = [&](std::size_t i, std::size_t /*thread*/, std::size_t number) {
    Item& item = items_[number];
    if (item.unreadable || !item.copy.isWriting(i)) return;
    ++(item.copy.flush(i) ? flushes_[i].done : flushes_[i].failed);
  };
  onEveryDrive(resources_.workers, destinations, kFlushesPerDrive, items_.size(), flushOne, [] {});
}

void FileGroup::settle() {
  // File by file, so that a drive that one file's failure gives up has not tried those behind it.
  for (Item& item : items_) {
    item.copy.settleTargets();
    if (!item.unreadable) item.copy.settleWrites();
  }
  for (std::size_t i = 0; i < resources_.plan.destinations.size(); ++i) {
    const Flushes& flushes = flushes_[i];
    if (!flushes.asked) continue;
    resources_.folders.volumeFlushed(i, flushes.volumeError,
                                     flushes.done > 0 && flushes.failed == 0);
  }
}

void FileGroup::readBack(const FirstReading& firstReading) {
  std::vector<FileCopy*> copies;
  for (Item& item : items_) {
    if (item.unreadable) continue;
    item.readers = item.copy.prepareReadBack();
    copies.push_back(&item.copy);
  }
  OffloadKit::readBack(copies, resources_, firstReading);
}

}  // namespace OffloadKit
