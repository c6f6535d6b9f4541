#include "PlatformKit/Linux/LinuxFileSystem.h"

#include "PlatformKit/Linux/LinuxFiles.h"
#include "PlatformKit/Linux/Times.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace PlatformKit {
namespace {

ItemKind kindOf(unsigned mode) {
  switch (mode & S_IFMT) {
    case S_IFREG:
      return ItemKind::regularFile;
    case S_IFDIR:
      return ItemKind::folder;
    case S_IFLNK:
      return ItemKind::symbolicLink;
    default:
      return ItemKind::other;
  }
}

Result<ItemStatus> statusAt(int folder, const char* name) {
  struct statx facts {};
  if (statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_BASIC_STATS | STATX_BTIME,
            &facts) != 0) {
    return ErrorNumber{errno};
  }
  ItemStatus status;
  status.identity = {makedev(facts.stx_dev_major, facts.stx_dev_minor), facts.stx_ino};
  status.kind = kindOf(facts.stx_mode);
  status.size = facts.stx_size;
  status.modified = dateOf(facts.stx_mtime);
  if ((facts.stx_mask & STATX_BTIME) != 0) status.created = dateOf(facts.stx_btime);
  return status;
}

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

class LinuxFolderLock final : public FolderLock {
 public:
  explicit LinuxFolderLock(UniqueFd fd) : fd_(std::move(fd)) {}

 private:
  UniqueFd fd_;  // the lock goes with its descriptor
};

int done(int result) {
  return result == 0 ? 0 : errno;
}

// What somebody has put in a file's place since it was listed: a device may have no end, or do
// something when it is read.
int errorUnlessRegularFile(int fd) {
  struct stat status {};
  if (fstat(fd, &status) != 0) return errno;
  if (S_ISREG(status.st_mode)) return 0;
  return S_ISDIR(status.st_mode) ? EISDIR : EOPNOTSUPP;
}

}  // namespace

Result<ItemStatus> LinuxFileSystem::status(const Path& path) {
  return statusAt(AT_FDCWD, path.c_str());
}

Result<Path> LinuxFileSystem::resolve(const Path& path) {
  const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(path.c_str(), nullptr),
                                                             &std::free);
  if (!resolved) return ErrorNumber{errno};
  return Path(resolved.get());
}

Result<FolderListing> LinuxFileSystem::list(const Path& path) {
  auto opened = openKeepingAccessDate(path, O_DIRECTORY | O_NONBLOCK);
  if (!opened.ok()) return ErrorNumber{opened.error()};
  const std::unique_ptr<DIR, CloseFolder> folder(fdopendir(opened.value().get()));
  if (!folder) return ErrorNumber{errno};
  const int fd = opened.value().release();  // closed with the folder
  FolderListing listing;
  for (;;) {
    errno = 0;
    const dirent* entry = readdir(folder.get());  // NOLINT(concurrency-mt-unsafe): own stream
    if (entry == nullptr) break;
    const std::string_view name(entry->d_name);
    if (name == "." || name == "..") continue;
    listing.entries.push_back({std::string(name), statusAt(fd, entry->d_name)});
  }
  listing.error = errno;
  return listing;
}

Result<std::unique_ptr<ReadableFile>> LinuxFileSystem::openForReading(const Path& path,
                                                                      ReadMode mode) {
  constexpr int kSafely = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
  bool direct = mode == ReadMode::pastCache;
  auto opened = openKeepingAccessDate(path, kSafely | (direct ? O_DIRECT : 0));
  if (direct && opened.error() == EINVAL) {
    direct = false;
    opened = openKeepingAccessDate(path, kSafely);
    // What is not written out yet would be read from memory. An error shows when the file is read.
    if (opened.ok()) static_cast<void>(fdatasync(opened.value().get()));
  }
  if (!opened.ok()) return ErrorNumber{opened.error()};
  if (const int error = errorUnlessRegularFile(opened.value().get()); error != 0) {
    return ErrorNumber{error};
  }
  return std::unique_ptr<ReadableFile>(
      std::make_unique<LinuxReadableFile>(std::move(opened.value()), direct));
}

Result<std::unique_ptr<WritableFile>> LinuxFileSystem::createFile(const Path& path) {
  UniqueFd fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644));
  if (!fd.valid()) return ErrorNumber{errno};
  return std::unique_ptr<WritableFile>(std::make_unique<LinuxWritableFile>(std::move(fd)));
}

int LinuxFileSystem::createFolder(const Path& path) {
  return done(mkdir(path.c_str(), 0777));
}

int LinuxFileSystem::moveWithoutReplacing(const Path& from, const Path& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  // Some file systems (exFAT in user space) know only the plain move.
  struct stat existing {};
  if (lstat(to.c_str(), &existing) == 0) return EEXIST;
  if (errno != ENOENT) return errno;
  return done(std::rename(from.c_str(), to.c_str()));
}

int LinuxFileSystem::moveReplacing(const Path& from, const Path& to) {
  return done(std::rename(from.c_str(), to.c_str()));
}

int LinuxFileSystem::removeFile(const Path& path) {
  return done(unlink(path.c_str()));
}

int LinuxFileSystem::setDates(const Path& path, Date modified, std::optional<Date> /*created*/) {
  return done(
      utimensat(AT_FDCWD, path.c_str(), modificationOnly(modified).data(), AT_SYMLINK_NOFOLLOW));
}

Result<std::unique_ptr<FolderLock>> LinuxFileSystem::lockFolder(const Path& folder) {
  UniqueFd fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!fd.valid() || flock(fd.get(), LOCK_EX | LOCK_NB) != 0) return ErrorNumber{errno};
  return std::unique_ptr<FolderLock>(std::make_unique<LinuxFolderLock>(std::move(fd)));
}

int LinuxFileSystem::flushFolder(const Path& folder) {
  const UniqueFd fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!fd.valid()) return errno;
  if (fsync(fd.get()) == 0) return 0;
  return errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP ? 0 : errno;
}

int LinuxFileSystem::flushVolume(const Path& folder) {
  const UniqueFd fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!fd.valid()) return errno;
  return done(syncfs(fd.get()));
}

int LinuxFileSystem::checkWritable(const Path& path) {
  return done(faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS));
}

}  // namespace PlatformKit
