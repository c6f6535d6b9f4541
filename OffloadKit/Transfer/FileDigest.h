#pragma once

#include "HashKit/HashAlgorithm.h"
#include "OffloadKit/Transfer/Transfer.h"
#include "PlatformKit/FileSystem.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>

namespace OffloadKit {

/// The checksum of one whole file as its drive holds it (ReadMode::pastCache), computed by any
/// number of threads that call `work`. Each takes the next piece of the file, reads it and hashes
/// it when the pieces before are hashed; so with two threads the drive reads one piece while the
/// processor hashes the other.
///
/// The file stays open as long as this object lives. So no other file can get its identity before a
/// copy that was read back has its final name.
class FileDigest {
 public:
  static constexpr std::uint64_t unknownSize = ~std::uint64_t{0};

  /// `expectedSize` (bytes): what the file should have. Reads ask for little more than is left of
  /// it, because the kernel fills with zeros what a direct read asks for behind the end. A file of
  /// another size still gets a checksum other than that of the expected content.
  FileDigest(PlatformKit::Folder& within, PlatformKit::Path path, HashKit::HashAlgorithm algorithm,
             std::uint64_t expectedSize = unknownSize);

  /// Works until the file is hashed or has failed. `piece`: this thread's own buffer, not empty, of
  /// the same size for every thread of one file.
  void work(std::span<std::byte> piece);

  /// Lets every thread return from `work` soon; the result is then an error. Any thread.
  void giveUp();

  /// The checksum in lowercase hexadecimal, or the error that opening or reading met. Only when
  /// every thread has returned from `work`.
  [[nodiscard]] PlatformKit::Result<std::string> result() const;

  /// Flushes the file itself, whatever name it has by now. Only behind a result that is a checksum.
  /// Answers 0 or the error number.
  [[nodiscard]] int flush() { return file_->flush(); }

 private:
  [[nodiscard]] std::optional<std::uint64_t> takePiece();
  void open();
  void absorb(const PlatformKit::Result<std::size_t>& read, std::span<const std::byte> piece);

  PlatformKit::Folder& within_;
  const PlatformKit::Path path_;
  const std::uint64_t expectedSize_;
  std::mutex mutex_;
  std::condition_variable turnChanged_;
  // All of these belong to the mutex; the hasher and the open file to whoever has the turn, or to
  // nobody but readers.
  std::unique_ptr<PlatformKit::ReadableFile> file_;
  std::unique_ptr<HashKit::StreamingHasher> hasher_;
  std::uint64_t nextPiece_ = 0;
  std::uint64_t turn_ = 0;
  bool opened_ = false;
  bool ended_ = false;
  bool givenUp_ = false;
  int error_ = 0;
};

/// The checksum of the whole file by `algorithm`, read in chunks of `chunkSize` bytes (at least 1)
/// past the cache, in lowercase hexadecimal; or the error that opening or reading met. Any thread.
PlatformKit::Result<std::string> hashFile(PlatformKit::Folder& within,
                                          const PlatformKit::Path& path,
                                          HashKit::HashAlgorithm algorithm, std::size_t chunkSize);

}  // namespace OffloadKit
