#include "DeviceKit/VolumeLists.h"

#include <algorithm>
#include <limits>

namespace DeviceKit {
namespace {

std::int64_t bytesOf(std::uint64_t count) {
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
  return static_cast<std::int64_t>(std::min<std::uint64_t>(count, kMost));
}

Volume rowOf(const PlatformKit::MountedVolume& volume,
             const std::optional<PlatformKit::VolumeSpace>& space) {
  Volume row;
  row.url = volume.root;
  row.name = volume.name.empty() ? volume.root.filename().native() : volume.name;
  if (space) {
    row.capacity = bytesOf(space->capacity);
    row.available = bytesOf(space->available);
  }
  row.isRemovable = volume.isRemovable;
  return row;
}

}  // namespace

bool isDrive(const PlatformKit::MountedVolume& volume) {
  return !volume.isRootFileSystem && !volume.isInternal && !volume.isReadOnly;
}

bool isCard(const PlatformKit::MountedVolume& volume) {
  if (volume.isRootFileSystem || volume.isDiskImage || volume.isNetwork) return false;
  return volume.isRemovable || (volume.isEjectable && !volume.isInternal);
}

Volume driveRow(const PlatformKit::MountedVolume& volume,
                const std::optional<PlatformKit::VolumeSpace>& space) {
  return rowOf(volume, space);
}

Volume cardRow(const PlatformKit::MountedVolume& volume,
               const std::optional<PlatformKit::VolumeSpace>& space) {
  Volume row = rowOf(volume, space);
  row.isRemovable = true;
  return row;
}

}  // namespace DeviceKit
