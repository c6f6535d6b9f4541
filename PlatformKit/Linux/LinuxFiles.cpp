#include "PlatformKit/Linux/LinuxFiles.h"

#include "PlatformKit/Linux/Times.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace PlatformKit {
namespace {

// Large enough for every drive's sectors; 512-byte drives accept it too.
constexpr std::uint64_t kDirectAlignment = 4096;

// The kernel cuts one request for read-ahead to the drive's read-ahead size, which is this by
// default.
constexpr std::uint64_t kReadAheadPiece = std::uint64_t{128} * 1024;

bool isAligned(std::span<const std::byte> buffer, std::uint64_t offset) {
  const auto address = reinterpret_cast<std::uintptr_t>(buffer.data());
  return ((address | buffer.size() | offset) & (kDirectAlignment - 1)) == 0;
}

// Advice may be refused without harm: what it asks for is speed, or a second line of defence behind
// direct reads.
void advise(int fd, std::uint64_t offset, std::uint64_t length, int advice) {
  static_cast<void>(
      posix_fadvise(fd, static_cast<off_t>(offset), static_cast<off_t>(length), advice));
}

bool isAtEnd(int fd, std::uint64_t offset) {
  struct stat status {};
  return fstat(fd, &status) == 0 && offset >= static_cast<std::uint64_t>(status.st_size);
}

bool notOffered(int error) {
  return error == ENOSYS || error == EOPNOTSUPP || error == EINVAL || error == ESPIPE;
}

int syncRange(int fd, std::uint64_t offset, std::uint64_t length, unsigned flags) {
  if (sync_file_range(fd, static_cast<off64_t>(offset), static_cast<off64_t>(length), flags) == 0) {
    return 0;
  }
  return notOffered(errno) ? 0 : errno;
}

}  // namespace

LinuxReadableFile::LinuxReadableFile(UniqueFd fd, bool direct)
    : fd_(std::move(fd)), direct_(direct) {
  // Also for direct reads: some file systems quietly answer those from the cache.
  advise(fd_.get(), 0, 0, POSIX_FADV_DONTNEED);
}

Result<std::size_t> LinuxReadableFile::readAt(std::span<std::byte> buffer, std::uint64_t offset) {
  if (direct_ && !isAligned(buffer, offset)) {
    // Behind an odd-sized tail there is nothing more; asking for the size is all it takes.
    if (isAtEnd(fd_.get(), offset)) return std::size_t{0};
    leaveDirect();
  }
  for (;;) {
    const bool wasDirect = direct_;
    const ssize_t count =
        pread(fd_.get(), buffer.data(), buffer.size(), static_cast<off_t>(offset));
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno == EINTR) continue;
    if (errno != EINVAL || !wasDirect) return ErrorNumber{errno};
    leaveDirect();
  }
}

void LinuxReadableFile::leaveDirect() {
  const int flags = fcntl(fd_.get(), F_GETFL);
  if (flags >= 0) static_cast<void>(fcntl(fd_.get(), F_SETFL, flags & ~O_DIRECT));
  // Only pages that are written out can be dropped. An error of that shows when the file is read.
  static_cast<void>(fdatasync(fd_.get()));
  advise(fd_.get(), 0, 0, POSIX_FADV_DONTNEED);
  // Last, so that whoever sees it may rely on the descriptor being changed.
  direct_ = false;
}

void LinuxReadableFile::prefetch(std::uint64_t offset, std::uint64_t length) {
  if (direct_) return;  // It would come into the cache, from which nobody reads.
  for (std::uint64_t done = 0; done < length; done += kReadAheadPiece) {
    advise(fd_.get(), offset + done, std::min(kReadAheadPiece, length - done), POSIX_FADV_WILLNEED);
  }
}

void LinuxReadableFile::discard(std::uint64_t offset, std::uint64_t length) {
  advise(fd_.get(), offset, length, POSIX_FADV_DONTNEED);
}

int LinuxReadableFile::flush() {
  return fsync(fd_.get()) == 0 ? 0 : errno;
}

Result<std::size_t> LinuxWritableFile::write(std::span<const std::byte> bytes) {
  const ssize_t count = ::write(fd_.get(), bytes.data(), bytes.size());
  if (count < 0) return ErrorNumber{errno};
  return static_cast<std::size_t>(count);
}

int LinuxWritableFile::startWriteback(std::uint64_t offset, std::uint64_t length) {
  return syncRange(fd_.get(), offset, length, SYNC_FILE_RANGE_WRITE);
}

int LinuxWritableFile::finishWriteback(std::uint64_t offset, std::uint64_t length) {
  const int error =
      syncRange(fd_.get(), offset, length,
                SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER);
  advise(fd_.get(), offset, length, POSIX_FADV_DONTNEED);
  return error;
}

Result<ItemIdentity> LinuxWritableFile::identity() {
  struct stat status {};
  if (fstat(fd_.get(), &status) != 0) return ErrorNumber{errno};
  return ItemIdentity{status.st_dev, status.st_ino};
}

int LinuxWritableFile::setDates(Date modified, std::optional<Date> /*created*/) {
  return futimens(fd_.get(), modificationOnly(modified).data()) == 0 ? 0 : errno;
}

int LinuxWritableFile::flush() {
  return fsync(fd_.get()) == 0 ? 0 : errno;
}

}  // namespace PlatformKit
