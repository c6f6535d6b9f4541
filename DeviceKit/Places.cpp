#include "DeviceKit/Places.h"

#include "PlatformKit/Paths.h"

#include <algorithm>

namespace DeviceKit {

using PlatformKit::lastComponent;

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

std::string destinationName(PlatformKit::System system, const PlatformKit::Path& destination) {
  const auto existing = PlatformKit::nearestExisting(system.fileSystem, destination);
  const auto facts = system.volumes.facts(existing);
  if (!facts.name) return destination.native();
  return *facts.name + " (" + lastComponent(destination) + ")";
}

std::uint64_t freeSpace(PlatformKit::System system, const PlatformKit::Path& item) {
  const auto facts = system.volumes.facts(item);
  return std::max(facts.availableForImportantUse.value_or(0), facts.available.value_or(0));
}

}  // namespace DeviceKit
