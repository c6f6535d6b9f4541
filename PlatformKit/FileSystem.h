#pragma once

#include "PlatformKit/Dates.h"
#include "PlatformKit/Result.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace PlatformKit {

/// A location. Names are bytes, in whatever encoding the file system holds them.
using Path = std::filesystem::path;

enum class ItemKind { regularFile, folder, symbolicLink, other };

/// Tells items apart, under whatever names they are reached.
struct ItemIdentity {
  std::uint64_t volume = 0;  ///< as VolumeIdentifier
  std::uint64_t number = 0;  ///< the item's number on its volume
  friend bool operator==(const ItemIdentity&, const ItemIdentity&) = default;
};

/// What the file system says about one item.
struct ItemStatus {
  ItemIdentity identity;
  ItemKind kind = ItemKind::other;
  std::uint64_t size = 0;  ///< bytes
  Date modified{};
  std::optional<Date> created;  ///< none where the file system keeps no creation date
};

/// One item of a folder; `status` is about the item itself, not about what a link points to.
struct FolderEntry {
  std::string name;
  Result<ItemStatus> status;
};

/// What a folder holds, in the file system's order, without "." and "..".
struct FolderListing {
  std::vector<FolderEntry> entries;
  int error = 0;  ///< not 0: reading the folder broke off with this error, more items may exist
};

/// How a file's content is to be read.
enum class ReadMode {
  streamed,   ///< once, in order, with read-ahead; what was cached before is dropped first
  pastCache,  ///< from the drive itself, so that what is read is what the drive holds
};

/// A regular file open for reading. Calls may come from several threads at once.
class ReadableFile {
 public:
  virtual ~ReadableFile() = default;

  /// One read of up to `buffer.size()` bytes at `offset`. Answers how many bytes came, which may be
  /// fewer than asked for; 0 at the end of the file. With ReadMode::pastCache, reads whose buffer,
  /// length and offset are whole multiples of 4,096 come straight from the drive. The first read
  /// that is not, or that the file system refuses in this way, drops what the cache holds of the
  /// file; it and those after it then go through the cache.
  [[nodiscard]] virtual Result<std::size_t> readAt(std::span<std::byte> buffer,
                                                   std::uint64_t offset) = 0;

  /// A hint that this range (bytes) will be read soon, through the cache. Returns at once.
  virtual void prefetch(std::uint64_t offset, std::uint64_t length) = 0;

  /// A hint that this range (bytes) will not be read again through this object.
  virtual void discard(std::uint64_t offset, std::uint64_t length) = 0;

  /// Returns when content, size and dates of the file are on the drive (fsync), whoever wrote them.
  /// Answers 0 or an error number.
  [[nodiscard]] virtual int flush() = 0;
};

/// A new file open for writing from its start. One thread at a time; closed by the destructor.
class WritableFile {
 public:
  virtual ~WritableFile() = default;

  /// One write of up to `bytes.size()` bytes behind what was written before. Answers how many bytes
  /// went out, which may be fewer than given. Error EINTR: interrupted before anything was written.
  [[nodiscard]] virtual Result<std::size_t> write(std::span<const std::byte> bytes) = 0;

  /// Lets the drive start on a written range (bytes) without waiting for it. Answers 0 or an error
  /// number, 0 where the file system does not offer this.
  [[nodiscard]] virtual int startWriteback(std::uint64_t offset, std::uint64_t length) = 0;

  /// Waits until a written range (bytes) has reached the drive and drops it from the cache. An
  /// error answered here (0: none) is not told again by `flush`.
  [[nodiscard]] virtual int finishWriteback(std::uint64_t offset, std::uint64_t length) = 0;

  /// Which file this is.
  [[nodiscard]] virtual Result<ItemIdentity> identity() = 0;

  /// Sets the dates of the file. `created` is ignored where the system cannot set it, as on Linux.
  /// Answers 0 or an error number.
  [[nodiscard]] virtual int setDates(Date modified, std::optional<Date> created) = 0;

  /// Returns when content, size and dates are on the drive (fsync). Answers 0 or an error number.
  [[nodiscard]] virtual int flush() = 0;
};

/// Keeps a folder locked as long as it lives.
class FolderLock {
 public:
  virtual ~FolderLock() = default;
};

