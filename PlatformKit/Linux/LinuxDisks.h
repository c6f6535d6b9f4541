#pragma once

#include "PlatformKit/Disks.h"
#include "PlatformKit/Volumes.h"

namespace PlatformKit {

/// Disks as the kernel and udev tell them. Each call looks anew. Drives for optical discs are left
/// out, and so is what has no medium of its own: memory, loop devices without a file, and what is
/// made of other devices (encryption, logical volumes, arrays). The disks under those are listed
/// themselves, with the names of the volumes they bear; to read an array as a whole would not image
/// any medium that exists.
class LinuxDisks final : public Disks {
 public:
  /// Where the facts are read from; tests put files of their own here.
  struct Roots {
    Path mountInfo = "/proc/self/mountinfo";
    Path sys = "/sys";
    Path udevData = "/run/udev/data";
  };

  /// `volumes` tells which device an item is on, and outlives this object.
  explicit LinuxDisks(Volumes& volumes) : volumes_(volumes) {}
  LinuxDisks(Volumes& volumes, Roots roots) : volumes_(volumes), roots_(std::move(roots)) {}

  [[nodiscard]] std::vector<DiskFacts> list() override;
  [[nodiscard]] std::optional<DiskFacts> holding(const Path& path) override;

 private:
  Volumes& volumes_;
  Roots roots_;
};

}  // namespace PlatformKit
