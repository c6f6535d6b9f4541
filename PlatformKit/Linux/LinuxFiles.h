#pragma once

#include "PlatformKit/FileSystem.h"
#include "PlatformKit/Posix/UniqueFd.h"

#include <atomic>

namespace PlatformKit {

/// A regular file read with positioned reads.
///
/// Past the cache means O_DIRECT. File systems differ in what they accept: some refuse it at open,
/// some at the first read, all want aligned requests. Whatever is refused is read through the cache
/// instead, right after the file's cached pages were dropped.
class LinuxReadableFile final : public ReadableFile {
 public:
  /// `direct`: the descriptor was opened with O_DIRECT.
  LinuxReadableFile(UniqueFd fd, bool direct);

  [[nodiscard]] Result<std::size_t> readAt(std::span<std::byte> buffer,
                                           std::uint64_t offset) override;
  void prefetch(std::uint64_t offset, std::uint64_t length) override;
  void discard(std::uint64_t offset, std::uint64_t length) override;
  [[nodiscard]] int flush() override;

 private:
  void leaveDirect();

  UniqueFd fd_;
  std::atomic<bool> direct_;
};

/// A new file written from its start.
class LinuxWritableFile final : public WritableFile {
 public:
  explicit LinuxWritableFile(UniqueFd fd) : fd_(std::move(fd)) {}

  [[nodiscard]] Result<std::size_t> write(std::span<const std::byte> bytes) override;
  [[nodiscard]] int startWriteback(std::uint64_t offset, std::uint64_t length) override;
  [[nodiscard]] int finishWriteback(std::uint64_t offset, std::uint64_t length) override;
  [[nodiscard]] Result<ItemIdentity> identity() override;
  [[nodiscard]] int setDates(Date modified, std::optional<Date> created) override;
  [[nodiscard]] int flush() override;

 private:
  UniqueFd fd_;
};

}  // namespace PlatformKit
