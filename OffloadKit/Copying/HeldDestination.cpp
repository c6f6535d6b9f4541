#include "OffloadKit/Copying/HeldDestination.h"

#include "DeviceKit/Places.h"
#include "OffloadKit/Records/OffloadError.h"
#include "PlatformKit/Paths.h"

#include <cerrno>

namespace OffloadKit {

using PlatformKit::Mounts;
using PlatformKit::Path;

HeldDestination::HeldDestination(PlatformKit::System system, const OffloadPlan& plan,
                                 std::size_t index)
    : system_(system), plan_(plan), index_(index) {
  const Path existing = PlatformKit::nearestExisting(system.fileSystem, path());
  const auto facts = system.volumes.facts(existing);
  device_ = facts.device;
  moveKeepsContent_ = facts.moveKeepsContent;
  volume_ = PlatformKit::volumeOf(system.fileSystem, path());
}

void HeldDestination::open() {
  const auto unavailable = [this] {
    return OffloadError::destinationUnavailable(DeviceKit::destinationName(system_, path()));
  };
  if (PlatformKit::createFolders(system_.fileSystem, path()) != 0) throw unavailable();
  auto held = system_.fileSystem.openFolder(path(), Mounts::refused);
  if (!held.ok()) throw unavailable();
  const auto status = held.value()->status({});
  if (!status.ok()) throw unavailable();
  identity_ = status.value().identity;
  // Where the folders were chosen is looked at behind the opening: what is held now, stays.
  if (!isInPlace() || (volume_ && identity_.volume != volume_->value)) throw unavailable();
  folder_ = std::move(held.value());
  readsThroughCache_ = system_.volumes.facts(path()).readsThroughCache;
}

bool HeldDestination::isInPlace() const {
  if (!folder_) {
    const bool wasChosen = index_ < plan_.chosen.size();
    const ChosenPlace chosen = wasChosen ? plan_.chosen[index_] : ChosenPlace{};
    return isOn(chosen.folder, chosen.volume) && isOn(path(), volume_);
  }
  // Through links, as people would reach it.
  const auto there = system_.fileSystem.status(path() / ".");
  if (there.ok()) return there.value().identity == identity_;
  return there.error() != ENOENT && there.error() != ENOTDIR;
}

bool HeldDestination::isOn(const Path& folder,
                           std::optional<PlatformKit::VolumeIdentifier> volume) const {
  return !volume || PlatformKit::volumeOf(system_.fileSystem, folder) == volume;
}

void HeldDestination::checkPlace() {
  if (!isInPlace()) giveUp(Reason(Reason::Kind::disconnected), true);
}

Reason HeldDestination::contentError(int error) {
  Reason reason = otherError(error);
  if (endsTheDrive(error)) giveUp(reason, error == ENODEV || error == ENXIO);
  return reason;
}

Reason HeldDestination::otherError(int error) {
  if (!isPulled()) return Reason::ofDrive(error);
  return giveUp(Reason(Reason::Kind::disconnected), true);
}

const Reason& HeldDestination::giveUp(Reason reason, bool isDisconnected) {
  const std::lock_guard lock(mutex_);
  if (!givenUp_) givenUp_ = std::move(reason);
  // One that was full before may go as well.
  if (isDisconnected) isDisconnected_ = true;
  return *givenUp_;
}

const Reason* HeldDestination::givenUp() const {
  const std::lock_guard lock(mutex_);
  return givenUp_ ? &*givenUp_ : nullptr;
}

bool HeldDestination::isDisconnected() const {
  const std::lock_guard lock(mutex_);
  return isDisconnected_;
}

bool HeldDestination::isPulled() const {
  return device_ && system_.volumes.isGone(*device_);
}

bool endsTheDrive(int error) {
  return error == EIO || error == ENXIO || error == ENODEV || error == ENOSPC;
}

}  // namespace OffloadKit
