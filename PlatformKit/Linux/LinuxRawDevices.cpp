#include "PlatformKit/Linux/LinuxRawDevices.h"

#include <cerrno>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace PlatformKit {
namespace {

class LinuxRawDevice final : public RawDevice {
 public:
  LinuxRawDevice(UniqueFd fd, const Path& sys) : fd_(std::move(fd)) {
    struct stat status {};
    if (fstat(fd_.get(), &status) != 0 || !S_ISBLK(status.st_mode)) return;
    const std::string numbers =
        std::to_string(major(status.st_rdev)) + ":" + std::to_string(minor(status.st_rdev));
    device_ = sys / "dev" / "block" / numbers;
    setDirect(true);
  }

  Result<std::size_t> readAt(std::span<std::byte> buffer, std::uint64_t offset) override {
    const auto read = [&] {
      return pread(fd_.get(), buffer.data(), buffer.size(), static_cast<off_t>(offset));
    };
    ssize_t count = read();
    if (count < 0 && errno == EINVAL && direct_) {
      setDirect(false);
      count = read();
    }
    if (count < 0) return ErrorNumber{errno};
    return static_cast<std::size_t>(count);
  }

  Result<BlockGeometry> geometry() override {
    int blockSize = 0;
    std::uint64_t bytes = 0;
    if (ioctl(fd_.get(), BLKSSZGET, &blockSize) != 0 || blockSize <= 0 ||
        ioctl(fd_.get(), BLKGETSIZE64, &bytes) != 0) {
      return ErrorNumber{errno == 0 ? ENOTTY : errno};
    }
    const auto size = static_cast<std::uint32_t>(blockSize);
    return BlockGeometry{size, bytes / size};
  }

  Result<std::uint64_t> fileSize() override {
    struct stat status {};
    if (fstat(fd_.get(), &status) != 0) return ErrorNumber{errno};
    return static_cast<std::uint64_t>(status.st_size);
  }

  bool isGone() override {
    if (device_.empty()) return false;
    std::uint64_t bytes = 0;
    if (ioctl(fd_.get(), BLKGETSIZE64, &bytes) != 0 || bytes == 0) return true;
    std::error_code error;
    // Without the list (no /sys in a container) its absence there says nothing.
    return std::filesystem::is_directory(device_.parent_path(), error) &&
           std::filesystem::status(device_, error).type() == std::filesystem::file_type::not_found;
  }

 private:
  void setDirect(bool direct) {
    const int flags = fcntl(fd_.get(), F_GETFL);
    if (flags < 0) return;
    direct_ =
        fcntl(fd_.get(), F_SETFL, direct ? flags | O_DIRECT : flags & ~O_DIRECT) == 0 && direct;
  }

  UniqueFd fd_;
  Path device_;  // in sysfs; empty for a file
  bool direct_ = false;
};

}  // namespace

Result<RawKind> LinuxRawDevices::kind(const Path& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return ErrorNumber{errno};
  if (S_ISBLK(status.st_mode) || S_ISCHR(status.st_mode)) return RawKind::device;
  return S_ISREG(status.st_mode) ? RawKind::regularFile : RawKind::other;
}

Result<std::unique_ptr<RawDevice>> LinuxRawDevices::open(const Path& path) {
  UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!fd.valid()) return ErrorNumber{errno};
  return adopt(std::move(fd));
}

std::unique_ptr<RawDevice> LinuxRawDevices::adopt(UniqueFd descriptor) {
  return std::make_unique<LinuxRawDevice>(std::move(descriptor), sys_);
}

}  // namespace PlatformKit
