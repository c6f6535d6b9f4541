#pragma once

#include "PlatformKit/FileSystem.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace PlatformKit {

/// What the system knows of one whole disk.
struct DiskFacts {
  std::string identifier;  ///< device name, such as "sdb", "mmcblk0"
  std::string mediaName;   ///< maker and model as the device tells them; may be empty
  std::uint64_t sizeBytes = 0;
  /// Non-empty names of the disk's volumes, in the order of its partitions.
  std::vector<std::string> volumeNames;

  bool isDiskImage = false;       ///< a file that is attached as a disk
  bool isVirtual = false;         ///< made up by the system, no hardware of its own
  bool isSystemDisk = false;      ///< holds /, /usr, /home or /boot
  bool isInternal = false;        ///< built in, by its connection
  bool isRemovableMedia = false;  ///< the medium can be taken out of its drive
  bool isHotPluggable = false;    ///< the drive itself can be unplugged
  bool isEjectable = false;       ///< removable medium or hot-pluggable

  friend bool operator==(const DiskFacts&, const DiskFacts&) = default;
};

/// Facts about whole disks. Nothing here fails: what cannot be read shrinks the answer. Any thread.
class Disks {
 public:
  virtual ~Disks() = default;

  /// All whole disks with a medium in them, in the order of their identifiers.
  [[nodiscard]] virtual std::vector<DiskFacts> list() = 0;

  /// The whole disk under the volume that holds the item at `path`, also below encryption and
  /// logical volumes; none for network and memory volumes, and for volumes that span several disks.
  [[nodiscard]] virtual std::optional<DiskFacts> holding(const Path& path) = 0;
};

}  // namespace PlatformKit
