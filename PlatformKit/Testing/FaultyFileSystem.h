#pragma once

#include "PlatformKit/FileSystem.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <limits>
#include <mutex>
#include <string>

namespace PlatformKit::Testing {

/// The calls of the seam. `setFileDates` is the one on an open file, `flushRead` the flush of one
/// that is open for reading; `entryStatus` stands for what a listing says of one entry.
enum class Call {
  status,
  resolve,
  openFolder,
  list,
  entryStatus,
  openForReading,
  read,
  flushRead,
  createFile,
  identity,
  write,
  startWriteback,
  finishWriteback,
  setFileDates,
  flush,
  createFolder,
  move,
  moveReplacing,
  remove,
  setDates,
  lockFolder,
  flushFolder,
  flushVolume,
  checkWritable,
};

/// What a test does to one call.
struct Intervention {
  int error = 0;  ///< not 0: the call is not made and answers this error
  /// A read or write transfers at most so many bytes; a listing breaks off with EIO after so many
  /// entries.
  std::size_t limit = std::numeric_limits<std::size_t>::max();
  bool otherVolume = false;  ///< a status says that the item lies on another volume
  bool flipBit = false;      ///< one bit of what is read or written is wrong
  std::size_t bit = 0;       ///< which one, counted from the first on and around
};

/// A call that is about to be made. A move is reported with the new name.
struct CallInfo {
  Call call;
  const Path& path;
  std::uint64_t offset = 0;            ///< of a read or write, bytes
  ReadMode mode = ReadMode::streamed;  ///< of opening for reading
};

/// The script of a test, and how many files are open. Any thread.
class Faults {
 public:
  /// Asked before every call, one call at a time, on the calling thread.
  using Script = std::function<Intervention(const CallInfo&)>;

  [[nodiscard]] Intervention ask(Call call, const Path& path, std::uint64_t offset = 0,
                                 ReadMode mode = ReadMode::streamed);

  Script script;
  std::atomic<int> openFiles = 0;

 private:
  std::mutex mutex_;
};

/// The calls of Folder, each of them asked about with its whole path.
template <class Interface>
class FaultyItems : public Interface {
 public:
  /// `base`: what paths are below of; empty for a whole file system.
  FaultyItems(Faults& faults, Folder& below, Path base)
      : faults_(faults), below_(below), base_(std::move(base)) {}

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
  [[nodiscard]] Path at(const Path& path) const { return path.empty() ? base_ : base_ / path; }
  [[nodiscard]] int errorOf(Call call, const Path& path) {
    return faults_.ask(call, at(path)).error;
  }

  Faults& faults_;
  Folder& below_;
  const Path base_;
};

/// Passes every call to another file system, unless the test intervenes. The tests' way to drives
/// that fill up, fail, lie or vanish. Folders opened through it are held by the file system below,
/// so they keep what held folders promise.
class FaultyFileSystem final : private Faults, public FaultyItems<FileSystem> {
 public:
  using Script = Faults::Script;

  explicit FaultyFileSystem(FileSystem& below)
      : FaultyItems(static_cast<Faults&>(*this), below, {}), below_(below) {}

  /// Replaces the script. Not while calls are being made.
  void setScript(Script replacement) { script = std::move(replacement); }

  /// A script that answers `error` to every such call whose path contains `part`.
  static Script failing(Call call, std::string part, int error);

  /// How many files opened through this object are open now.
  [[nodiscard]] int openFiles() const { return Faults::openFiles; }

  [[nodiscard]] Result<Path> resolve(const Path& path) override;
  [[nodiscard]] Result<std::unique_ptr<Folder>> openFolder(const Path& path,
                                                           Mounts mounts) override;
  [[nodiscard]] int checkWritable(const Path& path) override;

 private:
  FileSystem& below_;
};

}  // namespace PlatformKit::Testing
