#pragma once

#include "PlatformKit/FileSystem.h"
#include "PlatformKit/Volumes.h"

#include <optional>
#include <string>

namespace PlatformKit {

/// Whether `path` is `folder` or lies below it, by their components alone: nothing is resolved and
/// nothing asked of a file system. Any thread.
[[nodiscard]] bool isInside(const Path& path, const Path& folder);

/// The last component, also of a path that ends in a slash. Bytes as given. Any thread.
[[nodiscard]] std::string lastComponent(const Path& path);

/// The path itself when something is there, else its nearest ancestor that exists, at worst the
/// root. `path` is absolute. Any thread; a dead network volume can block for long.
[[nodiscard]] Path nearestExisting(FileSystem& fileSystem, const Path& path);

/// The volume that `folder` lies on or would lie on: of its nearest ancestor that is there. None
/// when that cannot be told. A volume that is mounted on demand is mounted by this. Any thread; can
/// block for long as above.
[[nodiscard]] std::optional<VolumeIdentifier> volumeOf(FileSystem& fileSystem, const Path& folder);

}  // namespace PlatformKit
