#pragma once

#include "PlatformKit/MountedVolumes.h"

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace DeviceKit {

/// The sizes of the volumes mounted at `roots`, in their order. All are asked at once, each on a
/// thread of its own, since a dead network volume may never answer; whoever has not answered within
/// `limit` has none. Its thread goes on waiting and keeps `volumes` alive. Any thread; several at
/// once.
[[nodiscard]] std::vector<std::optional<PlatformKit::VolumeSpace>> volumeSpaces(
    const std::shared_ptr<PlatformKit::MountedVolumes>& volumes,
    const std::vector<PlatformKit::Path>& roots, std::chrono::milliseconds limit);

}  // namespace DeviceKit
