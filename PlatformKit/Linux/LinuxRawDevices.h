#pragma once

#include "PlatformKit/RawDevices.h"

namespace PlatformKit {

/// The kernel's block devices, read with O_DIRECT: through the cache, one bad sector would take the
/// whole page around it along. Files, and devices that refuse O_DIRECT, are read through the cache.
class LinuxRawDevices final : public RawDevices {
 public:
  /// `sys`: where sysfs is mounted.
  explicit LinuxRawDevices(Path sys = "/sys") : sys_(std::move(sys)) {}

  [[nodiscard]] Result<RawKind> kind(const Path& path) override;
  [[nodiscard]] Result<std::unique_ptr<RawDevice>> open(const Path& path) override;
  [[nodiscard]] std::unique_ptr<RawDevice> adopt(UniqueFd descriptor) override;

 private:
  Path sys_;
};

}  // namespace PlatformKit
