#pragma once

#include "DeviceKit/ByteSource.h"
#include "PlatformKit/RawDevices.h"

#include <memory>

namespace DeviceKit {

/// A regular file. A read error fails the read, with the offset of the first byte not read; a file
/// that became shorter since it was opened gives fewer bytes.
class FileSource final : public ByteSource {
 public:
  /// Opens the file, whose size stays what it is now. Throws DeviceError::cannotOpen.
  FileSource(PlatformKit::RawDevices& devices, std::string path);

  [[nodiscard]] std::uint64_t size() const override { return size_; }
  [[nodiscard]] std::size_t badReads() const override { return 0; }
  [[nodiscard]] std::string descriptionForReport() const override { return path_; }
  [[nodiscard]] std::size_t read(std::uint64_t offset, std::span<std::byte> buffer) override;

 private:
  std::string path_;
  std::unique_ptr<PlatformKit::RawDevice> file_;
  std::uint64_t size_ = 0;
};

}  // namespace DeviceKit
