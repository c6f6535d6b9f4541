#include "OffloadKit/Copying/Original.h"

#include "OffloadKit/Transfer/Transfer.h"

#include <algorithm>

namespace OffloadKit {

using PlatformKit::ReadMode;

Original::Opened Original::open(ReadMode mode) {
  return card_.openForReading(file_.relativePath, mode);
}

void Original::fetch() {
  if (beginning_) return;
  const bool isWhole = file_.size <= chunkSize_;
  beginning_.emplace(
      open(isWhole && file_.size >= kOwnRequests ? ReadMode::pastCache : ReadMode::streamed));
  if (beginning_->ok() && file_.size > 0) {
    beginning_->value()->prefetch(0, std::min<std::uint64_t>(file_.size, chunkSize_));
  }
}

void Original::prepare(std::uint64_t offset) {
  if (isInBeginning(offset)) return fetch();
  if (!rest_) rest_.emplace(open(ReadMode::pastCache));
  const std::uint64_t behind = offset + chunkSize_;
  if (rest_->ok() && behind < file_.size) rest_->value()->prefetch(behind, chunkSize_);
}

PlatformKit::Result<std::size_t> Original::read(std::span<std::byte> memory, std::uint64_t offset) {
  Opened& opened = isInBeginning(offset) ? *beginning_ : *rest_;
  if (!opened.ok()) return PlatformKit::ErrorNumber{opened.error()};
  const std::size_t length = lengthToAsk(offset, memory.size(), file_.size);
  return readFully(*opened.value(), memory.first(length), offset);
}

void Original::discard() {
  if (beginning_ && beginning_->ok()) beginning_->value()->discard(0, file_.size);
}

void Original::close() {
  beginning_.reset();
  rest_.reset();
}

}  // namespace OffloadKit
