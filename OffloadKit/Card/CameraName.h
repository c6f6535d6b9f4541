#pragma once

#include "PlatformKit/FileSystem.h"

#include <string>

namespace OffloadKit {

/// The camera brand that the folders of the card at `card` tell, such as "Canon"; "Camera" when
/// they tell none. Errors count as folders that are not there. Any thread; a dead card can block
/// for long.
[[nodiscard]] std::string cameraName(PlatformKit::FileSystem& fileSystem,
                                     const PlatformKit::Path& card);

}  // namespace OffloadKit
