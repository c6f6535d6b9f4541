#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

/// How a file's bytes go to the drive and come from it.
enum class Way {
  direct,  ///< past the cache, or through it where the file system refuses that
  cached,  ///< through the cache; every write is sent off at once
  mapped,  ///< read where the cache has it, each line of it: the drive's bytes only if it is memory
};

/// One file of a benchmark, which several threads read and write at once. Sizes and offsets are
/// multiples of 4 KiB. Whatever fails ends the program, with a message.
class DirectFile {
 public:
  /// `flags` are those of open(2), without O_DIRECT and O_CLOEXEC.
  DirectFile(std::string path, int flags, Way way);
  DirectFile(const DirectFile&) = delete;
  DirectFile& operator=(const DirectFile&) = delete;
  ~DirectFile();

  /// Reserves room on the drive, so that a write finds its blocks.
  void reserve(std::uint64_t size);
  void write(const std::byte* memory, std::size_t size, std::uint64_t offset);
  /// Leaves `memory` alone where the file is mapped.
  void read(std::byte* memory, std::size_t size, std::uint64_t offset);
  /// Returns when the drive has every byte written so far, and can find it again.
  void flush();
  /// Whether direct requests were wanted and the file system refused them.
  [[nodiscard]] bool isRefusedDirect() const { return isRefusedDirect_; }

 private:
  template <typename Memory, typename Transfer>
  void all(Transfer transfer, Memory* memory, std::size_t size, std::uint64_t offset);

  std::string path_;
  Way way_;
  int fd_ = -1;
  std::atomic<bool> isRefusedDirect_ = false;
};
