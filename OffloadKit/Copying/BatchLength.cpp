#include "OffloadKit/Copying/BatchLength.h"

#include "PlatformKit/Posix/OpenFiles.h"

#include <algorithm>
#include <set>
#include <string>

namespace OffloadKit {
namespace {

constexpr std::uint64_t kMostBuffers = 8;
constexpr std::uint64_t kLeastPart = 8;
// What a file costs besides its bytes, in such parts of a buffer.
constexpr std::uint64_t kFilesPerBuffer = 128;

constexpr std::chrono::duration<double> kShort(0.25);
constexpr std::chrono::duration<double> kLong(1);

// Left to everything else that a program has open, but no more than half of a low limit.
constexpr std::size_t kOtherOpenFiles = 256;

// While the files of a batch get their names, what was read back of them is still open: every copy,
// and the original a second time. The next batch's originals and copies are being opened by then.
std::size_t filesForDescriptors(std::size_t lanes) {
  const std::size_t limit = PlatformKit::openFilesLimit();
  const std::size_t ours = limit - std::min(kOtherOpenFiles, limit / 2);
  return std::max<std::size_t>(ours / (2 * (lanes + 1)), 1);
}

}  // namespace

BatchLength::BatchLength(std::size_t chunkSize, std::size_t lanes, bool isGrouping,
                         const TemporaryNames& names, bool namesAreDistinct)
    : chunkSize_(chunkSize),
      mostFiles_(isGrouping ? filesForDescriptors(lanes) : 1),
      names_(names),
      namesAreDistinct_(namesAreDistinct),
      room_(chunkSize) {}

std::uint64_t BatchLength::shareOf(const SourceFile& file) const {
  return std::max(file.size, chunkSize_ / kFilesPerBuffer);
}

std::size_t BatchLength::of(std::span<const SourceFile> files) const {
  std::uint64_t left = room_;
  std::set<std::string> temporaryCopies;
  std::size_t count = 0;
  while (count < std::min(files.size(), mostFiles_) && files[count].size < chunkSize_) {
    const SourceFile& file = files[count];
    if (shareOf(file) > left) break;
    const bool isDistinct =
        namesAreDistinct_ || temporaryCopies.insert(names_.keyOf(file.relativePath)).second;
    if (!isDistinct) break;
    left -= shareOf(file);
    ++count;
  }
  return std::max<std::size_t>(count, 1);
}

void BatchLength::done(std::span<const SourceFile> files, std::chrono::duration<double> time) {
  std::uint64_t share = 0;
  for (const SourceFile& file : files) share += shareOf(file);
  const bool wasFull = share > room_ / 2;
  if (time > kLong) {
    room_ = std::max(room_ / 2, chunkSize_ / kLeastPart);
  } else if (time < kShort && wasFull) {
    room_ = std::min(room_ * 2, chunkSize_ * kMostBuffers);
  }
}

}  // namespace OffloadKit
