#pragma once

#include "DeviceKit/ByteSource.h"

#include <vector>

namespace DeviceKit {

/// Bytes in memory, such as a card that was read before. Reading never fails, and no block is
/// unreadable.
class MemorySource final : public ByteSource {
 public:
  /// Takes over the bytes.
  explicit MemorySource(std::vector<std::byte> data) : data_(std::move(data)) {}

  [[nodiscard]] std::uint64_t size() const override { return data_.size(); }
  [[nodiscard]] std::size_t badReads() const override { return 0; }
  /// "memory(4096 bytes)".
  [[nodiscard]] std::string descriptionForReport() const override;
  [[nodiscard]] std::size_t read(std::uint64_t offset, std::span<std::byte> buffer) override;

 private:
  std::vector<std::byte> data_;
};

}  // namespace DeviceKit
