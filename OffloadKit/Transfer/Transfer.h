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
/// flush at the end is short. With a file of at most `window` bytes the drive starts at once if it
/// is worth requests of its own. Answers 0 or the first error number.
[[nodiscard]] int writeBehind(PlatformKit::WritableFile& file, std::span<const std::byte> chunk,
                              std::uint64_t offset, std::uint64_t window, std::uint64_t fileSize);

/// From so many bytes on a file is worth requests of its own. What is smaller is better sent off
/// and fetched together with others, by way of the cache.
inline constexpr std::uint64_t kOwnRequests = std::uint64_t{256} * 1024;

/// Direct reads want whole pages of so many bytes.
inline constexpr std::size_t kDirectPage = 4096;

/// How many bytes to ask for at `offset` of a file that should have `fileSize` bytes, when there is
/// room for `most`: little more than is left, because the kernel fills with zeros what a direct
/// read asks for behind the end; but at least one byte more, so that an end that comes later is
/// noticed, and whole pages.
[[nodiscard]] std::size_t lengthToAsk(std::uint64_t offset, std::size_t most,
                                      std::uint64_t fileSize);

/// Fills `buffer` from `offset` on (bytes), with as many reads as that takes. Answers how many
/// bytes there were, fewer than asked for only at the end of the file, or the first error.
PlatformKit::Result<std::size_t> readFully(PlatformKit::ReadableFile& file,
                                           std::span<std::byte> buffer, std::uint64_t offset);

}  // namespace OffloadKit
