#pragma once

#include "PlatformKit/MountedVolumes.h"

namespace PlatformKit {

/// Mounted volumes as the kernel and udev tell them. Each call looks anew. Volumes on optical discs
/// count as any others. Left out of the list are FUSE file systems that lie on no device and are
/// not known to be another computer's: most of them show what is mounted elsewhere already.
class LinuxMountedVolumes final : public MountedVolumes {
 public:
  /// Where the facts are read from; tests put files of their own here.
  struct Roots {
    Path mountInfo = "/proc/self/mountinfo";
    Path sys = "/sys";
    Path udevData = "/run/udev/data";
  };

  LinuxMountedVolumes() = default;
  explicit LinuxMountedVolumes(Roots roots) : roots_(std::move(roots)) {}

  [[nodiscard]] std::vector<MountedVolume> list() override;
  [[nodiscard]] std::optional<MountedVolume> holding(const Path& existing) override;
  [[nodiscard]] std::optional<VolumeSpace> space(const Path& root) override;

 private:
  Roots roots_;
};

}  // namespace PlatformKit
