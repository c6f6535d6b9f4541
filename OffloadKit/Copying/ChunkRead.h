#pragma once

#include "PlatformKit/FileSystem.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace OffloadKit {

/// One chunk of a long file on its way into memory, in two parts where that suits direct reads, so
/// that the drive has the second request before it has answered the first.
class ChunkRead {
 public:
  /// Of the file, which should have `fileSize` bytes, what lies at `offset`, as much as `buffer`
  /// takes. Both outlive it.
  ChunkRead(PlatformKit::ReadableFile& file, std::span<std::byte> buffer, std::uint64_t offset,
            std::uint64_t fileSize);

  [[nodiscard]] std::size_t parts() const { return parts_; }
  /// Reads one part. Each is read once; any thread.
  void read(std::size_t part);
  /// What was read when all parts have been: less than the buffer takes only where the file ends,
  /// nothing behind its end; or the error that reading met.
  [[nodiscard]] PlatformKit::Result<std::span<const std::byte>> result() const;

 private:
  [[nodiscard]] std::span<std::byte> memoryOf(std::size_t part) const;

  PlatformKit::ReadableFile& file_;
  const std::span<std::byte> buffer_;
  const std::uint64_t offset_;
  const std::uint64_t fileSize_;
  std::size_t parts_;
  std::array<PlatformKit::Result<std::size_t>, 2> counts_{std::size_t{0}, std::size_t{0}};
};

}  // namespace OffloadKit
