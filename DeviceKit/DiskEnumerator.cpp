#include "DeviceKit/DiskEnumerator.h"

namespace DeviceKit {

using PlatformKit::DiskFacts;

std::vector<ExternalDisk> DiskEnumerator::externalDisks(bool includeDiskImages) const {
  std::vector<ExternalDisk> disks;
  for (const DiskFacts& disk : disks_.list()) {
    if (isMemoryCardLike(disk, includeDiskImages)) disks.push_back(externalDisk(disk));
  }
  return disks;
}

bool DiskEnumerator::unmountDisk(const std::string& identifier) const {
  return unmounter_ != nullptr && unmounter_->unmountDisk(identifier);
}

std::optional<WholeDisk> DiskEnumerator::wholeDisk(const PlatformKit::Path& volume) const {
  const auto facts = disks_.holding(volume);
  if (!facts) return std::nullopt;
  const ExternalDisk disk = externalDisk(*facts);
  return WholeDisk{disk.deviceIdentifier, disk.rawDevicePath(), disk.sizeBytes};
}

bool DiskEnumerator::isMemoryCardLike(const DiskFacts& disk, bool allowDiskImages) {
  if (disk.isDiskImage) return allowDiskImages;
  if (disk.isVirtual) return false;
  if (disk.isSystemDisk) return false;
  const bool isRemovableOrExternal = disk.isRemovableMedia || disk.isHotPluggable;
  const bool isRemovable = disk.isRemovableMedia || (isRemovableOrExternal && disk.isEjectable);
  return !disk.isInternal || isRemovable;
}

ExternalDisk DiskEnumerator::externalDisk(const DiskFacts& disk) {
  return {disk.identifier, disk.mediaName, disk.sizeBytes, disk.volumeNames};
}

}  // namespace DeviceKit
