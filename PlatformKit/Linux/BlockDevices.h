#pragma once

#include "PlatformKit/Volumes.h"

#include <string>
#include <vector>

namespace PlatformKit {

/// The items of a folder, links not followed; none when it cannot be read. Any thread.
std::vector<Path> itemsOf(const Path& folder);

/// The first line of a file of facts, without white space at its ends; empty when it cannot be
/// read, as of a device that was just pulled. Any thread.
std::string attributeOf(const Path& folder, const char* name);

/// A decimal number in such a file; 0 when there is none. Any thread.
std::uint64_t numberOf(const Path& folder, const char* name);

/// A block device as the kernel lists it: a whole disk, a part of one, or one made of others.
struct BlockDevice {
  Path folder;  ///< in sysfs, without links
  DeviceNumber number;
  std::uint64_t partition = 0;  ///< its number; 0: not a partition
  std::vector<Path> slaves;     ///< folders of the devices that this one is made of
};

/// Whether a whole device without slaves has no medium either: it is memory, or an array or mapping
/// that has lost all it was made of. Any thread.
bool hasNoMedium(const BlockDevice& device);

/// All block devices of one moment and how they lie on each other. Pointers that it answers are
/// into itself. Its constructor fails for nothing: what cannot be read is not listed. Any thread.
class BlockDevices {
 public:
  /// `sys`: where sysfs is.
  explicit BlockDevices(const Path& sys);

  /// In the order of their numbers.
  [[nodiscard]] const std::vector<BlockDevice>& all() const { return devices_; }

  /// Null when there is no such device.
  [[nodiscard]] const BlockDevice* find(DeviceNumber number) const;

  /// Whether it is not a part (a partition, a boot area) of another device.
  [[nodiscard]] bool isWhole(const BlockDevice& device) const;

  /// The whole devices that bear it, through encryption, logical volumes and arrays: itself, the
  /// one it is a part of, or several. None twice.
  [[nodiscard]] std::vector<const BlockDevice*> bearersOf(const BlockDevice& device) const;

  /// What lies directly on it: its parts in the order of their numbers, then what is made of it.
  [[nodiscard]] std::vector<const BlockDevice*> on(const BlockDevice& device) const;

 private:
  [[nodiscard]] const BlockDevice* find(const Path& folder) const;

  std::vector<BlockDevice> devices_;
};

}  // namespace PlatformKit
