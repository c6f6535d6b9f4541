#pragma once

#include "PlatformKit/Volumes.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace PlatformKit {

/// One line of /proc/self/mountinfo (proc(5)), unescaped.
struct Mount {
  DeviceNumber device;  ///< as the kernel lists it; major 0 when no block device stands behind it
  std::string root;     ///< the folder of the volume that is mounted: "/" for all of it
  Path point;
  std::string fileSystem;  ///< such as "ext4", "fuseblk"
  std::string source;      ///< such as "/dev/sdb1"
  bool isReadOnly;         ///< here, or the volume everywhere
};

/// The numbers in a text such as "8:17"; none when it is anything else. Any thread.
std::optional<DeviceNumber> parseDeviceNumber(std::string_view text);

/// The mounts in the text, in its order, which is the order of mounting. Lines that do not have the
/// form of mountinfo are left out. Any thread.
std::vector<Mount> parseMountInfo(std::string_view text);

/// The mount that holds `path` (absolute, without links): the deepest one, and of several at one
/// place the last. Null when there is none. Any thread.
const Mount* mountHolding(const std::vector<Mount>& mounts, const Path& path);

}  // namespace PlatformKit
