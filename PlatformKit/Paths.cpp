#include "PlatformKit/Paths.h"

#include <algorithm>

namespace PlatformKit {

bool isInside(const Path& path, const Path& folder) {
  return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first ==
         folder.end();
}

std::string lastComponent(const Path& path) {
  return (path.has_filename() ? path : path.parent_path()).filename().native();
}

Path nearestExisting(FileSystem& fileSystem, const Path& path) {
  // No system call takes a longer path, and to shorten it by one component after the other takes
  // time with the square of its length.
  constexpr std::size_t kLongest = 4096;
  Path current = path;
  if (path.native().size() > kLongest) {
    current = Path(path.native().substr(0, kLongest)).parent_path();
  }
  while (current.has_relative_path() && !fileSystem.resolve(current).ok()) {
    current = current.parent_path();
  }
  return current;
}

std::optional<VolumeIdentifier> volumeOf(FileSystem& fileSystem, const Path& folder) {
  const auto existing = fileSystem.resolve(nearestExisting(fileSystem, folder));
  if (!existing.ok()) return std::nullopt;
  // From within: a volume that is mounted on demand is mounted by this.
  const auto status = fileSystem.status(existing.value() / ".");
  if (!status.ok()) return std::nullopt;
  return VolumeIdentifier{status.value().identity.volume};
}

}  // namespace PlatformKit
