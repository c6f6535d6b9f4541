#pragma once

#include "PlatformKit/FileSystem.h"

#include <compare>
#include <cstdint>
#include <optional>
#include <string>

namespace PlatformKit {

/// Tells mounted volumes apart (the st_dev of their items).
struct VolumeIdentifier {
  std::uint64_t value = 0;
  friend auto operator<=>(VolumeIdentifier, VolumeIdentifier) = default;
};

/// The block device under a volume, by its numbers.
struct DeviceNumber {
  unsigned major = 0;
  unsigned minor = 0;
  friend auto operator<=>(DeviceNumber, DeviceNumber) = default;
};

/// What is known of the volume that holds an item; what could not be read is absent.
struct VolumeFacts {
  std::optional<VolumeIdentifier> identifier;
  std::optional<Path> root;  ///< where the volume is mounted
  std::optional<std::string>
      name;  ///< its label, else the mount point's name; UTF-8 if all is well
  std::optional<std::uint64_t> available;  ///< bytes free to this user
  std::optional<std::uint64_t>
      availableForImportantUse;        ///< bytes, where the system tells them apart
  std::optional<DeviceNumber> device;  ///< none for network and memory volumes
  /// Its file system runs as a process that reads the device through the computer's cache, as those
  /// for exFAT and NTFS do: what is read there need not come from the drive.
  bool readsThroughCache = false;
  /// A file that was flushed and then moved is whole under its new name after a power cut. False
  /// also where nobody has tried: FAT writes the new name without the file's size, and leaves the
  /// size to the file's next flush.
  bool moveKeepsContent = false;
};

/// Facts about mounted volumes. Any thread; a dead network volume can block for long.
class Volumes {
 public:
  virtual ~Volumes() = default;

  /// The volume that holds the item at `existing`, which must be there.
  [[nodiscard]] virtual VolumeFacts facts(const Path& existing) = 0;

  /// Whether the device is no longer part of the computer: pulled or switched off. Its volume may
  /// well go on being listed as mounted.
  [[nodiscard]] virtual bool isGone(DeviceNumber device) = 0;
};

}  // namespace PlatformKit
