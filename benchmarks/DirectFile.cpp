#include "benchmarks/DirectFile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr std::size_t kCacheLine = 64;  // bytes

[[noreturn]] void fail(const std::string& path) {
  std::perror(path.c_str());
  std::_Exit(1);
}

/// Looks at one word of each cache line: the memory hands out whole lines.
void touchLines(const std::byte* memory, std::size_t size) {
  for (std::size_t at = 0; at < size; at += kCacheLine)
    static_cast<void>(*reinterpret_cast<const volatile std::uint64_t*>(memory + at));
}

}  // namespace

DirectFile::DirectFile(std::string path, int flags, Way way) : path_(std::move(path)), way_(way) {
  const bool isDirect = way_ == Way::direct;
  fd_ = open(path_.c_str(), flags | O_CLOEXEC | (isDirect ? O_DIRECT : 0), 0644);
  if (fd_ < 0 && isDirect && errno == EINVAL) {
    isRefusedDirect_ = true;
    fd_ = open(path_.c_str(), flags | O_CLOEXEC, 0644);
  }
  if (fd_ < 0) fail(path_);
}

DirectFile::~DirectFile() {
  close(fd_);
}

void DirectFile::reserve(std::uint64_t size) {
  // Not every file system can; then blocks are found as they are written.
  if (fallocate(fd_, 0, 0, static_cast<off_t>(size)) != 0 && errno != EOPNOTSUPP) fail(path_);
}

/// Repeats `transfer`, pread or pwrite, until all bytes went.
template <typename Memory, typename Transfer>
void DirectFile::all(Transfer transfer, Memory* memory, std::size_t size, std::uint64_t offset) {
  bool mayGoThroughCache = way_ == Way::direct;
  for (std::size_t done = 0; done < size;) {
    const ssize_t count =
        transfer(fd_, memory + done, size - done, static_cast<off_t>(offset + done));
    if (count > 0) {
      done += static_cast<std::size_t>(count);
    } else if (count < 0 && errno == EINVAL && mayGoThroughCache) {
      // Some file systems refuse at the first request only.
      mayGoThroughCache = false;
      isRefusedDirect_ = true;
      if (fcntl(fd_, F_SETFL, fcntl(fd_, F_GETFL) & ~O_DIRECT) != 0) fail(path_);
    } else if (count == 0 || errno != EINTR) {
      fail(path_);
    }
  }
}

void DirectFile::write(const std::byte* memory, std::size_t size, std::uint64_t offset) {
  all(pwrite, memory, size, offset);
  // Only a hint: the flush waits for all of it.
  if (way_ == Way::cached || isRefusedDirect_)
    static_cast<void>(sync_file_range(fd_, static_cast<off_t>(offset), static_cast<off_t>(size),
                                      SYNC_FILE_RANGE_WRITE));
}

void DirectFile::read(std::byte* memory, std::size_t size, std::uint64_t offset) {
  const auto start = static_cast<off_t>(offset);
  if (way_ == Way::mapped) {
    void* view = mmap(nullptr, size, PROT_READ, MAP_SHARED | MAP_POPULATE, fd_, start);
    if (view == MAP_FAILED) fail(path_);
    touchLines(static_cast<const std::byte*>(view), size);
    munmap(view, size);
    return;
  }
  // Where the cache cannot be gone past, its pages are dropped just before. Only a hint.
  if (isRefusedDirect_)
    static_cast<void>(posix_fadvise(fd_, start, static_cast<off_t>(size), POSIX_FADV_DONTNEED));
  all(pread, memory, size, offset);
}

void DirectFile::flush() {
  if (fdatasync(fd_) != 0) fail(path_);
}
