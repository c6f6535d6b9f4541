#include "DeviceKit/FileSource.h"

#include "DeviceKit/DeviceError.h"

#include <algorithm>
#include <cerrno>

namespace DeviceKit {

FileSource::FileSource(PlatformKit::RawDevices& devices, std::string path)
    : path_(std::move(path)) {
  auto opened = devices.open(path_);
  if (!opened.ok()) throw DeviceError::cannotOpen(path_, opened.error());
  file_ = std::move(opened.value());
  const auto size = file_->fileSize();
  if (!size.ok()) throw DeviceError::cannotOpen(path_, size.error());
  size_ = size.value();
}

std::size_t FileSource::read(std::uint64_t offset, std::span<std::byte> buffer) {
  if (offset >= size_) return 0;
  const auto wanted = buffer.first(
      static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), size_ - offset)));
  std::size_t done = 0;
  while (done < wanted.size()) {
    const auto count = file_->readAt(wanted.subspan(done), offset + done);
    if (count.error() == EINTR) continue;
    if (!count.ok()) throw DeviceError::readFailed(offset + done, count.error());
    if (count.value() == 0) break;
    done += count.value();
  }
  return done;
}

}  // namespace DeviceKit
