#pragma once

#include "PlatformKit/Volumes.h"

namespace PlatformKit {

/// Volumes as the kernel and udev tell them.
class LinuxVolumes final : public Volumes {
 public:
  /// Where the facts are read from; tests put files of their own here.
  struct Roots {
    Path mountInfo = "/proc/self/mountinfo";
    Path sys = "/sys";
    Path udevData = "/run/udev/data";
  };

  LinuxVolumes() = default;
  explicit LinuxVolumes(Roots roots) : roots_(std::move(roots)) {}

  [[nodiscard]] VolumeFacts facts(const Path& existing) override;
  [[nodiscard]] bool isGone(DeviceNumber device) override;

 private:
  Roots roots_;
};

}  // namespace PlatformKit
