#pragma once

#include "PlatformKit/Linux/LinuxItems.h"

namespace PlatformKit {

/// The kernel's file systems.
class LinuxFileSystem final : public LinuxItems<FileSystem, ReachByPath> {
 public:
  [[nodiscard]] Result<Path> resolve(const Path& path) override;
  [[nodiscard]] Result<std::unique_ptr<Folder>> openFolder(const Path& path,
                                                           Mounts mounts) override;
  [[nodiscard]] int checkWritable(const Path& path) override;
};

}  // namespace PlatformKit
