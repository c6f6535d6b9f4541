#pragma once

#include "PlatformKit/FileSystem.h"
#include "PlatformKit/Posix/UniqueFd.h"
#include "PlatformKit/VolumeWatcher.h"

#include <thread>

namespace PlatformKit {

/// Waits for the kernel to say that its list of mounts changed, and for news of block devices from
/// the kernel and from udev, which tells of labels a moment later. Where the latter are not to be
/// had (in a container), changes of mounts alone are told.
class LinuxVolumeWatcher final : public VolumeWatcher {
 public:
  LinuxVolumeWatcher() = default;
  /// `mountInfo`: the list of mounts to watch.
  explicit LinuxVolumeWatcher(Path mountInfo) : mountInfo_(std::move(mountInfo)) {}
  ~LinuxVolumeWatcher() override;
  LinuxVolumeWatcher(const LinuxVolumeWatcher&) = delete;
  LinuxVolumeWatcher& operator=(const LinuxVolumeWatcher&) = delete;

  /// As VolumeWatcher. Also throws std::system_error when no descriptor is to be had for stopping.
  void start(std::function<void()> changed) override;

 private:
  enum class Wake { event, stop, time };

  void watch(const std::function<void()>& changed);
  // Waits for the first of these; a negative time is without end.
  Wake wait(int milliseconds);
  bool readDeviceEvents();

  Path mountInfo_ = "/proc/self/mountinfo";
  UniqueFd stop_;
  UniqueFd mounts_;   // not valid: not to be had
  UniqueFd devices_;  // the same
  std::thread thread_;
};

}  // namespace PlatformKit
