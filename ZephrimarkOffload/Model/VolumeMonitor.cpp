#include "ZephrimarkOffload/Model/VolumeMonitor.h"

#include <algorithm>
#include <chrono>

namespace ZephrimarkOffload {
namespace {

using PlatformKit::MountedVolume;
using PlatformKit::Path;

// Longer than a healthy volume takes, shorter than people wait without wondering.
constexpr std::chrono::milliseconds kPatience{300};

bool isOffered(const MountedVolume& volume) {
  return DeviceKit::isDrive(volume) || DeviceKit::isCard(volume);
}

}  // namespace

VolumeMonitor::VolumeMonitor(Background& background, Changed changed)
    : background_(background), changed_(std::move(changed)) {
  patience_.setSingleShot(true);
  patience_.setInterval(kPatience);
  patience_.callOnTimeout([this] { publish(); });
}

void VolumeMonitor::refresh(const Path& source) {
  volumes_.reset();
  source_ = source;
  presence_ = source.empty() ? Presence::there : Presence::unknown;
  patience_.start();
  // An answer to a question from before an event tells of a state that is past.
  const int round = ++round_;
  background_.ask(
      "volumes", [](DiskQueries& disks) { return disks.volumes(); },
      [this, round](const std::vector<MountedVolume>& volumes) {
        if (round == round_) listed(volumes);
      });
  if (source.empty()) return;
  background_.ask(
      "exists " + source.native(), [source](DiskQueries& disks) { return disks.exists(source); },
      [this, round](bool exists) {
        if (round != round_) return;
        presence_ = exists ? Presence::there : Presence::gone;
        publishIfComplete();
      });
}

void VolumeMonitor::listed(const std::vector<MountedVolume>& volumes) {
  volumes_ = volumes;
  waiting_.clear();
  for (const MountedVolume& volume : volumes) {
    if (isOffered(volume)) waiting_.insert(volume.root);
  }
  // What is known from before is shown until there is something newer.
  std::erase_if(answers_, [this](const auto& answer) { return !waiting_.contains(answer.first); });
  for (const Path& offered : std::set(waiting_)) {
    background_.ask(
        "volume " + offered.native(),
        [root = offered](DiskQueries& disks) { return disks.volume(root); },
        [this, root = offered](const VolumeAnswers& answers) {
          if (waiting_.erase(root) == 0 && !answers_.contains(root)) return;
          answers_[root] = answers;
          publishIfComplete();
        });
  }
  publishIfComplete();
}

void VolumeMonitor::publishIfComplete() {
  const bool isComplete = volumes_ && presence_ != Presence::unknown && waiting_.empty();
  // After the moment has passed, each late answer counts by itself.
  if (isComplete || !patience_.isActive()) publish();
}

void VolumeMonitor::publish() {
  if (!volumes_) return;
  patience_.stop();
  cards_.clear();
  drives_.clear();
  for (const MountedVolume& volume : *volumes_) {
    const auto answers = answers_.find(volume.root);
    const auto space = answers == answers_.end() ? std::nullopt : answers->second.space;
    if (DeviceKit::isDrive(volume)) drives_.push_back(DeviceKit::driveRow(volume, space));
    if (DeviceKit::isCard(volume)) cards_.push_back(DeviceKit::cardRow(volume, space));
  }
  const bool isGone = presence_ == Presence::gone;
  // Told once: what is chosen after that is asked about anew.
  if (isGone) presence_ = Presence::there;
  changed_(isGone ? std::optional(source_) : std::nullopt);
}

std::optional<PlatformKit::VolumeIdentifier> VolumeMonitor::identifier(const Path& root) const {
  const auto answers = answers_.find(root);
  return answers == answers_.end() ? std::nullopt : answers->second.identifier;
}

}  // namespace ZephrimarkOffload
