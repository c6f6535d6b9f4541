#include "OffloadKit/Transfer/Links.h"

#include "PlatformKit/Paths.h"

namespace OffloadKit {

using PlatformKit::FileSystem;
using PlatformKit::Path;

bool leadsOut(FileSystem& fileSystem, const Path& file, const Path& destination) {
  const auto folder =
      fileSystem.resolve(PlatformKit::nearestExisting(fileSystem, file.parent_path()));
  const auto inside = fileSystem.resolve(destination);
  if (!folder.ok() || !inside.ok()) return false;
  return !PlatformKit::isInside(folder.value(), inside.value());
}

}  // namespace OffloadKit
