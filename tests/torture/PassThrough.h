#pragma once

#include "PlatformKit/FileSystem.h"
#include "PlatformKit/Testing/FolderByPath.h"

namespace Torture {

/// Passes every call on; what watches or breaks a few calls derives from these three. Threads as
/// the interfaces have them.
class PassThroughReadable : public PlatformKit::ReadableFile {
 public:
  explicit PassThroughReadable(std::unique_ptr<PlatformKit::ReadableFile> below)
      : below_(std::move(below)) {}
  PlatformKit::Result<std::size_t> readAt(std::span<std::byte> buffer,
                                          std::uint64_t offset) override {
    return below_->readAt(buffer, offset);
  }
  void prefetch(std::uint64_t offset, std::uint64_t length) override {
    below_->prefetch(offset, length);
  }
  void discard(std::uint64_t offset, std::uint64_t length) override {
    below_->discard(offset, length);
  }
  int flush() override { return below_->flush(); }

 protected:
  std::unique_ptr<PlatformKit::ReadableFile> below_;
};

class PassThroughWritable : public PlatformKit::WritableFile {
 public:
  explicit PassThroughWritable(std::unique_ptr<PlatformKit::WritableFile> below)
      : below_(std::move(below)) {}
  PlatformKit::Result<std::size_t> write(std::span<const std::byte> bytes) override {
    return below_->write(bytes);
  }
  int startWriteback(std::uint64_t offset, std::uint64_t length) override {
    return below_->startWriteback(offset, length);
  }
  int finishWriteback(std::uint64_t offset, std::uint64_t length) override {
    return below_->finishWriteback(offset, length);
  }
  PlatformKit::Result<PlatformKit::ItemIdentity> identity() override { return below_->identity(); }
  int setDates(PlatformKit::Date modified, std::optional<PlatformKit::Date> created) override {
    return below_->setDates(modified, created);
  }
  int flush() override { return below_->flush(); }

 protected:
  std::unique_ptr<PlatformKit::WritableFile> below_;
};

class PassThrough : public PlatformKit::FileSystem {
 protected:
  using Path = PlatformKit::Path;
  template <class T>
  using Result = PlatformKit::Result<T>;

 public:
  explicit PassThrough(PlatformKit::FileSystem& below) : below_(below) {}
  // One that lies on another is no copy of it.
  PassThrough(const PassThrough&) = delete;
  PassThrough& operator=(const PassThrough&) = delete;

  Result<PlatformKit::ItemStatus> status(const Path& path) override { return below_.status(path); }
  Result<Path> resolve(const Path& path) override { return below_.resolve(path); }
  Result<std::unique_ptr<PlatformKit::Folder>> openFolder(const Path& path,
                                                          PlatformKit::Mounts mounts) override {
    const auto held = below_.openFolder(path, mounts);
    if (!held.ok()) return PlatformKit::ErrorNumber{held.error()};
    return std::unique_ptr<PlatformKit::Folder>(
        std::make_unique<PlatformKit::Testing::FolderByPath>(*this, path));
  }
  Result<PlatformKit::FolderListing> list(const Path& folder) override {
    return below_.list(folder);
  }
  Result<std::unique_ptr<PlatformKit::ReadableFile>> openForReading(
      const Path& path, PlatformKit::ReadMode mode) override {
    return below_.openForReading(path, mode);
  }
  Result<std::unique_ptr<PlatformKit::WritableFile>> createFile(const Path& path) override {
    return below_.createFile(path);
  }
  int createFolder(const Path& path) override { return below_.createFolder(path); }
  int moveWithoutReplacing(const Path& from, const Path& to) override {
    return below_.moveWithoutReplacing(from, to);
  }
  int moveReplacing(const Path& from, const Path& to) override {
    return below_.moveReplacing(from, to);
  }
  int removeFile(const Path& path) override { return below_.removeFile(path); }
  int setDates(const Path& path, PlatformKit::Date modified,
               std::optional<PlatformKit::Date> created) override {
    return below_.setDates(path, modified, created);
  }
  Result<std::unique_ptr<PlatformKit::FolderLock>> lockFolder(const Path& folder) override {
    return below_.lockFolder(folder);
  }
  int flushFolder(const Path& folder) override { return below_.flushFolder(folder); }
  int flushVolume(const Path& folder) override { return below_.flushVolume(folder); }
  int checkWritable(const Path& path) override { return below_.checkWritable(path); }

 protected:
  PlatformKit::FileSystem& below_;
};

}  // namespace Torture
