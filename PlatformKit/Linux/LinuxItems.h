#pragma once

#include "PlatformKit/FileSystem.h"
#include "PlatformKit/Posix/UniqueFd.h"

#include <memory>
#include <mutex>
#include <string>

namespace PlatformKit {

/// Where an item is for the kernel: an open folder and a name in it.
struct LinuxPlace {
  int folder;                                     ///< a descriptor or AT_FDCWD
  std::string name;                               ///< "" for the folder itself
  std::shared_ptr<const UniqueFd> keptOpen = {};  ///< the folder's, where this place needs one
};

/// Any path, as the process sees it.
class ReachByPath {
 public:
  [[nodiscard]] static Result<LinuxPlace> place(const Path& path);
  [[nodiscard]] static Result<UniqueFd> open(const Path& path, int flags, unsigned mode = 0);
  static void forget() {}
};

/// Paths below an open folder that lead nowhere else; see openBelow. Any thread.
class ReachBelow {
 public:
  ReachBelow(UniqueFd root, Mounts mounts) : root_(std::move(root)), mounts_(mounts) {}

  [[nodiscard]] Result<LinuxPlace> place(const Path& path);
  [[nodiscard]] Result<UniqueFd> open(const Path& path, int flags, unsigned mode = 0);
  /// What is reached from now on is looked up anew.
  void forget();

 private:
  const UniqueFd root_;
  const Mounts mounts_;
  // The folder that was asked for last: the files of one folder come one after the other, and to
  // reach it anew for each call would double the calls. Forgotten whenever something is flushed.
  std::mutex mutex_;
  Path lastParent_;
  std::shared_ptr<const UniqueFd> lastFolder_;
};

/// The calls of Folder on the kernel's file systems, whichever way paths are reached.
template <class Interface, class Reach>
class LinuxItems : public Interface {
 public:
  template <class... Arguments>
  explicit LinuxItems(Arguments&&... arguments) : reach_(std::forward<Arguments>(arguments)...) {}

  [[nodiscard]] Result<ItemStatus> status(const Path& path) override;
  [[nodiscard]] Result<FolderListing> list(const Path& path) override;
  [[nodiscard]] Result<std::unique_ptr<ReadableFile>> openForReading(const Path& path,
                                                                     ReadMode mode) override;
  [[nodiscard]] Result<std::unique_ptr<WritableFile>> createFile(const Path& path) override;
  [[nodiscard]] int createFolder(const Path& path) override;
  [[nodiscard]] int moveWithoutReplacing(const Path& from, const Path& to) override;
  [[nodiscard]] int moveReplacing(const Path& from, const Path& to) override;
  [[nodiscard]] int removeFile(const Path& path) override;
  [[nodiscard]] int setDates(const Path& path, Date modified, std::optional<Date> created) override;
  [[nodiscard]] Result<std::unique_ptr<FolderLock>> lockFolder(const Path& path) override;
  [[nodiscard]] int flushFolder(const Path& path) override;
  [[nodiscard]] int flushVolume(const Path& path) override;

 private:
  [[nodiscard]] Result<UniqueFd> openKeepingAccessDate(const Path& path, int flags);

  Reach reach_;
};

extern template class LinuxItems<FileSystem, ReachByPath>;
extern template class LinuxItems<Folder, ReachBelow>;

/// A folder that is held open.
using LinuxFolder = LinuxItems<Folder, ReachBelow>;

}  // namespace PlatformKit
