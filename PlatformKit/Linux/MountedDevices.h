#pragma once

#include "PlatformKit/Disks.h"
#include "PlatformKit/Linux/BlockDevices.h"
#include "PlatformKit/Linux/MountTable.h"

#include <set>
#include <vector>

namespace PlatformKit {

/// The block devices and the mounts of one moment. Pointers that it answers are into itself. Asks
/// no volume anything, and fails for nothing: what cannot be read is not there. Any thread.
class MountedDevices {
 public:
  /// `mountInfo`: the list of mounts; `sys`: where sysfs is.
  MountedDevices(const Path& mountInfo, const Path& sys);
  MountedDevices(const MountedDevices&) = delete;
  MountedDevices& operator=(const MountedDevices&) = delete;

  [[nodiscard]] const BlockDevices& devices() const { return devices_; }

  /// In the order of mounting.
  [[nodiscard]] const std::vector<Mount>& mounts() const { return mounts_; }

  /// The device under a mount; null for network and memory volumes and when it was pulled: its
  /// mount stays listed.
  [[nodiscard]] const BlockDevice* under(const Mount& mount) const;

  /// What is known of a whole device, whether it runs the system included, but no volume names. One
  /// that runs the system is internal whatever its connection, since nobody unplugs it.
  [[nodiscard]] DiskFacts factsOf(const BlockDevice& whole) const;

 private:
  Path sys_;
  BlockDevices devices_;
  std::vector<Mount> mounts_;
  std::set<const BlockDevice*> systemDisks_;
};

}  // namespace PlatformKit
