#include "ZephrimarkOffload/Model/VolumeBoard.h"

#include <algorithm>
#include <chrono>
#include <utility>

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

VolumeBoard::VolumeBoard(Background& background, std::function<void(const Lists&)> publish)
    : background_(background), publish_(std::move(publish)) {
  patience_.setSingleShot(true);
  patience_.setInterval(kPatience);
  patience_.callOnTimeout([this] { tell(); });
}

void VolumeBoard::refresh(const std::optional<Path>& source) {
  isListed_ = false;
  isSourceKnown_ = !source;
  source_ = source;
  gone_.reset();
  patience_.start();
  // An answer to a question from before an event tells of a state that is past.
  const int round = ++round_;
  background_.ask(
      "volumes", [](DiskQuestions& questions) { return questions.volumes(); },
      [this, round](const std::vector<MountedVolume>& volumes) {
        if (round == round_) listed(volumes);
      });
  if (!source) return;
  background_.ask(
      "exists " + source->native(),
      [path = *source](DiskQuestions& questions) { return questions.exists(path); },
      [this, round, path = *source](bool exists) {
        if (round != round_) return;
        isSourceKnown_ = true;
        if (!exists) gone_ = path;
        publishIfComplete();
      });
}

void VolumeBoard::listed(const std::vector<MountedVolume>& volumes) {
  volumes_ = volumes;
  isListed_ = true;
  waiting_.clear();
  for (const MountedVolume& volume : volumes_) {
    if (isOffered(volume)) waiting_.insert(volume.root);
  }
  // What is known from before is shown until there is something newer.
  std::erase_if(answers_, [this](const auto& answer) { return !waiting_.contains(answer.first); });
  for (const Path& offered : std::set(waiting_)) {
    background_.ask(
        "volume " + offered.native(),
        [root = offered](DiskQuestions& questions) { return questions.volume(root); },
        [this, root = offered](const VolumeAnswers& answers) {
          if (waiting_.erase(root) == 0 && !answers_.contains(root)) return;
          answers_[root] = answers;
          publishIfComplete();
        });
  }
  publishIfComplete();
}

void VolumeBoard::publishIfComplete() {
  const bool isComplete = isListed_ && isSourceKnown_ && waiting_.empty();
  // After the moment has passed, each late answer counts by itself.
  if (isComplete || (isListed_ && !patience_.isActive())) tell();
}

void VolumeBoard::tell() {
  patience_.stop();
  if (!isListed_) return;
  Lists lists;
  for (const MountedVolume& volume : volumes_) {
    const auto answers = answers_.find(volume.root);
    const auto space = answers == answers_.end() ? std::nullopt : answers->second.space;
    if (DeviceKit::isDrive(volume)) lists.drives.push_back(DeviceKit::driveRow(volume, space));
    if (DeviceKit::isCard(volume)) lists.cards.push_back(DeviceKit::cardRow(volume, space));
  }
  // Told once: what is chosen after that is asked about anew.
  lists.gone = std::exchange(gone_, std::nullopt);
  publish_(lists);
}

std::optional<PlatformKit::VolumeIdentifier> VolumeBoard::identifier(const Path& root) const {
  const auto answers = answers_.find(root);
  return answers == answers_.end() ? std::nullopt : answers->second.identifier;
}

}  // namespace ZephrimarkOffload
