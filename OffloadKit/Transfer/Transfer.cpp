#include "OffloadKit/Transfer/Transfer.h"

#include <cerrno>

namespace OffloadKit {

int writeFully(PlatformKit::WritableFile& file, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const auto count = file.write(bytes);
    if (count.error() == EINTR) continue;
    if (!count.ok()) return count.error();
    // A drive that takes nothing and reports nothing would be asked forever.
    if (count.value() == 0) return EIO;
    bytes = bytes.subspan(count.value());
  }
  return 0;
}

int writeBehind(PlatformKit::WritableFile& file, std::span<const std::byte> chunk,
                std::uint64_t offset, std::uint64_t window, std::uint64_t fileSize) {
  if (const int error = writeFully(file, chunk); error != 0) return error;
  if (fileSize <= window && fileSize < kOwnRequests) return 0;
  if (const int error = file.startWriteback(offset, chunk.size()); error != 0) return error;
  return offset < window ? 0 : file.finishWriteback(offset - window, window);
}

std::size_t lengthToAsk(std::uint64_t offset, std::size_t most, std::uint64_t fileSize) {
  if (offset >= fileSize) return most;
  const std::uint64_t left = (fileSize - offset) / kDirectPage;
  return left >= most / kDirectPage ? most : static_cast<std::size_t>((left + 1) * kDirectPage);
}

PlatformKit::Result<std::size_t> readFully(PlatformKit::ReadableFile& file,
                                           std::span<std::byte> buffer, std::uint64_t offset) {
  std::size_t filled = 0;
  while (filled < buffer.size()) {
    const auto count = file.readAt(buffer.subspan(filled), offset + filled);
    if (!count.ok()) return count;
    if (count.value() == 0) break;
    filled += count.value();
  }
  return filled;
}

}  // namespace OffloadKit
