#include "OffloadKit/Places.h"

#include "OffloadKit/ErrorSentences.h"

#include <algorithm>

namespace OffloadKit {

bool isVolumeRoot(PlatformKit::System system, const PlatformKit::Path& folder) {
  const auto resolved = system.fileSystem.resolve(folder);
  if (!resolved.ok()) return false;
  const auto root = system.volumes.facts(resolved.value()).root;
  if (!root) return false;
  const auto resolvedRoot = system.fileSystem.resolve(*root);
  return resolvedRoot.ok() && resolvedRoot.value() == resolved.value();
}

std::string volumeName(PlatformKit::System system, const PlatformKit::Path& item) {
  return system.volumes.facts(item).name.value_or(lastComponent(item));
}

std::string sourceName(PlatformKit::System system, const PlatformKit::Path& source) {
  return isVolumeRoot(system, source) ? volumeName(system, source) : lastComponent(source);
}

std::optional<PlatformKit::VolumeIdentifier> volumeOf(PlatformKit::FileSystem& fileSystem,
                                                      const PlatformKit::Path& folder) {
  const auto existing = fileSystem.resolve(nearestExisting(fileSystem, folder));
  if (!existing.ok()) return std::nullopt;
  // From within: a volume that is mounted on demand is mounted by this.
  const auto status = fileSystem.status(existing.value() / ".");
  if (!status.ok()) return std::nullopt;
  return PlatformKit::VolumeIdentifier{status.value().identity.volume};
}

std::uint64_t freeSpace(PlatformKit::System system, const PlatformKit::Path& item) {
  const auto facts = system.volumes.facts(item);
  return std::max(facts.availableForImportantUse.value_or(0), facts.available.value_or(0));
}

}  // namespace OffloadKit
