#include "OffloadKit/Copying/DestinationHealth.h"

#include "DeviceKit/Places.h"
#include "PlatformKit/Paths.h"

#include <cerrno>

namespace OffloadKit {

using PlatformKit::Path;

bool endsTheDrive(int error) {
  return error == EIO || error == ENXIO || error == ENODEV || error == ENOSPC;
}

DestinationHealth::DestinationHealth(PlatformKit::System system, const OffloadPlan& plan)
    : system_(system) {
  for (std::size_t i = 0; i < plan.destinations.size(); ++i) {
    const Path& folder = plan.destinations[i];
    const auto facts =
        system.volumes.facts(PlatformKit::nearestExisting(system.fileSystem, folder));
    Drive& drive = drives_.emplace_back();
    drive.folder = folder;
    drive.device = facts.device;
    drive.moveKeepsContent = facts.moveKeepsContent;
    if (i < plan.chosen.size()) drive.chosen = plan.chosen[i];
    drive.volume = PlatformKit::volumeOf(system.fileSystem, folder);
  }
}

void DestinationHealth::settle() {
  for (Drive& drive : drives_) {
    const auto resolved = system_.fileSystem.resolve(drive.folder);
    if (resolved.ok()) drive.settled = resolved.value();
  }
}

bool DestinationHealth::isInPlace(std::size_t destination) const {
  const Drive& drive = drives_[destination];
  if (!drive.settled) {
    return isOn(drive.chosen.folder, drive.chosen.volume) && isOn(drive.folder, drive.volume);
  }
  const auto resolved = system_.fileSystem.resolve(drive.folder);
  if (!resolved.ok() || resolved.value() != *drive.settled) return false;
  const auto status = system_.fileSystem.status(resolved.value());
  return status.ok() && (!drive.volume || status.value().identity.volume == drive.volume->value);
}

bool DestinationHealth::isOn(const Path& folder,
                             std::optional<PlatformKit::VolumeIdentifier> volume) const {
  return !volume || PlatformKit::volumeOf(system_.fileSystem, folder) == volume;
}

bool DestinationHealth::isPresent(std::size_t destination) const {
  return isInPlace(destination) && !isPulled(destination);
}

void DestinationHealth::checkPlace(std::size_t destination) {
  if (!isInPlace(destination)) giveUp(destination, {Reason(Reason::Kind::disconnected), true});
}

Reason DestinationHealth::contentError(std::size_t destination, int error) {
  Reason reason = otherError(destination, error);
  if (endsTheDrive(error)) giveUp(destination, {reason, error == ENODEV || error == ENXIO});
  return reason;
}

Reason DestinationHealth::otherError(std::size_t destination, int error) {
  if (!isPulled(destination)) return Reason::ofDrive(error);
  return giveUp(destination, {Reason(Reason::Kind::disconnected), true});
}

const Reason& DestinationHealth::giveUp(std::size_t destination, GivenUp givenUp) {
  const std::lock_guard lock(mutex_);
  const bool isDisconnected = givenUp.isDisconnected;
  GivenUp& first = givenUp_.emplace(destination, std::move(givenUp)).first->second;
  // One that was full before may go as well.
  if (isDisconnected) first.isDisconnected = true;
  return first.reason;
}

const Reason* DestinationHealth::givenUp(std::size_t destination) const {
  const std::lock_guard lock(mutex_);
  const auto found = givenUp_.find(destination);
  return found == givenUp_.end() ? nullptr : &found->second.reason;
}

bool DestinationHealth::isDisconnected(std::size_t destination) const {
  const std::lock_guard lock(mutex_);
  const auto found = givenUp_.find(destination);
  return found != givenUp_.end() && found->second.isDisconnected;
}

std::map<std::size_t, Reason> DestinationHealth::errors() const {
  std::map<std::size_t, Reason> errors;
  for (const auto& [destination, givenUp] : givenUp_) errors.emplace(destination, givenUp.reason);
  return errors;
}

bool DestinationHealth::isPulled(std::size_t destination) const {
  const auto& device = drives_[destination].device;
  return device && system_.volumes.isGone(*device);
}

}  // namespace OffloadKit
