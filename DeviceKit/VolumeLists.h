#pragma once

#include "PlatformKit/MountedVolumes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace DeviceKit {

/// One mounted volume as a row that people choose from; `url` is its identity.
struct Volume {
  PlatformKit::Path url;       ///< where it is mounted
  std::string name;            ///< bytes as its label has them, UTF-8 if all is well
  std::int64_t capacity = 0;   ///< bytes; 0 when unknown
  std::int64_t available = 0;  ///< bytes free to this user when it was listed; 0 when unknown
  bool isRemovable = false;    ///< removable medium; always so for cards

  friend bool operator==(const Volume&, const Volume&) = default;
};

/// Whether it can be copied to: not the root file system, not internal, not read-only. Any thread.
bool isDrive(const PlatformKit::MountedVolume& volume);

/// Whether it can be offloaded as a card: not the root file system, a removable medium or an
/// ejectable volume that is not internal, and neither a disk image nor a network volume. Any
/// thread.
bool isCard(const PlatformKit::MountedVolume& volume);

/// The volume as a row in the list of drives. Any thread.
Volume driveRow(const PlatformKit::MountedVolume& volume,
                const std::optional<PlatformKit::VolumeSpace>& space);

/// The volume as a row in the list of cards. Any thread.
Volume cardRow(const PlatformKit::MountedVolume& volume,
               const std::optional<PlatformKit::VolumeSpace>& space);

}  // namespace DeviceKit
