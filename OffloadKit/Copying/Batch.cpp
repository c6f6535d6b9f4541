#include "OffloadKit/Copying/Batch.h"

#include "OffloadKit/Transfer/Transfer.h"

#include <algorithm>
#include <atomic>

namespace OffloadKit {
namespace {

// Bytes: whole pages, and one byte at least by which a file that has grown is known.
std::uint64_t memoryFor(std::uint64_t fileSize) {
  return (fileSize / kDirectPage + 1) * kDirectPage;
}

OffloadError unreadable(const SourceFile& file, int error) {
  return OffloadError::sourceUnreadable(Reason::about(file.relativePath, Reason::ofSystem(error)));
}

OffloadError changedSize(const SourceFile& file) {
  return OffloadError::sourceUnreadable(Reason(Reason::Kind::changedSize, {file.relativePath}));
}

}  // namespace

Batch::File::File(const SourceFile& file, const CopyContext& context)
    : source(file),
      original(context.card, file, context.plan.chunkSize),
      hasher(HashKit::makeHasher(context.plan.algorithm)) {
  for (Lane& lane : context.lanes) copies.emplace_back(lane, file);
}

std::span<std::byte> Batch::Piece::memoryOf(std::size_t part) const {
  const std::size_t size = memory.size() / parts;
  return memory.subspan(part * size, size);
}

PlatformKit::Result<std::span<const std::byte>> Batch::Piece::content() const {
  std::size_t filled = 0;
  for (std::size_t part = 0; part < parts; ++part) {
    if (!counts[part].ok()) return PlatformKit::ErrorNumber{counts[part].error()};
    filled += counts[part].value();
    if (counts[part].value() < memoryOf(part).size()) break;
  }
  return std::span<const std::byte>(memory.first(filled));
}

bool Batch::Piece::holdsEnd() const {
  return file->source.size - offset < memory.size();
}

Batch::Batch(std::span<const SourceFile> files, const CopyContext& context)
    : context_(context), sources_(files) {
  for (const SourceFile& file : files) files_.emplace_back(file, context);
}

void Batch::fetch() {
  fetchFrom(0);
}

void Batch::begin() {
  // Else a temporary copy might be one of those that have yet to get their names.
  if (context_.namesAreDistinct) startChoosing();
}

void Batch::startChoosing() {
  if (choosing_) return;
  for (Lane& lane : context_.lanes) lane.checkPlace();
  choosing_.emplace(context_.pipeline.startOnEveryLane(choose_));
}

OffloadedFile Batch::finish(std::size_t number, const CopyProgress& progress, Batch* next) {
  if (!isCopied_) {
    copyAll(progress, next);
    if (next != nullptr) next->begin();
  }
  File& file = files_[number];
  if (failure_) std::rethrow_exception(failure_);
  if (isGroup()) {
    context_.throwIfCancelled();
    if (file.bytesRead > 0) progress.copied(file.bytesRead);
    context_.throwIfCancelled();
  }
  if (file.unreadable) throw *file.unreadable;
  progress.verifying(file.source.size * file.readers);
  const std::string hash = file.hasher->finalize();
  return {file.source, hash, decide(file, hash)};
}

void Batch::copyAll(const CopyProgress& progress, Batch* next) {
  isCopied_ = true;
  progress_ = &progress;
  const auto started = isGroup() ? context_.clock.now() : PlatformKit::Date();
  try {
    startChoosing();
    fetch();
    context_.throwIfCancelled();
    context_.pipeline.prime(*this);
    choosing_->wait();
    if (isWriting()) {
      context_.pipeline.transfer(*this);
      flush(next);
      readBack({});
    } else {
      settle();
      readBack([&] {
        context_.pipeline.transfer(*this);
        if (next != nullptr) next->fetch();
      });
    }
    for (Lane& lane : context_.lanes) lane.checkPlace();
  } catch (const OffloadError&) {
    throw;
  } catch (...) {
    failure_ = std::current_exception();
  }
  if (isGroup()) context_.length.done(sources_, context_.clock.now() - started);
}

void Batch::choose(std::size_t lane) {
  KnownFolder known;
  for (File& file : files_) {
    file.copies[lane].choose(context_.card,
                             context_.temporaryNames.forFile(file.source.relativePath), known);
  }
}

// A file that goes alone takes the whole memory of each round; small ones lie one behind the other.
std::size_t Batch::layOut(std::size_t round, std::span<std::byte> memory) {
  std::vector<Piece>& pieces = piecesOf(round);
  pieces.clear();
  std::size_t parts = 0;
  while (nextFile_ < files_.size()) {
    File& file = files_[nextFile_];
    const std::uint64_t wanted = isGroup() ? memoryFor(file.source.size) : memory.size();
    if (!pieces.empty() && wanted > memory.size()) break;
    const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, memory.size()));
    Piece& piece = pieces.emplace_back(Piece{&file, nextOffset_, memory.first(length)});
    const bool isBeyondHalf = file.source.size > piece.offset + length / 2;
    piece.parts = !isGroup() && isBeyondHalf && length % (2 * kDirectPage) == 0 ? 2 : 1;
    file.original.prepare(piece.offset);
    parts += piece.parts;
    memory = memory.subspan(length);
    nextOffset_ += length;
    if (!piece.holdsEnd()) break;
    ++nextFile_;
    nextOffset_ = 0;
    if (!isGroup()) break;
  }
  return parts;
}

