#include "ZephrimarkOffload/Demo/ScriptedDisks.h"

#include "PlatformKit/Paths.h"

#include <algorithm>

namespace ZephrimarkOffload::Demo {
namespace {

using PlatformKit::MountedVolume;
using PlatformKit::Path;
using PlatformKit::VolumeIdentifier;

constexpr SourceCount kFolderContent{240, 12'400'000'000};
constexpr std::uint64_t kRoomOnThisComputer = 412'600'000'000;
constexpr const char* kMediaFolder = "/media/";
constexpr VolumeIdentifier kThisComputer{1};

// Of drives that never change, so that their places tell them apart.
VolumeIdentifier identifierOf(std::size_t drive) {
  return {100 + drive};
}

MountedVolume mountedCard(const ScriptedCard& card) {
  MountedVolume volume;
  volume.root = card.root;
  volume.name = card.name;
  volume.isRemovable = volume.isEjectable = true;
  volume.isReadOnly = true;  // its switch is on lock: a card that can be written to is a drive too
  return volume;
}

MountedVolume mountedDrive(const ScriptedDrive& drive) {
  MountedVolume volume;
  volume.root = drive.root;
  volume.name = drive.name;
  return volume;
}

PlatformKit::VolumeSpace spaceOf(const ScriptedCard& card) {
  return {card.capacity, card.capacity - card.content.bytes};
}

}  // namespace

const ScriptedCard* ScriptedDisks::card(const Path& root) const {
  const auto found = std::find_if(cards_.begin(), cards_.end(),
                                  [&](const ScriptedCard& card) { return card.root == root; });
  return found == cards_.end() ? nullptr : &*found;
}

std::vector<MountedVolume> ScriptedDisks::volumes() {
  const std::lock_guard held(lock_);
  std::vector<MountedVolume> volumes;
  for (const ScriptedCard& card : cards_) volumes.push_back(mountedCard(card));
  for (const ScriptedDrive& drive : drives_) volumes.push_back(mountedDrive(drive));
  return volumes;
}

VolumeAnswers ScriptedDisks::volume(const Path& root) {
  const std::lock_guard held(lock_);
  if (const ScriptedCard* found = card(root)) return {spaceOf(*found), std::nullopt};
  for (std::size_t i = 0; i < drives_.size(); ++i) {
    if (drives_[i].root != root) continue;
    return {PlatformKit::VolumeSpace{drives_[i].capacity, drives_[i].available}, identifierOf(i)};
  }
  return {};
}

bool ScriptedDisks::exists(const Path& path) {
  const std::lock_guard held(lock_);
  return card(path) != nullptr || path.native().rfind(kMediaFolder, 0) != 0 ||
         std::any_of(drives_.begin(), drives_.end(), [&](const ScriptedDrive& drive) {
           return PlatformKit::isInside(path, drive.root);
         });
}

SourceFacts ScriptedDisks::source(const Path& path) {
  const std::lock_guard held(lock_);
  SourceFacts facts;
  facts.name = path.filename().native();
  facts.camera = "Camera";
  if (const ScriptedCard* found = card(path)) {
    facts = {found->name, found->camera, true, spaceOf(*found),
             DeviceKit::WholeDisk{"sdz", "/dev/sdz", found->capacity}};
  }
  return facts;
}

SourceCount ScriptedDisks::count(const Path& path) {
  const std::lock_guard held(lock_);
  const ScriptedCard* found = card(path);
  return found != nullptr ? found->content : kFolderContent;
}

DestinationFacts ScriptedDisks::destination(const Path& path) {
  for (std::size_t i = 0; i < drives_.size(); ++i) {
    const ScriptedDrive& drive = drives_[i];
    if (!PlatformKit::isInside(path, drive.root)) continue;
    return {true, false, drive.name, drive.available, identifierOf(i), drive.root};
  }
  return {exists(path), true, path.filename().native(), kRoomOnThisComputer, kThisComputer, "/"};
}

std::optional<DeviceKit::Reason> ScriptedDisks::eject(const Path& volume, const std::string& name) {
  std::function<void()> changed;
  {
    const std::lock_guard held(lock_);
    if (card(volume) == nullptr) {
      return DeviceKit::Reason(DeviceKit::Reason::Kind::notMounted, {name});
    }
    cards_.erase(std::remove_if(cards_.begin(), cards_.end(),
                                [&](const ScriptedCard& card) { return card.root == volume; }),
                 cards_.end());
    changed = changed_;
  }
  if (changed) changed();
  return std::nullopt;
}

void ScriptedDisks::start(std::function<void()> changed) {
  const std::lock_guard held(lock_);
  changed_ = std::move(changed);
}

}  // namespace ZephrimarkOffload::Demo
