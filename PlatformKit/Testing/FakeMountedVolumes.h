#pragma once

#include "PlatformKit/MountedVolumes.h"

#include <algorithm>
#include <functional>
#include <map>
#include <mutex>
#include <utility>

namespace PlatformKit::Testing {

/// Mounted volumes that a test makes up. Any thread, also while others ask.
class FakeMountedVolumes final : public MountedVolumes {
 public:
  /// From now on these are mounted, in this order.
  void set(std::vector<MountedVolume> listed) {
    const std::lock_guard lock(mutex_);
    listed_ = std::move(listed);
  }
  /// Volumes that only `holding` tells of.
  void setHidden(std::vector<MountedVolume> hidden) {
    const std::lock_guard lock(mutex_);
    hidden_ = std::move(hidden);
  }
  /// From now on the volume has this space; none: it cannot be found out, as at the beginning.
  void setSpace(const Path& root, std::optional<VolumeSpace> space) {
    const std::lock_guard lock(mutex_);
    spaces_[root] = space;
  }
  /// Called before each answer of `space`, and may block like a dead volume. Set it before use.
  std::function<void(const Path& root)> beforeSpace;

  [[nodiscard]] std::vector<MountedVolume> list() override {
    const std::lock_guard lock(mutex_);
    return listed_;
  }
  [[nodiscard]] std::optional<MountedVolume> holding(const Path& existing) override {
    const std::lock_guard lock(mutex_);
    for (Path path = existing;; path = path.parent_path()) {
      for (const auto* volumes : {&listed_, &hidden_}) {
        const auto found = std::find_if(volumes->begin(), volumes->end(),
                                        [&](const auto& volume) { return volume.root == path; });
        if (found != volumes->end()) return *found;
      }
      if (!path.has_relative_path()) return std::nullopt;
    }
  }
  [[nodiscard]] std::optional<VolumeSpace> space(const Path& root) override {
    if (beforeSpace) beforeSpace(root);
    const std::lock_guard lock(mutex_);
    const auto found = spaces_.find(root);
    return found == spaces_.end() ? std::nullopt : found->second;
  }

 private:
  std::mutex mutex_;
  std::vector<MountedVolume> listed_;
  std::vector<MountedVolume> hidden_;
  std::map<Path, std::optional<VolumeSpace>> spaces_;
};

}  // namespace PlatformKit::Testing
