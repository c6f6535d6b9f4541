#include "OffloadKit/Copying/GroupPace.h"

#include <algorithm>

namespace OffloadKit {
namespace {

constexpr std::uint64_t kMostBuffers = 8;
constexpr std::uint64_t kLeastPart = 8;
// What a file costs besides its bytes, in such parts of the transfer buffer.
constexpr std::uint64_t kFilesPerBuffer = 128;

constexpr std::chrono::duration<double> kShort(0.25);
constexpr std::chrono::duration<double> kLong(1);

}  // namespace

std::uint64_t GroupPace::shareOf(std::uint64_t fileSize) const {
  return std::max(fileSize, chunkSize_ / kFilesPerBuffer);
}

void GroupPace::groupDone(std::uint64_t share, std::chrono::duration<double> time) {
  const bool wasFull = share > room_ / 2;
  if (time > kLong) {
    room_ = std::max(room_ / 2, chunkSize_ / kLeastPart);
  } else if (time < kShort && wasFull) {
    room_ = std::min(room_ * 2, chunkSize_ * kMostBuffers);
  }
}

}  // namespace OffloadKit
