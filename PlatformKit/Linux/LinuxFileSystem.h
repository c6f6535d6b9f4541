#pragma once

#include "PlatformKit/FileSystem.h"

namespace PlatformKit {

/// The kernel's file systems.
class LinuxFileSystem final : public FileSystem {
 public:
  [[nodiscard]] Result<ItemStatus> status(const Path& path) override;
  [[nodiscard]] Result<Path> resolve(const Path& path) override;
  [[nodiscard]] Result<FolderListing> list(const Path& folder) override;
  [[nodiscard]] Result<std::unique_ptr<ReadableFile>> openForReading(const Path& path,
                                                                     ReadMode mode) override;
  [[nodiscard]] Result<std::unique_ptr<WritableFile>> createFile(const Path& path) override;
  [[nodiscard]] int createFolder(const Path& path) override;
  [[nodiscard]] int moveWithoutReplacing(const Path& from, const Path& to) override;
  [[nodiscard]] int moveReplacing(const Path& from, const Path& to) override;
  [[nodiscard]] int removeFile(const Path& path) override;
  [[nodiscard]] int setDates(const Path& path, Date modified, std::optional<Date> created) override;
  [[nodiscard]] Result<std::unique_ptr<FolderLock>> lockFolder(const Path& folder) override;
  [[nodiscard]] int flushFolder(const Path& folder) override;
  [[nodiscard]] int flushVolume(const Path& folder) override;
  [[nodiscard]] int checkWritable(const Path& path) override;
};

}  // namespace PlatformKit
