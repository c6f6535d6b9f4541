#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <span>

namespace PlatformKit {

/// A block of memory that starts on a 16,384-byte boundary, as transfers past the file cache need.
/// From 2 MiB on it consists of large pages where the system has them, so that such a transfer has
/// fewer pages to name to the drive.
///
/// Owns the memory; the content is undefined until written.
class AlignedBuffer {
 public:
  static constexpr std::size_t kAlignment = 16'384;

  /// `size` in bytes. Throws std::bad_alloc when there is no memory.
  explicit AlignedBuffer(std::size_t size);

  [[nodiscard]] std::span<std::byte> bytes() { return {memory_.get(), size_}; }

 private:
  struct Free {
    void operator()(std::byte* memory) const { std::free(memory); }
  };

  std::size_t size_;
  std::unique_ptr<std::byte, Free> memory_;
};

}  // namespace PlatformKit
