#pragma once

#include "PlatformKit/FileSystem.h"

namespace OffloadKit {

/// Whether the file lies in the destination folder by way of a link out of it. Any thread.
bool leadsOut(PlatformKit::FileSystem& fileSystem, const PlatformKit::Path& file,
              const PlatformKit::Path& destination);

}  // namespace OffloadKit
