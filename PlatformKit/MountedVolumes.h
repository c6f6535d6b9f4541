#pragma once

#include "PlatformKit/Volumes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace PlatformKit {

/// One mounted volume as the system lists it.
struct MountedVolume {
  Path root;                           ///< where it is mounted
  std::string name;                    ///< its label, else the last component of `root`
  std::optional<DeviceNumber> device;  ///< none for network volumes

  bool isRootFileSystem = false;  ///< mounted at /
  bool isReadOnly = false;
  bool isNetwork = false;    ///< another computer's; asking it anything can block for long
  bool isDiskImage = false;  ///< on a file that is attached as a disk
  bool isInternal = false;   ///< every disk under it is built in, or runs the system
  bool isRemovable = false;  ///< the medium can be taken out, and the system does not run from it
  bool isEjectable = false;  ///< the same, or the drive can be unplugged

  friend bool operator==(const MountedVolume&, const MountedVolume&) = default;
};

/// How large a volume is and what is free on it for this user, in bytes.
struct VolumeSpace {
  std::uint64_t capacity = 0;
  std::uint64_t available = 0;
  friend bool operator==(const VolumeSpace&, const VolumeSpace&) = default;
};

/// The mounted volumes. Nothing here throws: what cannot be read shrinks the answer. Any thread.
class MountedVolumes {
 public:
  virtual ~MountedVolumes() = default;

  /// The volumes that people know of, in the order of mounting: none of the system's own (file
  /// systems without a medium, /boot, what lies below /snap and /var), none whose device is gone,
  /// and each device once. Asks no volume anything, so it never waits for one.
  [[nodiscard]] virtual std::vector<MountedVolume> list() = 0;

  /// The volume that holds the item at `existing`, hidden ones included; none when that cannot be
  /// found out. Can block as long as the volume does.
  [[nodiscard]] virtual std::optional<MountedVolume> holding(const Path& existing) = 0;

  /// Sizes of the volume mounted at `root`. Can block as long as the volume does.
  [[nodiscard]] virtual std::optional<VolumeSpace> space(const Path& root) = 0;
};

}  // namespace PlatformKit
