#pragma once

#include "DeviceKit/ByteSource.h"
#include "PlatformKit/RawDevices.h"

#include <memory>

namespace DeviceKit {

/// A regular file, open from the beginning of this object to its end. A read error fails the read
/// (DeviceError::readFailed), with the offset of the first byte not read; a file that became
/// shorter since it was opened gives fewer bytes.
class FileSource final : public ByteSource {
 public:
  /// Opens the file, through links too; its size stays what it is now. `devices` is not needed any
  /// more afterwards. Throws DeviceError::cannotOpen.
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
