#pragma once

#include "PlatformKit/Volumes.h"

#include <map>
#include <set>

namespace PlatformKit::Testing {

/// Volumes that a test lays over the folders it uses. Where none was laid, the real facts hold.
class FakeVolumes final : public Volumes {
 public:
  explicit FakeVolumes(Volumes& real) : real_(real) {}

  /// From now on `root` and everything below it lies on a volume with these facts.
  void lay(const Path& root, VolumeFacts facts) { laid_[root] = std::move(facts); }
  /// From now on this device is gone.
  void pull(DeviceNumber device) { gone_.insert(device); }

  [[nodiscard]] VolumeFacts facts(const Path& existing) override {
    for (Path path = existing; path.has_relative_path(); path = path.parent_path()) {
      const auto found = laid_.find(path);
      if (found != laid_.end()) return found->second;
    }
    return real_.facts(existing);
  }
  [[nodiscard]] bool isGone(DeviceNumber device) override { return gone_.contains(device); }

 private:
  Volumes& real_;
  std::map<Path, VolumeFacts> laid_;
  std::set<DeviceNumber> gone_;
};

}  // namespace PlatformKit::Testing
