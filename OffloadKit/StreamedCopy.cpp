#include "OffloadKit/StreamedCopy.h"

#include "OffloadKit/ReadBack.h"

#include <algorithm>

namespace OffloadKit {

OffloadedFile StreamedCopy::finish(std::size_t /*number*/, const CopyProgress& progress,
                                   CopyBatch* next) {
  chooseTargets();
  std::string hash = stream(progress.copied);
  copy_.closeOriginal();
  if (next != nullptr) next->fetch();
  flushEverywhere();
  const std::size_t readers = copy_.prepareReadBack();
  readBack(copy_, resources_);
  progress.verifying(copy_.file().size * readers);
  return copy_.decide(std::move(hash));
}

void StreamedCopy::chooseTargets() {
  for (std::size_t i = 0; i < resources_.plan.destinations.size(); ++i) {
    resources_.health.checkVolume(i);
    KnownFolder folder;
    copy_.chooseTarget(i, folder);
  }
  copy_.settleTargets();
}

std::string StreamedCopy::stream(const Advance& copied) {
  const std::uint64_t size = copy_.file().size;
  PlatformKit::ReadableFile& source = copy_.original();
  const auto hasher = makeHasher(resources_.plan.algorithm);
  const std::span<std::byte> buffer = resources_.transferBuffer.bytes();
  std::uint64_t offset = 0;
  resources_.throwIfCancelled();
  for (;;) {
    const auto count = source.readAt(buffer, offset);
    if (!count.ok()) copy_.sourceUnreadable(count.error());
    if (count.value() == 0) break;
    const std::uint64_t next = offset + count.value();
    // The card fetches the next chunk while the drives take this one.
    if (next < size) source.prefetch(next, std::min<std::uint64_t>(buffer.size(), size - next));
    writeEverywhere(buffer.first(count.value()), offset, *hasher);
    source.discard(offset, count.value());
    offset = next;
    copied(count.value());
    resources_.throwIfCancelled();
  }
  if (offset != size) copy_.sourceChangedSize();
  return hasher->finalize();
}

void StreamedCopy::writeEverywhere(std::span<const std::byte> chunk, std::uint64_t offset,
                                   HashKit::StreamingHasher& hasher) {
  const auto write = [&](std::size_t i) { copy_.write(i, chunk, offset); };
  auto writing = resources_.workers.start(resources_.plan.destinations.size(), write);
  hasher.update(chunk);
  writing.wait();
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
