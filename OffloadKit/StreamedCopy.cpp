#include "OffloadKit/StreamedCopy.h"

#include "OffloadKit/ReadBack.h"

#include <algorithm>

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
      read(progress.copied);
      finishOriginal(next);
    });
  }
  progress.verifying(copy_.file().size * readers);
  return copy_.decide(hasher_->finalize());
}

void StreamedCopy::chooseTargets() {
  for (std::size_t i = 0; i < resources_.plan.destinations.size(); ++i) {
    resources_.health.checkVolume(i);
    KnownFolder folder;
    copy_.chooseTarget(i, folder);
  }
  copy_.settleTargets();
}

void StreamedCopy::stream(const Advance& copied) {
  resources_.throwIfCancelled();
  auto chunk = readNext(resources_.pieceBuffer(0));
  for (std::size_t number = 1; !endsAt(chunk); ++number) {
    const std::uint64_t offset = offset_ - chunk.value().size();
    const auto write = [&](std::size_t i) { copy_.write(i, chunk.value(), offset); };
    auto writing = resources_.workers.start(resources_.plan.destinations.size(), write);
    const auto following = readNext(resources_.pieceBuffer(number));
    writing.wait();
    copied(chunk.value().size());
    resources_.throwIfCancelled();
    chunk = following;
  }
}

void StreamedCopy::read(const Advance& copied) {
  resources_.throwIfCancelled();
  for (;;) {
    const auto chunk = readNext(resources_.transferBuffer.bytes());
    if (endsAt(chunk)) return;
    copied(chunk.value().size());
    resources_.throwIfCancelled();
  }
}

PlatformKit::Result<std::span<const std::byte>> StreamedCopy::readNext(
    std::span<std::byte> buffer) {
  PlatformKit::ReadableFile& source = copy_.original();
  const std::uint64_t size = copy_.file().size;
  // The card fetches what comes behind while this is read, hashed and written.
  const std::uint64_t behind = offset_ + buffer.size();
  if (behind < size) source.prefetch(behind, std::min<std::uint64_t>(buffer.size(), size - behind));
  const auto count = source.readAt(buffer, offset_);
  if (!count.ok()) return PlatformKit::ErrorNumber{count.error()};
  const std::span<const std::byte> chunk = buffer.first(count.value());
  source.discard(offset_, chunk.size());
  hasher_->update(chunk);
  offset_ += chunk.size();
  return chunk;
}

bool StreamedCopy::endsAt(const PlatformKit::Result<std::span<const std::byte>>& chunk) const {
  if (!chunk.ok()) copy_.sourceUnreadable(chunk.error());
  return chunk.value().empty();
}

void StreamedCopy::finishOriginal(CopyBatch* next) {
  if (offset_ != copy_.file().size) copy_.sourceChangedSize();
  copy_.closeOriginal();
  if (next != nullptr) next->fetch();
}

void StreamedCopy::flushEverywhere() {
  const auto flush = [&](std::size_t i) {
    copy_.setDates(i);
    copy_.flush(i);
  };
  resources_.workers.parallelFor(resources_.plan.destinations.size(), flush);
  copy_.settleWrites();
}

}  // namespace OffloadKit
