#pragma once

#include "PlatformKit/FileSystem.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <limits>
#include <mutex>
#include <string>

namespace PlatformKit::Testing {

/// The calls of the seam. `setFileDates` is the one on an open file, `flushRead` the flush of one that
/// is open for reading; `entryStatus` stands for what a listing says of one entry.
enum class Call {
  status,
  resolve,
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

/// Passes every call to another file system, unless the test intervenes. The tests' way to drives
/// that fill up, fail, lie or vanish.
class FaultyFileSystem final : public FileSystem {
 public:
  /// Asked before every call, one call at a time, on the calling thread.
  using Script = std::function<Intervention(const CallInfo&)>;

  explicit FaultyFileSystem(FileSystem& below) : below_(below) {}

  /// Replaces the script. Not while calls are being made.
  void setScript(Script script) { script_ = std::move(script); }

  /// A script that answers `error` to every such call whose path contains `part`.
  static Script failing(Call call, std::string part, int error);

  /// How many files and folders opened through this object are open now.
  [[nodiscard]] int openFiles() const { return openFiles_; }

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

 private:
  friend class FaultyReadableFile;
  friend class FaultyWritableFile;
  Intervention ask(Call call, const Path& path, std::uint64_t offset = 0,
                   ReadMode mode = ReadMode::streamed);

  FileSystem& below_;
  std::mutex mutex_;
  Script script_;
  std::atomic<int> openFiles_ = 0;
};

}  // namespace PlatformKit::Testing