/// A folder that is held open, and what lies in it, in steps the size of system calls and without
/// any policy: loops, retries and sentences belong to its callers. Paths are relative to it ("" is
/// the folder itself) and lead nowhere else: not through "..", not through a link in any place
/// (ELOOP), and, where it was opened so, not into another volume (EXDEV). Whoever moves the folder,
/// unmounts its volume or puts another folder in its place does not change what this object means.
/// Calls answer 0 or a value, or the system's error number. Any thread.
class Folder {
 public:
  virtual ~Folder() = default;

  /// About the item itself (a link, not what it points to).
  [[nodiscard]] virtual Result<ItemStatus> status(const Path& path) = 0;

  /// The items of a folder. The folder's access date stays as it is where the system allows that.
  [[nodiscard]] virtual Result<FolderListing> list(const Path& path) = 0;

  /// Opens a regular file for reading. Refused are a symbolic link (ELOOP), a folder (EISDIR), a
  /// pipe or a device (EOPNOTSUPP; never blocks) and a socket (ENXIO). The file's access date stays
  /// as it is where the system allows that.
  [[nodiscard]] virtual Result<std::unique_ptr<ReadableFile>> openForReading(const Path& path,
                                                                             ReadMode mode) = 0;

  /// Makes a new, empty file with permissions 0644, less what the process's umask takes away.
  /// EEXIST when anything has that name, a dangling link included.
  [[nodiscard]] virtual Result<std::unique_ptr<WritableFile>> createFile(const Path& path) = 0;

  /// Makes one folder; its parent must exist. EEXIST when anything has that name.
  [[nodiscard]] virtual int createFolder(const Path& path) = 0;

  /// Gives a file its new name in one step. EEXIST when anything has that name already.
  [[nodiscard]] virtual int moveWithoutReplacing(const Path& from, const Path& to) = 0;

  /// Gives a file its new name in one step, in place of a file that has that name.
  [[nodiscard]] virtual int moveReplacing(const Path& from, const Path& to) = 0;

  /// Removes a file (not a folder).
  [[nodiscard]] virtual int removeFile(const Path& path) = 0;

  /// Sets the dates of the item itself; `created` as in WritableFile::setDates.
  [[nodiscard]] virtual int setDates(const Path& path, Date modified,
                                     std::optional<Date> created) = 0;

  /// Locks the folder against others that lock it, in this process too. EWOULDBLOCK when it is
  /// locked; other errors where the file system knows no locks.
  [[nodiscard]] virtual Result<std::unique_ptr<FolderLock>> lockFolder(const Path& path) = 0;

  /// Returns when the folder's names are on the drive, so that a power cut does not undo a move. 0
  /// also where the file system has no such operation for folders. Behind it, and behind the next,
  /// calls look all paths up anew; before, a folder below that was moved away may still be meant by
  /// its old path.
  [[nodiscard]] virtual int flushFolder(const Path& path) = 0;

  /// Returns when everything written so far to the volume that holds the folder is on the drive,
  /// also what other programs wrote.
  [[nodiscard]] virtual int flushVolume(const Path& path) = 0;
};

/// What a held folder does where another volume is mounted below it.
enum class Mounts {
  crossed,  ///< what is mounted there belongs to it
  refused,  ///< EXDEV
};

/// The whole file system: the same calls for any path, as the process's working folder and links
/// have it, and those that only make sense for such paths. Any thread.
class FileSystem : public Folder {
 public:
  /// The absolute path without ".", "..", doubled slashes and symbolic links. ENOENT when nothing
  /// is there.
  [[nodiscard]] virtual Result<Path> resolve(const Path& path) = 0;

  /// Opens the folder and holds it, as long as the answer lives; its volume cannot be unmounted
  /// meanwhile (but for a lazy unmount, which takes it away from paths only). `path` may lead
  /// through links. ENOTDIR when it is no folder.
  [[nodiscard]] virtual Result<std::unique_ptr<Folder>> openFolder(const Path& path,
                                                                   Mounts mounts) = 0;

  /// 0 when this process may write to the item at `path`.
  [[nodiscard]] virtual int checkWritable(const Path& path) = 0;
};

/// Makes the folder and its missing ancestors. 0 when the folder exists at the end, else the error
/// number; ELOOP where a link is in its way. Any thread.
[[nodiscard]] int createFolders(Folder& within, const Path& path);
/// The same for any path: 0 also where the folder is reached through a link.
[[nodiscard]] int createFolders(FileSystem& fileSystem, const Path& path);

/// Whether there is a folder at `path`, through a link too. Any thread.
[[nodiscard]] bool isFolder(FileSystem& fileSystem, const Path& path);

}  // namespace PlatformKit
