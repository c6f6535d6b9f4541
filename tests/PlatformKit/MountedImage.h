#pragma once

#include "PlatformKit/Testing/TempFolder.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <sched.h>
#include <sys/mount.h>

namespace PlatformKit::Testing {

/// Gives the calling thread a list of mounts of its own, which goes when the thread and those it
/// started have ended; false when it may not have one. It is in /proc/thread-self/mountinfo.
inline bool leaveTheMountsOfOthers() {
  return unshare(CLONE_NEWNS) == 0 &&
         ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

/// Runs a command of the shell and answers whether it ended well. Its errors are not shown.
inline bool succeeds(const std::string& command) {
  // NOLINTNEXTLINE(concurrency-mt-unsafe)
  return std::system(("{ " + command + "; } >/dev/null 2>&1").c_str()) == 0;
}

/// A file that is mounted as a disk, called "My Image", for a thread with mounts of its own.
class MountedImage {
 public:
  static constexpr std::uintmax_t kSize = 8U << 20U;

  explicit MountedImage(const Path& folder)
      : file_(folder / "card.img"), point_(folder / "My Image") {
    std::filesystem::create_directories(point_);
    writeFile(file_, "");
    std::filesystem::resize_file(file_, kSize);
    isMounted_ = succeeds("mkfs.ext4 -q -F '" + file_.native() + "' && mount -o loop '" +
                          file_.native() + "' '" + point_.native() + "'");
  }
  ~MountedImage() { unmount(); }
  MountedImage(const MountedImage&) = delete;
  MountedImage& operator=(const MountedImage&) = delete;

  [[nodiscard]] bool isMounted() const { return isMounted_; }
  [[nodiscard]] const Path& point() const { return point_; }

  void unmount() {
    if (isMounted_) umount2(point_.c_str(), MNT_DETACH);
    isMounted_ = false;
  }

  [[nodiscard]] std::string device() const {
    for (const auto& item : std::filesystem::directory_iterator("/sys/block")) {
      const Path backing = item.path() / "loop/backing_file";
      if (std::filesystem::exists(backing) && readFile(backing) == file_.native() + "\n") {
        return item.path().filename();
      }
    }
    return {};
  }

 private:
  Path file_;
  Path point_;
  bool isMounted_ = false;
};

}  // namespace PlatformKit::Testing
