#include "OffloadKit/Copying/StreamedCopy.h"

#include "OffloadKit/Copying/ChunkRead.h"
#include "OffloadKit/Copying/ReadBack.h"

namespace OffloadKit {

OffloadedFile StreamedCopy::finish(std::size_t /*number*/, const CopyProgress& progress,
                                   CopyBatch* next) {
  chooseTargets();
  std::size_t readers = 0;
  if (copy_.isWriting()) {
    stream(progress.copied);
    finishOriginal(next);
    flushEverywhere();
    readers = copy_.prepareReadBack();
    readBack(copy_, resources_);
  } else {
    readers = copy_.prepareReadBack();
    readBack(copy_, resources_, [&] {
      stream(progress.copied);
      finishOriginal(next);
    });
  }
  progress.verifying(copy_.file().size * readers);
  resources_.checkPlaces();
  return copy_.decide(hasher_->finalize());
}

void StreamedCopy::chooseTargets() {
  for (std::size_t i = 0; i < resources_.plan.destinations.size(); ++i) {
    resources_.health.checkPlace(i);
    KnownFolder folder;
    copy_.chooseTarget(i, folder);
  }
  copy_.settleTargets();
}

void StreamedCopy::stream(const Advance& copied) {
  resources_.throwIfCancelled();
  std::span<const std::byte> chunk;
  for (std::size_t number = 0;; ++number) {
    ChunkRead following(originalAt(offset_), resources_.pieceBuffer(number), offset_,
                        copy_.file().size);
    const auto read = [&](std::size_t part) { following.read(part); };
    auto reading = resources_.originalReaders.start(following.parts(), read);
    if (!chunk.empty()) takeOver(chunk);
    reading.wait();
    if (!chunk.empty()) {
      copied(chunk.size());
      resources_.throwIfCancelled();
    }
    const auto found = following.result();
    if (!found.ok()) copy_.sourceUnreadable(found.error());
    chunk = found.value();
    if (chunk.empty()) return;
    offset_ += chunk.size();
  }
}

PlatformKit::ReadableFile& StreamedCopy::originalAt(std::uint64_t offset) {
  // What `fetch` asked for is in the cache; what is behind the end need not be asked of the card.
  if (offset == 0 || offset >= copy_.file().size) return copy_.original();
  if (!rest_) rest_ = copy_.openPastCache();
  const std::uint64_t behind = offset + resources_.plan.chunkSize;
  if (behind < copy_.file().size) rest_->prefetch(behind, resources_.plan.chunkSize);
  return *rest_;
}

void StreamedCopy::takeOver(std::span<const std::byte> chunk) {
  const std::uint64_t offset = offset_ - chunk.size();
  const auto write = [&](std::size_t i) { copy_.write(i, chunk, offset); };
  if (!copy_.isWriting()) {
    hasher_->update(chunk);
    return;
  }
  auto writing = resources_.workers.start(resources_.plan.destinations.size(), write);
  hasher_->update(chunk);
  writing.wait();
}

void StreamedCopy::finishOriginal(CopyBatch* next) {
  if (offset_ != copy_.file().size) copy_.sourceChangedSize();
  copy_.closeOriginal();
  rest_.reset();
  if (next != nullptr) next->fetch();
}

void StreamedCopy::flushEverywhere() {
  const auto flush = [&](std::size_t i) {
    copy_.setDates(i);
    if (copy_.flush(i)) resources_.folders.flushNow(i);
  };
  resources_.workers.parallelFor(resources_.plan.destinations.size(), flush);
  copy_.settleWrites();
}

}  // namespace OffloadKit
