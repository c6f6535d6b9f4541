#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace DeviceKit {

/// Bytes that are read by offset: a card's raw device, a disk image, a file, memory. One thread at
/// a time.
class ByteSource {
 public:
  virtual ~ByteSource() = default;

  /// How many bytes there are to read.
  [[nodiscard]] virtual std::uint64_t size() const = 0;

  /// How many unreadable blocks reads so far have replaced with zeros. Only grows.
  [[nodiscard]] virtual std::size_t badReads() const = 0;

  /// How the source is named in reports.
  [[nodiscard]] virtual std::string descriptionForReport() const = 0;

  /// Reads from `offset` (bytes) on into `buffer` and answers how many bytes it filled: all of it,
  /// or fewer at the end of the source; 0 at or behind the end. May throw DeviceError::readFailed.
  /// A buffer on a boundary of 4,096 bytes spares a copy.
  [[nodiscard]] virtual std::size_t read(std::uint64_t offset, std::span<std::byte> buffer) = 0;
};

}  // namespace DeviceKit