void Batch::read(std::size_t round, std::size_t part) {
  std::vector<Piece>& pieces = piecesOf(round);
  std::size_t number = 0;
  while (part >= pieces[number].parts) part -= pieces[number++].parts;
  Piece& piece = pieces[number];
  const std::uint64_t offset = piece.offset + part * piece.memoryOf(0).size();
  piece.counts[part] = piece.file->original.read(piece.memoryOf(part), offset);
  if (!piece.isReadAtOnce()) return;
  // Small files are judged and hashed by whoever reads them, several at a time.
  judge(piece);
  piece.file->original.discard();
  piece.file->original.close();
}

void Batch::judge(Piece& piece) {
  File& file = *piece.file;
  const auto content = piece.content();
  if (file.unreadable) return;
  if (!content.ok()) {
    file.unreadable = unreadable(file.source, content.error());
    return;
  }
  const std::uint64_t expected =
      std::min<std::uint64_t>(piece.memory.size(), file.source.size - piece.offset);
  if (content.value().size() != expected) {
    file.unreadable = changedSize(file.source);
    return;
  }
  file.bytesRead += expected;
  if (piece.isReadAtOnce()) file.hasher->update(content.value());
}

void Batch::accept(std::size_t round) {
  for (Piece& piece : piecesOf(round)) {
    if (!piece.isReadAtOnce()) judge(piece);
    if (piece.file->unreadable && !isGroup()) giveUp(*piece.file);
  }
}

// Nothing more is wanted of a file that goes alone, neither of the card nor of its copies.
void Batch::giveUp(File& file) {
  nextFile_ = files_.size();
  if (file.secondReading) file.secondReading->giveUp();
  for (LaneCopy& copy : file.copies) copy.giveUpReadBack();
}

bool Batch::isWriting() const {
  return std::any_of(files_.begin(), files_.end(), [](const File& file) {
    return std::any_of(file.copies.begin(), file.copies.end(),
                       [](const LaneCopy& copy) { return copy.isWriting(); });
  });
}

void Batch::write(std::size_t round, std::size_t lane) {
  for (Piece& piece : piecesOf(round)) {
    if (piece.file->unreadable) continue;
    LaneCopy& copy = piece.file->copies[lane];
    const auto content = piece.content();
    if (!content.value().empty()) {
      copy.write(content.value(), piece.offset, context_.plan.chunkSize);
    }
    if (piece.holdsEnd()) copy.setDates();
  }
}

void Batch::meanwhile(std::size_t round) {
  for (Piece& piece : piecesOf(round)) {
    if (piece.isReadAtOnce() || piece.file->unreadable) continue;
    piece.file->hasher->update(piece.content().value());
    if (piece.holdsEnd()) piece.file->original.close();
  }
  fetchFrom(nextFile_);
}

void Batch::done(std::size_t round) {
  if (!isGroup()) {
    const Piece& piece = piecesOf(round).front();
    const bool isRead = !piece.file->unreadable && !piece.content().value().empty();
    if (isRead) progress_->copied(piece.content().value().size());
  }
  context_.throwIfCancelled();
}

