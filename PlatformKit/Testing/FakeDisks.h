#pragma once

#include "PlatformKit/Disks.h"

#include <map>
#include <optional>
#include <vector>

namespace PlatformKit::Testing {

/// Disks that a test makes up. One thread.
class FakeDisks final : public Disks {
 public:
  std::vector<DiskFacts> disks;
  std::map<Path, DiskFacts> below;  ///< by the path of a volume

  std::vector<DiskFacts> list() override { return disks; }
  std::optional<DiskFacts> holding(const Path& path) override {
    const auto found = below.find(path);
    if (found == below.end()) return std::nullopt;
    return found->second;
  }
};

}  // namespace PlatformKit::Testing
