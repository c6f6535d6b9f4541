#pragma once

#include "PlatformKit/Volumes.h"

#include <map>
#include <mutex>
#include <set>

namespace PlatformKit::Testing {

/// Volumes that a test lays over the folders it uses. Where none was laid, the real facts hold.
class FakeVolumes final : public Volumes {
 public:
  explicit FakeVolumes(Volumes& real) : real_(real) {}

  /// From now on `root` and everything below it lies on a volume with these facts.
  void lay(const Path& root, VolumeFacts facts) { laid_[root] = std::move(facts); }
  /// From now on this device is gone.
  void pull(DeviceNumber device) {
    const std::lock_guard lock(mutex_);
    gone_.insert(device);
  }
  /// It is back.
  void plugIn(DeviceNumber device) {
    const std::lock_guard lock(mutex_);
    gone_.erase(device);
  }

  [[nodiscard]] VolumeFacts facts(const Path& existing) override {
    for (Path path = existing; path.has_relative_path(); path = path.parent_path()) {
      const auto found = laid_.find(path);
      if (found != laid_.end()) return found->second;
    }
    return real_.facts(existing);
  }
  [[nodiscard]] bool isGone(DeviceNumber device) override {
    const std::lock_guard lock(mutex_);
    return gone_.contains(device);
  }

 private:
  Volumes& real_;
  std::map<Path, VolumeFacts> laid_;
  std::mutex mutex_;
  std::set<DeviceNumber> gone_;
};

}  // namespace PlatformKit::Testing
