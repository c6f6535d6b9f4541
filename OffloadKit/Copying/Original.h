#pragma once

#include "OffloadKit/Records/SourceFile.h"
#include "PlatformKit/FileSystem.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

namespace OffloadKit {

/// A file on the card while it is read the first time. Its beginning can be fetched ahead, into the
/// cache; what comes behind the first chunk, and a file that is worth requests of its own and fits
/// a chunk, comes past the cache. Belongs to one thread, but for `read`.
class Original {
 public:
  /// `card` and `file` outlive it. `chunkSize`: bytes that are asked for at a time.
  Original(PlatformKit::Folder& card, const SourceFile& file, std::size_t chunkSize)
      : card_(card), file_(file), chunkSize_(chunkSize) {}

  /// Opens it, unless that is done, and lets the card fetch its beginning. Returns at once; what
  /// fails is told by `read`.
  void fetch();
  /// Opens what `read` needs for that offset (bytes), and lets the card fetch what comes behind the
  /// chunk there.
  void prepare(std::uint64_t offset);
  /// Reads what lies at `offset`, which was prepared, as much as `memory` takes, or little more
  /// than is left of the file by its known size. Answers how many bytes there were: fewer than
  /// `memory` only where the file ends; or the error of opening or reading. Any thread, several at
  /// once.
  [[nodiscard]] PlatformKit::Result<std::size_t> read(std::span<std::byte> memory,
                                                      std::uint64_t offset);
  /// Lets the cache drop what was read of it.
  void discard();
  void close();

 private:
  using Opened = PlatformKit::Result<std::unique_ptr<PlatformKit::ReadableFile>>;
  [[nodiscard]] Opened open(PlatformKit::ReadMode mode);
  /// What is in the cache, and what is behind the end, need not be asked of the card.
  [[nodiscard]] bool isInBeginning(std::uint64_t offset) const {
    return offset < chunkSize_ || offset >= file_.size;
  }

  PlatformKit::Folder& card_;
  const SourceFile& file_;
  const std::size_t chunkSize_;
  std::optional<Opened> beginning_;
  std::optional<Opened> rest_;
};

}  // namespace OffloadKit
