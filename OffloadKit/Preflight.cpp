#include "OffloadKit/Preflight.h"

#include "OffloadKit/CopyTargets.h"
#include "OffloadKit/ErrorSentences.h"
#include "OffloadKit/OffloadError.h"

#include <algorithm>

namespace OffloadKit {
namespace {

using PlatformKit::Path;

Path resolved(PlatformKit::FileSystem& fileSystem, const Path& path) {
  const auto answer = fileSystem.resolve(path);
  return answer.ok() ? answer.value() : path;
}

bool isInside(const Path& path, const Path& folder) {
  return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first ==
         folder.end();
}

// `isNew`: there is no such folder yet, so that no file needs to be looked for.
std::uint64_t bytesNeeded(PlatformKit::FileSystem& fileSystem, const OffloadPlan& plan,
                          const Path& destination, bool isNew,
                          const std::vector<SourceFile>& files) {
  std::uint64_t needed = 0;
  for (const SourceFile& file : files) {
    if (isNew || !alreadyThere(fileSystem, file, destination)) needed += file.size;
  }
  const auto first = std::find(plan.destinations.begin(), plan.destinations.end(), destination);
  const auto index = static_cast<std::size_t>(first - plan.destinations.begin());
  if (plan.cardImage && plan.cardImage->destinationIndex == index) needed += plan.cardImage->size;
  return needed;
}

}  // namespace

void preflight(PlatformKit::System system, const OffloadPlan& plan,
               const std::vector<SourceFile>& files) {
  const Path source = resolved(system.fileSystem, plan.source);
  const auto card = system.volumes.facts(plan.source);
  const bool isWholeVolume =
      card.identifier && card.root && source == resolved(system.fileSystem, *card.root);

  for (const Path& destination : plan.destinations) {
    const std::string name = displayName(system, destination);
    const Path existing = nearestExisting(system.fileSystem, destination);
    if (!isFolder(system.fileSystem, existing) || system.fileSystem.checkWritable(existing) != 0) {
      throw OffloadError::destinationUnavailable(name);
    }
    const auto drive = system.volumes.facts(existing);
    const bool onTheCard = isWholeVolume && drive.identifier == card.identifier;
    if (onTheCard || isInside(resolved(system.fileSystem, existing), source)) {
      throw OffloadError::destinationOnSource(name);
    }
    const std::uint64_t needed =
        bytesNeeded(system.fileSystem, plan, destination, existing != destination, files);
    const std::uint64_t available =
        std::max(drive.availableForImportantUse.value_or(0), drive.available.value_or(0));
    // Subtracting instead of adding: needed can come close to the largest number.
    if (available < kSpaceMargin || available - kSpaceMargin < needed) {
      throw OffloadError::notEnoughSpace(name, needed, available);
    }
  }
}

}  // namespace OffloadKit
