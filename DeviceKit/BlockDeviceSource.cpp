#include "DeviceKit/BlockDeviceSource.h"

#include "DeviceKit/DeviceError.h"

#include <algorithm>
#include <cerrno>

namespace DeviceKit {
namespace {

bool isPageAligned(std::span<const std::byte> buffer) {
  constexpr std::uintptr_t kPage = 4096;
  return reinterpret_cast<std::uintptr_t>(buffer.data()) % kPage == 0;
}

}  // namespace

BlockDeviceSource::BlockDeviceSource(std::unique_ptr<PlatformKit::RawDevice> device,
                                     std::string path)
    : device_(std::move(device)), path_(std::move(path)) {
  const auto geometry = device_->geometry();
  if (geometry.ok() && geometry.value().blockSize > 0 && geometry.value().blockCount > 0) {
    blockSize_ = geometry.value().blockSize;
    size_ = geometry.value().blockCount * geometry.value().blockSize;
    return;
  }
  const auto size = device_->fileSize();
  if (!size.ok() || size.value() == 0) throw DeviceError::notAFileOrDevice(path_);
  size_ = size.value();
}

std::size_t BlockDeviceSource::read(std::uint64_t offset, std::span<std::byte> buffer) {
  if (offset >= size_ || buffer.empty()) return 0;
  const auto count =
      static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), size_ - offset));
  const std::uint64_t start = offset / blockSize_ * blockSize_;
  const std::uint64_t blocks = (offset - start + count + blockSize_ - 1) / blockSize_;
  const auto span =
      static_cast<std::size_t>(std::min<std::uint64_t>(blocks * blockSize_, size_ - start));
  if (start == offset && span == count && isPageAligned(buffer)) {
    readBlocks(buffer.first(count), start);
    return count;
  }
  if (!whole_ || whole_->bytes().size() < span) whole_.emplace(span);
  readBlocks(whole_->bytes().first(span), start);
  std::copy_n(whole_->bytes().begin() + static_cast<std::ptrdiff_t>(offset - start), count,
              buffer.begin());
  return count;
}

void BlockDeviceSource::readBlocks(std::span<std::byte> buffer, std::uint64_t start) {
  const std::size_t done = readAtOnce(buffer, start);
  if (done == buffer.size()) return;
  throwIfGone(start + done);
  const std::size_t badBefore = badReads_;
  readOneByOne(buffer.subspan(done), start + done);
  if (badReads_ != badBefore) throwIfGone(start + done);
}

// Answers how many bytes came before the first failure, in whole blocks.
std::size_t BlockDeviceSource::readAtOnce(std::span<std::byte> buffer, std::uint64_t start) {
  std::size_t done = 0;
  while (done < buffer.size()) {
    const auto count = device_->readAt(buffer.subspan(done), start + done);
    if (count.error() == EINTR) continue;
    if (!count.ok() || count.value() == 0) return done / blockSize_ * blockSize_;
    done += count.value();
  }
  return done;
}

void BlockDeviceSource::readOneByOne(std::span<std::byte> buffer, std::uint64_t start) {
  for (std::size_t i = 0; i < buffer.size(); i += blockSize_) {
    const auto block = buffer.subspan(i, std::min(blockSize_, buffer.size() - i));
    auto count = device_->readAt(block, start + i);
    while (count.error() == EINTR) count = device_->readAt(block, start + i);
    if (count.ok() && count.value() == block.size()) continue;
    std::fill(block.begin(), block.end(), std::byte{0});
    ++badReads_;
  }
}

void BlockDeviceSource::throwIfGone(std::uint64_t offset) {
  if (device_->isGone()) throw DeviceError::readFailed(offset, ENODEV);
}

}  // namespace DeviceKit
