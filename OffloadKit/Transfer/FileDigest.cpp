#include "OffloadKit/Transfer/FileDigest.h"

#include "PlatformKit/AlignedBuffer.h"

#include <cerrno>
#include <exception>

namespace OffloadKit {

using PlatformKit::ErrorNumber;
using PlatformKit::Result;

FileDigest::FileDigest(PlatformKit::Folder& within, PlatformKit::Path path,
                       HashKit::HashAlgorithm algorithm, std::uint64_t expectedSize)
    : within_(within),
      path_(std::move(path)),
      expectedSize_(expectedSize),
      hasher_(HashKit::makeHasher(algorithm)) {}

void FileDigest::work(std::span<std::byte> piece) {
  while (const auto mine = takePiece()) {
    const std::uint64_t offset = *mine * piece.size();
    const std::size_t length = lengthToAsk(offset, piece.size(), expectedSize_);
    const auto read = readFully(*file_, piece.first(length), offset);
    std::unique_lock lock(mutex_);
    turnChanged_.wait(lock, [&] { return turn_ == *mine; });
    if (!ended_) {
      // Nobody else touches the hasher before the turn moves on, so others may take pieces
      // meanwhile.
      lock.unlock();
      absorb(read, piece);
      lock.lock();
      ended_ = givenUp_ || error_ != 0 || read.value() < piece.size();
    }
    ++turn_;
    turnChanged_.notify_all();
  }
}

void FileDigest::giveUp() {
  const std::lock_guard lock(mutex_);
  opened_ = true;
  ended_ = true;
  givenUp_ = true;
}

std::optional<std::uint64_t> FileDigest::takePiece() {
  const std::lock_guard lock(mutex_);
  // Opened by the first worker rather than by the constructor: the files of a read-back are opened
  // in parallel.
  if (!opened_) open();
  if (ended_) return std::nullopt;
  return nextPiece_++;
}

void FileDigest::open() {
  opened_ = true;
  ended_ = true;
  try {
    auto opened = within_.openForReading(path_, PlatformKit::ReadMode::pastCache);
    error_ = opened.error();
    ended_ = !opened.ok();
    if (opened.ok()) file_ = std::move(opened.value());
  } catch (const std::exception&) {
    error_ = ENOMEM;
  }
}

void FileDigest::absorb(const Result<std::size_t>& read, std::span<const std::byte> piece) {
  error_ = read.error();
  if (!read.ok()) return;
  try {
    hasher_->update(piece.first(read.value()));
  } catch (const std::exception&) {
    // Other workers wait for their turn, so nothing may leave this one early.
    error_ = ENOMEM;
  }
}

Result<std::string> FileDigest::result() const {
  if (givenUp_) return ErrorNumber{ECANCELED};
  if (error_ != 0) return ErrorNumber{error_};
  return hasher_->finalize();
}

Result<std::string> hashFile(PlatformKit::Folder& within, const PlatformKit::Path& path,
                             HashKit::HashAlgorithm algorithm, std::size_t chunkSize) {
  PlatformKit::AlignedBuffer buffer(chunkSize);
  FileDigest digest(within, path, algorithm);
  digest.work(buffer.bytes());
  return digest.result();
}

}  // namespace OffloadKit
