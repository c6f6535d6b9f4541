#pragma once

#include "PlatformKit/FileSystem.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace OffloadKit {

/// Writes all of `bytes`, with as many writes as that takes; an interrupted write is made again.
/// Answers 0 or the first error number.
[[nodiscard]] int writeFully(PlatformKit::WritableFile& file, std::span<const std::byte> bytes);

/// Writes a chunk of a long file that is written in chunks, at `offset` (bytes), and keeps the
/// drive at work: it starts on this chunk at once, and the chunk before, `window` bytes, is waited
/// for and dropped from the cache. So memory does not fill with what is not written yet, and the
/// flush at the end is short. With a file of at most `window` bytes the drive starts at once if it is
/// of a size that is worth the call. Answers 0 or the first error number.
[[nodiscard]] int writeBehind(PlatformKit::WritableFile& file, std::span<const std::byte> chunk,
                              std::uint64_t offset, std::uint64_t window, std::uint64_t fileSize);

/// Fills `buffer` from `offset` on (bytes), with as many reads as that takes. Answers how many
/// bytes there were, fewer than asked for only at the end of the file, or the first error.
PlatformKit::Result<std::size_t> readFully(PlatformKit::ReadableFile& file,
                                           std::span<std::byte> buffer, std::uint64_t offset);

}  // namespace OffloadKit
