#pragma once

#include "PlatformKit/RawDevices.h"

#include <algorithm>
#include <cerrno>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace PlatformKit::Testing {

/// Raw devices that a test makes up. They outlive what was opened from them.
class FakeRawDevices final : public RawDevices {
 public:
  struct Device {
    std::string content;
    std::uint32_t blockSize = 512;  ///< 0: geometry is not to be had, as of a file
    int openError = 0;
    std::map<std::uint64_t, int> badBlocks;  ///< block number: the error of reading it
    std::size_t longestRead = SIZE_MAX;
    int interruptions = 0;                 ///< so many reads answer EINTR first
    std::uint64_t goneAfter = UINT64_MAX;  ///< pulled once this offset is read; reads then answer 0
    bool gone = false;
    int reads = 0;
  };

  Device& add(const std::string& path, std::string content) {
    devices_[path].content = std::move(content);
    return devices_[path];
  }
  /// The device whose descriptor a privileged opener hands over.
  void setAdopted(const std::string& path) { adopted_ = path; }
  /// How many devices opened here are open now.
  [[nodiscard]] int openDevices() const { return open_; }

  [[nodiscard]] Result<RawKind> kind(const Path& path) override {
    if (!devices_.contains(path)) return ErrorNumber{ENOENT};
    return RawKind::device;
  }
  [[nodiscard]] Result<std::unique_ptr<RawDevice>> open(const Path& path) override {
    const auto found = devices_.find(path);
    if (found == devices_.end()) return ErrorNumber{ENOENT};
    if (found->second.openError != 0) return ErrorNumber{found->second.openError};
    return std::unique_ptr<RawDevice>(std::make_unique<Open>(found->second, open_));
  }
  [[nodiscard]] std::unique_ptr<RawDevice> adopt(UniqueFd /*descriptor*/) override {
    return std::make_unique<Open>(devices_.at(adopted_), open_);
  }

 private:
  class Open final : public RawDevice {
   public:
    Open(Device& device, int& count) : device_(device), count_(count) { ++count_; }
    ~Open() override { --count_; }

    Result<std::size_t> readAt(std::span<std::byte> buffer, std::uint64_t offset) override {
      ++device_.reads;
      if (device_.interruptions > 0) {
        --device_.interruptions;
        return ErrorNumber{EINTR};
      }
      if (offset + buffer.size() > device_.goneAfter) device_.gone = true;
      if (device_.gone || offset >= device_.content.size()) return std::size_t{0};
      const std::size_t count =
          std::min({buffer.size(), device_.longestRead, device_.content.size() - offset});
      for (const auto& [block, error] : device_.badBlocks) {
        const std::uint64_t start = block * 512;
        if (start < offset + count && start + 512 > offset) return ErrorNumber{error};
      }
      std::copy_n(
          std::as_bytes(std::span(device_.content)).begin() + static_cast<std::ptrdiff_t>(offset),
          count, buffer.begin());
      return count;
    }
    Result<BlockGeometry> geometry() override {
      if (device_.blockSize == 0) return ErrorNumber{ENOTTY};
      return BlockGeometry{device_.blockSize, device_.content.size() / device_.blockSize};
    }
    Result<std::uint64_t> fileSize() override {
      return device_.blockSize == 0 ? std::uint64_t{device_.content.size()} : std::uint64_t{0};
    }
    bool isGone() override { return device_.gone; }

   private:
    Device& device_;
    int& count_;
  };

  std::map<std::string, Device> devices_;
  std::string adopted_;
  int open_ = 0;
};

}  // namespace PlatformKit::Testing