// As much as one round takes.
void Batch::fetchFrom(std::size_t file) {
  std::uint64_t left = context_.plan.chunkSize;
  for (; file < files_.size(); ++file) {
    const std::uint64_t size = memoryFor(files_[file].source.size);
    files_[file].original.fetch();
    if (size >= left) return;
    left -= size;
  }
}

void Batch::flush(Batch* next) {
  if (isGroup()) return flushTogether(next);
  File& file = files_.front();
  const auto flush = [&](std::size_t lane) {
    // The names before are flushed beside this file, whose own flush has just shown that the drive
    // still takes something.
    if (!file.unreadable && file.copies[lane].flush()) context_.lanes[lane].names().flushNow();
  };
  context_.pipeline.onEveryLane(flush, [next] {
    if (next != nullptr) next->fetch();
  });
  settle();
}

void Batch::flushTogether(Batch* next) {
  struct Flushes {
    bool isAsked = false;
    int volumeError = 0;
    std::atomic<std::size_t> done = 0;
    std::atomic<std::size_t> failed = 0;
  };
  std::vector<Flushes> flushes(context_.lanes.size());
  // The drive writes everything in one go, so that the flush of each copy, which alone tells of
  // that copy's errors, finds little to do.
  const auto flushVolume = [&](std::size_t lane) {
    flushes[lane].isAsked = std::any_of(files_.begin(), files_.end(), [lane](const File& file) {
      return file.copies[lane].isWriting();
    });
    if (!flushes[lane].isAsked) return;
    flushes[lane].volumeError = context_.lanes[lane].folder().flushVolume({});
  };
  context_.pipeline.onEveryLane(flushVolume, [next] {
    if (next != nullptr) next->fetch();
  });
  context_.pipeline.flushEach(files_.size(), [&](std::size_t lane, std::size_t number) {
    File& file = files_[number];
    if (file.unreadable || !file.copies[lane].isWriting()) return;
    ++(file.copies[lane].flush() ? flushes[lane].done : flushes[lane].failed);
  });
  settle();
  for (std::size_t lane = 0; lane < flushes.size(); ++lane) {
    const Flushes& answers = flushes[lane];
    if (!answers.isAsked) continue;
    context_.lanes[lane].names().volumeFlushed(answers.volumeError,
                                               answers.done > 0 && answers.failed == 0);
  }
}

// File by file, so that a drive that one file's failure gives up has not tried those behind it.
void Batch::settle() {
  for (File& file : files_) {
    if (file.unreadable) continue;
    for (LaneCopy& copy : file.copies) copy.settle(context_.afterWrite);
  }
}

void Batch::readBack(const std::function<void()>& firstReading) {
  const HashKit::HashAlgorithm algorithm = context_.plan.algorithm;
  std::vector<ReadBackLane> lanes(context_.lanes.size() + 1);
  lanes.back().isSecondReading = true;
  for (File& file : files_) {
    if (file.unreadable) continue;
    const auto add = [&](ReadBackLane& lane, FileDigest* digest) {
      lane.digests.push_back(digest);
      if (digest != nullptr) ++file.readers;
    };
    for (std::size_t i = 0; i < file.copies.size(); ++i) {
      add(lanes[i], file.copies[i].startReadBack(algorithm));
    }
    if (!context_.plan.verifySource) continue;
    file.secondReading = std::make_unique<FileDigest>(context_.card, file.source.relativePath,
                                                      algorithm, file.source.size);
    add(lanes.back(), file.secondReading.get());
  }
  context_.pipeline.readBack(lanes, files_.front().source.size, firstReading);
}

std::vector<OffloadedFile::Outcome> Batch::decide(File& file, const std::string& hash) {
  if (file.secondReading) {
    const auto second = file.secondReading->result();
    if (!second.ok() || second.value() != hash) {
      throw OffloadError::sourceUnreadable(
          Reason(Reason::Kind::readDifferently, {file.source.relativePath}));
    }
  }
  std::vector<OffloadedFile::Outcome> outcomes;
  for (LaneCopy& copy : file.copies) outcomes.push_back(copy.decide(hash));
  return outcomes;
}

}  // namespace OffloadKit
