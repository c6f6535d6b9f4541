#pragma once

#include "PlatformKit/System.h"

#include <cstdint>
#include <string>

namespace DeviceKit {

/// How people know the places that cards, folders and destinations are, and how much room is there.
/// Nothing here fails: what cannot be read gives the neutral value named. All of it asks the
/// volume, which can block for long when that is a network's. Any thread.

/// Whether a volume is mounted at this folder; false when that cannot be told.
[[nodiscard]] bool isVolumeRoot(PlatformKit::System system, const PlatformKit::Path& folder);

/// The name of the volume that the item lies on, else the item's last component. Bytes as given.
[[nodiscard]] std::string volumeName(PlatformKit::System system, const PlatformKit::Path& item);

/// How people know a source: the volume's name when it is a whole volume that has one, else its
/// last component.
[[nodiscard]] std::string sourceName(PlatformKit::System system, const PlatformKit::Path& source);

/// How people know a destination: the name of its volume and its own last component, as in
/// "T7 Shield (2026-10-07_A001)"; its path where the volume has no name. It need not exist yet.
[[nodiscard]] std::string destinationName(PlatformKit::System system,
                                          const PlatformKit::Path& destination);

/// Bytes free to this user on the volume of the item, 0 when that cannot be told.
[[nodiscard]] std::uint64_t freeSpace(PlatformKit::System system, const PlatformKit::Path& item);

}  // namespace DeviceKit
