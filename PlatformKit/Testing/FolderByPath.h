#pragma once

#include "PlatformKit/FileSystem.h"

namespace PlatformKit::Testing {

/// A held folder that passes every call to a file system, with the whole path: for file systems
/// that watch or break calls by their paths. What the folder's own promises are worth is not tried
/// here: the path is looked up anew for each call.
class FolderByPath final : public Folder {
 public:
  FolderByPath(FileSystem& fileSystem, Path path)
      : fileSystem_(fileSystem), path_(std::move(path)) {}

  Result<ItemStatus> status(const Path& path) override { return fileSystem_.status(at(path)); }
  Result<FolderListing> list(const Path& path) override { return fileSystem_.list(at(path)); }
  Result<std::unique_ptr<ReadableFile>> openForReading(const Path& path, ReadMode mode) override {
    return fileSystem_.openForReading(at(path), mode);
  }
  Result<std::unique_ptr<WritableFile>> createFile(const Path& path) override {
    return fileSystem_.createFile(at(path));
  }
  int createFolder(const Path& path) override { return fileSystem_.createFolder(at(path)); }
  int moveWithoutReplacing(const Path& from, const Path& to) override {
    return fileSystem_.moveWithoutReplacing(at(from), at(to));
  }
  int moveReplacing(const Path& from, const Path& to) override {
    return fileSystem_.moveReplacing(at(from), at(to));
  }
  int removeFile(const Path& path) override { return fileSystem_.removeFile(at(path)); }
  int setDates(const Path& path, Date modified, std::optional<Date> created) override {
    return fileSystem_.setDates(at(path), modified, created);
  }
  Result<std::unique_ptr<FolderLock>> lockFolder(const Path& path) override {
    return fileSystem_.lockFolder(at(path));
  }
  int flushFolder(const Path& path) override { return fileSystem_.flushFolder(at(path)); }
  int flushVolume(const Path& path) override { return fileSystem_.flushVolume(at(path)); }

 private:
  [[nodiscard]] Path at(const Path& path) const { return path.empty() ? path_ : path_ / path; }

  FileSystem& fileSystem_;
  const Path path_;
};

}  // namespace PlatformKit::Testing
