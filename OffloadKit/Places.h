#pragma once

#include "PlatformKit/System.h"

#include <cstdint>
#include <optional>
#include <string>

namespace OffloadKit {

/// Where sources and destinations lie. Nothing here fails: what cannot be read gives the neutral
/// value named. All of it asks the volume, which can block for long when that is a network's. Any
/// thread.

/// Whether a volume is mounted at this folder; false when that cannot be told.
bool isVolumeRoot(PlatformKit::System system, const PlatformKit::Path& folder);

/// The name of the volume that the item lies on, else the item's last component. Bytes as given.
std::string volumeName(PlatformKit::System system, const PlatformKit::Path& item);

/// How people know a source: the volume's name when it is a whole volume that has one, else its
/// last component.
std::string sourceName(PlatformKit::System system, const PlatformKit::Path& source);

/// The volume that `folder` lies on or would lie on: of its nearest ancestor that is there. None when
/// that cannot be told.
std::optional<PlatformKit::VolumeIdentifier> volumeOf(PlatformKit::FileSystem& fileSystem,
                                                      const PlatformKit::Path& folder);

/// Bytes free to this user on the volume of the item, 0 when that cannot be told.
std::uint64_t freeSpace(PlatformKit::System system, const PlatformKit::Path& item);

}  // namespace OffloadKit
