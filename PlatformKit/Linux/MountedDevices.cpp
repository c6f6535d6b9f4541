#include "PlatformKit/Linux/MountedDevices.h"

#include "PlatformKit/Linux/BlockVolumes.h"
#include "PlatformKit/Linux/SysDisk.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace PlatformKit {
namespace {

bool isSystemMount(std::string_view point) {
  constexpr std::array<std::string_view, 5> kPoints = {"/", "/usr", "/home", "/boot", "/boot/efi"};
  return std::find(kPoints.begin(), kPoints.end(), point) != kPoints.end();
}

}  // namespace

MountedDevices::MountedDevices(const Path& mountInfo, const Path& sys)
    : sys_(sys), devices_(sys), mounts_(readMounts(mountInfo)) {
  for (const Mount& mount : mounts_) {
    if (!isSystemMount(mount.point.native())) continue;
    const BlockDevice* device = under(mount);
    if (device == nullptr) continue;
    const auto bearers = devices_.bearersOf(*device);
    systemDisks_.insert(bearers.begin(), bearers.end());
  }
}

const BlockDevice* MountedDevices::under(const Mount& mount) const {
  const auto number = blockDeviceOf(mount);
  return number ? devices_.find(*number) : nullptr;
}

DiskFacts MountedDevices::factsOf(const BlockDevice& whole) const {
  DiskFacts facts = sysDiskFacts(sys_, whole.folder);
  facts.isSystemDisk = systemDisks_.contains(&whole);
  if (facts.isSystemDisk) facts.isInternal = true;
  return facts;
}

}  // namespace PlatformKit
