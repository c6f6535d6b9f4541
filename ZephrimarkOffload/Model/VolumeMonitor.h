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

/// Lists the mounted volumes as cards and drives, in the background. Main thread.
class VolumeBoard {
 public:
  struct Lists {
    std::vector<DeviceKit::Volume> cards;
    std::vector<DeviceKit::Volume> drives;
    /// The path that was asked about, when nothing is there any more.
    std::optional<PlatformKit::Path> gone;
  };

  /// `publish` is called with every new state, first when all volumes have told their sizes or a
  /// moment has passed, then again for each that was late; never within a call of this class.
  VolumeBoard(Background& background, std::function<void(const Lists&)> publish);

  /// Lists anew and looks whether `source` is still there.
  void refresh(const std::optional<PlatformKit::Path>& source);

  /// What tells the volume mounted at `root` apart, if it has answered.
  [[nodiscard]] std::optional<PlatformKit::VolumeIdentifier> identifier(
      const PlatformKit::Path& root) const;

 private:
  void listed(const std::vector<PlatformKit::MountedVolume>& volumes);
  void publishIfComplete();
  void tell();

  Background& background_;
  std::function<void(const Lists&)> publish_;
  std::vector<PlatformKit::MountedVolume> volumes_;
  std::map<PlatformKit::Path, VolumeAnswers> answers_;  // by root
  std::set<PlatformKit::Path> waiting_;                 // roots without an answer in this round
  std::optional<PlatformKit::Path> source_;             // asked about last
  std::optional<PlatformKit::Path> gone_;
  int round_ = 0;
  bool isListed_ = false;
  bool isSourceKnown_ = false;
  QTimer patience_;
};

}  // namespace ZephrimarkOffload
