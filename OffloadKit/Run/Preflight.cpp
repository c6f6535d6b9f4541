#include "OffloadKit/Run/Preflight.h"

#include "DeviceKit/Places.h"
#include "OffloadKit/Copying/LaneCopy.h"
#include "OffloadKit/Records/OffloadError.h"
#include "PlatformKit/Paths.h"

#include <algorithm>

namespace OffloadKit {
namespace {

using PlatformKit::Path;

Path resolved(PlatformKit::FileSystem& fileSystem, const Path& path) {
  const auto answer = fileSystem.resolve(path);
  return answer.ok() ? answer.value() : path;
}

std::uint64_t sumOrLargest(std::uint64_t one, std::uint64_t other) {
  return one + std::min(other, ~one);
}

// Of what the plan sends there: the files, if `isWanted` says so, and the card's image.
template <class IsWanted>
std::uint64_t bytesNeeded(const OffloadPlan& plan, const Path& destination,
                          const std::vector<SourceFile>& files, const IsWanted& isWanted) {
  std::uint64_t needed = 0;
  for (const SourceFile& file : files) {
    if (isWanted(file)) needed = sumOrLargest(needed, file.size);
  }
  const auto first = std::find(plan.destinations.begin(), plan.destinations.end(), destination);
  const auto index = static_cast<std::size_t>(first - plan.destinations.begin());
  const bool getsImage = plan.cardImage && plan.cardImage->destinationIndex == index;
  return getsImage ? sumOrLargest(needed, plan.cardImage->size) : needed;
}

bool fits(std::uint64_t needed, std::uint64_t available) {
  // Subtracting instead of adding: needed can come close to the largest number.
  return available >= kSpaceMargin && available - kSpaceMargin >= needed;
}

}  // namespace

void preflight(PlatformKit::System system, const OffloadPlan& plan,
               const std::vector<SourceFile>& files) {
  const Path source = resolved(system.fileSystem, plan.source);
  const auto card = system.volumes.facts(plan.source);
  const bool isWholeVolume =
      card.identifier && card.root && source == resolved(system.fileSystem, *card.root);

  for (const Path& destination : plan.destinations) {
    const std::string name = DeviceKit::destinationName(system, destination);
    const Path existing = PlatformKit::nearestExisting(system.fileSystem, destination);
    if (!isFolder(system.fileSystem, existing) || system.fileSystem.checkWritable(existing) != 0) {
      throw OffloadError::destinationUnavailable(name);
    }
    const auto drive = system.volumes.facts(existing);
    const bool onTheCard = isWholeVolume && drive.identifier == card.identifier;
    if (onTheCard || PlatformKit::isInside(resolved(system.fileSystem, existing), source)) {
      throw OffloadError::destinationOnSource(name);
    }
    const std::uint64_t available =
        std::max(drive.availableForImportantUse.value_or(0), drive.available.value_or(0));
    // The drive is asked for each file only if not all of them fit.
    const auto all = [](const SourceFile&) { return true; };
    if (fits(bytesNeeded(plan, destination, files, all), available)) continue;
    const bool isNew = existing != destination;
    const std::uint64_t needed = bytesNeeded(plan, destination, files, [&](const SourceFile& file) {
      return isNew || !isThere(system.fileSystem, destination / file.relativePath, file);
    });
    if (!fits(needed, available)) throw OffloadError::notEnoughSpace(name, needed, available);
  }
}

}  // namespace OffloadKit
