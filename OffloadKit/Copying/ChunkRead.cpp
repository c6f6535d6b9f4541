#include "OffloadKit/Copying/ChunkRead.h"

#include "OffloadKit/Transfer/Transfer.h"

namespace OffloadKit {

using PlatformKit::ErrorNumber;

ChunkRead::ChunkRead(PlatformKit::ReadableFile& file, std::span<std::byte> buffer,
                     std::uint64_t offset, std::uint64_t fileSize)
    : file_(file),
      buffer_(buffer),
      offset_(offset),
      fileSize_(fileSize),
      parts_(buffer.size() % (2 * kDirectPage) == 0 ? 2 : 1) {}

std::span<std::byte> ChunkRead::memoryOf(std::size_t part) const {
  const std::size_t size = buffer_.size() / parts_;
  return buffer_.subspan(part * size, size);
}

void ChunkRead::read(std::size_t part) {
  const std::span<std::byte> memory = memoryOf(part);
  const std::uint64_t offset = offset_ + part * memory.size();
  const std::size_t length = lengthToAsk(offset, memory.size(), fileSize_);
  counts_[part] = readFully(file_, memory.first(length), offset);
}

PlatformKit::Result<std::span<const std::byte>> ChunkRead::result() const {
  std::size_t filled = 0;
  for (std::size_t part = 0; part < parts_; ++part) {
    if (!counts_[part].ok()) return ErrorNumber{counts_[part].error()};
    filled += counts_[part].value();
    if (counts_[part].value() < memoryOf(part).size()) break;
  }
  return std::span<const std::byte>(buffer_.first(filled));
}

}  // namespace OffloadKit
