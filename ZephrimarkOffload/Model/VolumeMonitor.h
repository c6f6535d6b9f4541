#pragma once

#include "DeviceKit/VolumeLists.h"
#include "ZephrimarkOffload/Model/Background.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include <QTimer>

namespace ZephrimarkOffload {

/// The mounted volumes as cards and drives, listed in the background. Main thread.
class VolumeMonitor {
 public:
  /// `changed` is called with every new state of the lists, first when all volumes have told their
  /// sizes or a moment has passed, then again for each that was late. `gone` is the path that
  /// `refresh` was asked about, when nothing is there any more; it is told once. Never within a
  /// call of this class. `background` outlives this object.
  using Changed = std::function<void(const std::optional<PlatformKit::Path>& gone)>;
  VolumeMonitor(Background& background, Changed changed);

  /// Lists anew and looks whether `source` is still there; an empty path asks about none.
  void refresh(const PlatformKit::Path& source);

  /// As they were listed last; empty before the first time.
  [[nodiscard]] const std::vector<DeviceKit::Volume>& cards() const { return cards_; }
  [[nodiscard]] const std::vector<DeviceKit::Volume>& drives() const { return drives_; }

  /// What tells the volume mounted at `root` apart; none until it has answered.
  [[nodiscard]] std::optional<PlatformKit::VolumeIdentifier> identifier(
      const PlatformKit::Path& root) const;

 private:
  enum class Presence { unknown, there, gone };

  void listed(const std::vector<PlatformKit::MountedVolume>& volumes);
  void publishIfComplete();
  void publish();

  Background& background_;
  Changed changed_;
  std::vector<DeviceKit::Volume> cards_;
  std::vector<DeviceKit::Volume> drives_;
  std::map<PlatformKit::Path, VolumeAnswers> answers_;  // by root
  // Of the round that was asked last:
  int round_ = 0;
  std::optional<std::vector<PlatformKit::MountedVolume>> volumes_;
  std::set<PlatformKit::Path> waiting_;  // roots without an answer
  PlatformKit::Path source_;
  Presence presence_ = Presence::there;
  QTimer patience_;
};

}  // namespace ZephrimarkOffload
