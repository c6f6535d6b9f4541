#pragma once

#include "DeviceKit/ByteSource.h"
#include "PlatformKit/AlignedBuffer.h"
#include "PlatformKit/RawDevices.h"

#include <memory>
#include <optional>

namespace DeviceKit {

/// A card's whole device, read in whole blocks. A block that cannot be read, for whatever reason
/// the system gives, comes back as zeros and is counted: an unreadable sector must not end an
/// image. Only a device that is no longer part of the computer fails the read, since it would
/// otherwise look like a card full of zeros.
class BlockDeviceSource final : public ByteSource {
 public:
  /// Takes over the open device. `path` is its name in errors and reports. Something that is no
  /// block device but has a size (a disk image in a file) counts as blocks of 512 bytes. Throws
  /// DeviceError::notAFileOrDevice when it has no size either; the device is closed then.
  BlockDeviceSource(std::unique_ptr<PlatformKit::RawDevice> device, std::string path);

  [[nodiscard]] std::uint64_t size() const override { return size_; }
  [[nodiscard]] std::size_t badReads() const override { return badReads_; }
  [[nodiscard]] std::string descriptionForReport() const override { return path_; }
  /// As ByteSource. Throws DeviceError::readFailed with ENODEV when the device is gone.
  [[nodiscard]] std::size_t read(std::uint64_t offset, std::span<std::byte> buffer) override;

 private:
  void readBlocks(std::span<std::byte> buffer, std::uint64_t start);
  [[nodiscard]] std::size_t readAtOnce(std::span<std::byte> buffer, std::uint64_t start);
  void readOneByOne(std::span<std::byte> buffer, std::uint64_t start);
  void throwIfGone(std::uint64_t offset);

  std::unique_ptr<PlatformKit::RawDevice> device_;
  std::string path_;
  std::uint64_t size_ = 0;
  std::size_t blockSize_ = 512;
  std::size_t badReads_ = 0;
  // For reads that are not whole blocks into aligned memory; made when first needed.
  std::optional<PlatformKit::AlignedBuffer> whole_;
};

}  // namespace DeviceKit
