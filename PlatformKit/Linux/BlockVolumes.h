#pragma once

#include "PlatformKit/Linux/MountTable.h"
#include "PlatformKit/Volumes.h"

#include <optional>
#include <string>

namespace PlatformKit {

/// The device's numbers as the kernel writes them, such as "8:17". Any thread.
std::string numbersText(DeviceNumber device);

/// The block device under a mount; none for network and memory volumes. Asks only the folder of
/// devices, never a volume. Any thread.
std::optional<DeviceNumber> blockDeviceOf(const Mount& mount);

/// The label of the volume on the device, from udev's folder of facts (/run/udev/data), as the
/// bytes it has on the medium; none when it has none or udev does not tell. Any thread.
std::optional<std::string> volumeLabel(const Path& udevData, DeviceNumber device);

/// The mounts listed in the file, in their order; none when it cannot be read. Any thread.
std::vector<Mount> readMounts(const Path& mountInfo);

}  // namespace PlatformKit
