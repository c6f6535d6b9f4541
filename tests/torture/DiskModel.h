#pragma once

#include "tests/torture/Bench.h"
#include "tests/torture/PassThrough.h"

#include <mutex>
#include <random>
#include <set>
#include <vector>

namespace Torture {

/// One change that a program made, or one flush that it waited for. Paths are relative.
struct Step {
  enum class Kind {
    createFile,
    createFolder,
    move,
    remove,
    write,
    setDates,
    flush,
    flushFolder,
    flushVolume
  };
  Kind kind{};
  std::string path = {};
  std::string to = {};  ///< of a move
  std::size_t file =
      0;  ///< which created file a write, flush or date is about; 0: the one at `path`
  std::string bytes = {};  ///< of a write
  PlatformKit::Date date = {};
};

/// Writes down every change below a folder, and every flush once it has returned: before that it
/// promises nothing. What starts or waits for write-back promises nothing at all, as
/// sync_file_range(2) says. Any thread.
class Recorder final : public PassThrough {
 public:
  Recorder(PlatformKit::FileSystem& below, Path top) : PassThrough(below), top_(std::move(top)) {}

  [[nodiscard]] const std::vector<Step>& steps() const { return steps_; }

  Result<std::unique_ptr<PlatformKit::ReadableFile>> openForReading(
      const Path& path, PlatformKit::ReadMode mode) override;
  Result<std::unique_ptr<PlatformKit::WritableFile>> createFile(const Path& path) override;
  int createFolder(const Path& path) override;
  int moveWithoutReplacing(const Path& from, const Path& to) override;
  int moveReplacing(const Path& from, const Path& to) override;
  int removeFile(const Path& path) override;
  int setDates(const Path& path, PlatformKit::Date modified,
               std::optional<PlatformKit::Date> created) override;
  int flushFolder(const Path& folder) override;
  int flushVolume(const Path& folder) override;

  /// Adds the step unless it failed; answers the error.
  int record(int error, Step step);

 private:
  [[nodiscard]] std::string relative(const Path& path) const;
  int moved(int error, const Path& from, const Path& to);

  const Path top_;
  std::mutex mutex_;
  std::vector<Step> steps_;
  std::size_t files_ = 0;
  std::map<std::string, std::size_t>
      numbers_;  ///< of the created files, by the names they have now
};

/// Which of the names made, changed and removed since their folder was flushed a power cut leaves.
enum class Names { lost, kept, some };

/// What a power cut leaves of drives, at its worst. It assumes no more than this:
///
/// - fsync(2) of a file: its content, size and dates are on the drive when it returns, and nothing
///   is said about its name ("does not necessarily ensure that the entry in the directory
///   containing the file has also reached disk").
/// - fsync(2) of a folder: the names in it are on the drive, not those of the folder itself.
/// - syncfs(2): all of the volume is.
/// - rename(2) is atomic: after a cut one of the two names is there, and a name that was replaced
///   has its old file or its new one. Journaling file systems promise that, FAT does not.
/// - With `fat`, as Linux does it there, the new name has a file of 0 bytes until the file is
///   flushed again, whatever was flushed before.
/// - A flush covers what happened before it was called, on drives that keep what they acknowledged
///   as flushed.
///
/// Nothing is ordered: names may reach the drive before content and in any order among themselves,
/// and of content that was not flushed any sector may be there, zero, garbage or missing.
class DiskModel {
 public:
  /// `flushed` is on the drives. `cached` was written on top of that by somebody who flushed
  /// nothing.
  DiskModel(const Snapshot& flushed, const Snapshot& cached, bool fat = false);

  void apply(const Step& step);
  /// How many files were moved and not flushed since, with `fat`.
  [[nodiscard]] std::size_t withoutSize() const { return withoutSize_.size(); }
  [[nodiscard]] Snapshot afterCut(Names names, std::minstd_rand& random) const;

 private:
  struct NameChange {
    std::string from;  ///< this name goes; empty: none
    std::string to;    ///< this name comes; empty: none
    std::size_t node;
  };
  struct Node {
    bool isFolder = false;
    Item now;
    Item flushed;
    std::map<std::string, std::size_t> names;
    std::map<std::string, std::size_t> flushedNames;
    std::vector<NameChange> changes;  ///< since the names were flushed
  };

  [[nodiscard]] std::size_t find(const Path& path) const;
  std::size_t add(const Path& path, bool isFolder);
  void load(const Snapshot& items);
  void rename(const std::string& from, const std::string& to);
  void change(std::size_t folder, const NameChange& change);
  void flushNames(std::size_t folder);
  void flushBelow(std::size_t node);
  void collect(std::size_t folder, const std::string& path, Names names, std::minstd_rand& random,
               Snapshot& left) const;

  std::vector<Node> nodes_;         ///< the first is the folder of all drives
  std::vector<std::size_t> files_;  ///< by the number in a step, from 1 on
  const bool fat_;
  std::set<std::size_t> withoutSize_;  ///< nodes
};

}  // namespace Torture
