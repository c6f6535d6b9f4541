#include "PlatformKit/Linux/LinuxItems.h"

#include "PlatformKit/Linux/LinuxFiles.h"
#include "PlatformKit/Linux/OpenBelow.h"
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
  const int whole = *name == '\0' && folder != AT_FDCWD ? AT_EMPTY_PATH : 0;
  struct statx facts {};
  if (statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | whole,
            STATX_BASIC_STATS | STATX_BTIME, &facts) != 0) {
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

// Flushing names where there is no such operation is no fault.
int flushed(int fd) {
  if (fsync(fd) == 0) return 0;
  return errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP ? 0 : errno;
}

// Two items at once, for the calls that take both.
template <class Reach, class Call>
int withBoth(Reach& reach, const Path& from, const Path& to, const Call& call) {
  const auto source = reach.place(from);
  if (!source.ok()) return source.error();
  const auto target = reach.place(to);
  if (!target.ok()) return target.error();
  return call(source.value(), target.value());
}

int moveOnto(const LinuxPlace& from, const LinuxPlace& to) {
  return done(renameat(from.folder, from.name.c_str(), to.folder, to.name.c_str()));
}

}  // namespace

Result<LinuxPlace> ReachByPath::place(const Path& path) {
  return LinuxPlace{AT_FDCWD, path.native()};
}

Result<UniqueFd> ReachByPath::open(const Path& path, int flags, unsigned mode) {
  UniqueFd fd(::open(path.c_str(), flags | O_CLOEXEC, mode));
  if (!fd.valid()) return ErrorNumber{errno};
  return fd;
}

Result<LinuxPlace> ReachBelow::place(const Path& path) {
  const Path name = path.filename();
  if (name == ".." || path.is_absolute()) return ErrorNumber{EXDEV};
  const Path parent = path.parent_path();
  if (parent.empty()) return LinuxPlace{root_.get(), name.native()};
  const std::lock_guard lock(mutex_);
  if (!lastFolder_ || parent != lastParent_) {
    auto opened = open(parent, O_PATH | O_DIRECTORY);
    if (!opened.ok()) return ErrorNumber{opened.error()};
    lastFolder_ = std::make_shared<const UniqueFd>(std::move(opened.value()));
    lastParent_ = parent;
  }
  return LinuxPlace{lastFolder_->get(), name.native(), lastFolder_};
}

void ReachBelow::forget() {
  const std::lock_guard lock(mutex_);
  lastFolder_.reset();
}

Result<UniqueFd> ReachBelow::open(const Path& path, int flags, unsigned mode) {
  return openBelow(root_.get(), path, flags, mode, mounts_);
}

template <class Interface, class Reach>
Result<UniqueFd> LinuxItems<Interface, Reach>::openKeepingAccessDate(const Path& path, int flags) {
  auto opened = reach_.open(path, O_RDONLY | O_NOATIME | flags);
  // Only the owner of a file may keep its access date.
  if (opened.error() == EPERM) opened = reach_.open(path, O_RDONLY | flags);
  return opened;
}

template <class Interface, class Reach>
Result<ItemStatus> LinuxItems<Interface, Reach>::status(const Path& path) {
  const auto place = reach_.place(path);
  if (!place.ok()) return ErrorNumber{place.error()};
  return statusAt(place.value().folder, place.value().name.c_str());
}

template <class Interface, class Reach>
Result<FolderListing> LinuxItems<Interface, Reach>::list(const Path& path) {
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

template <class Interface, class Reach>
Result<std::unique_ptr<ReadableFile>> LinuxItems<Interface, Reach>::openForReading(const Path& path,
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

template <class Interface, class Reach>
Result<std::unique_ptr<WritableFile>> LinuxItems<Interface, Reach>::createFile(const Path& path) {
  auto fd = reach_.open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0644);
  if (!fd.ok()) return ErrorNumber{fd.error()};
  return std::unique_ptr<WritableFile>(std::make_unique<LinuxWritableFile>(std::move(fd.value())));
}

template <class Interface, class Reach>
int LinuxItems<Interface, Reach>::createFolder(const Path& path) {
  const auto place = reach_.place(path);
  if (!place.ok()) return place.error();
  return done(mkdirat(place.value().folder, place.value().name.c_str(), 0777));
}

template <class Interface, class Reach>
int LinuxItems<Interface, Reach>::moveWithoutReplacing(const Path& from, const Path& to) {
  return withBoth(reach_, from, to, [](const LinuxPlace& source, const LinuxPlace& target) {
    if (renameat2(source.folder, source.name.c_str(), target.folder, target.name.c_str(),
                  RENAME_NOREPLACE) == 0) {
      return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) return errno;
    // Some file systems (exFAT in user space) know only the plain move.
    struct stat existing {};
    if (fstatat(target.folder, target.name.c_str(), &existing, AT_SYMLINK_NOFOLLOW) == 0) {
      return EEXIST;
    }
    return errno != ENOENT ? errno : moveOnto(source, target);
  });
}

template <class Interface, class Reach>
int LinuxItems<Interface, Reach>::moveReplacing(const Path& from, const Path& to) {
  return withBoth(reach_, from, to, moveOnto);
}

template <class Interface, class Reach>
int LinuxItems<Interface, Reach>::removeFile(const Path& path) {
  const auto place = reach_.place(path);
  if (!place.ok()) return place.error();
  return done(unlinkat(place.value().folder, place.value().name.c_str(), 0));
}

template <class Interface, class Reach>
int LinuxItems<Interface, Reach>::setDates(const Path& path, Date modified,
                                           std::optional<Date> /*created*/) {
  const auto place = reach_.place(path);
  if (!place.ok()) return place.error();
  return done(utimensat(place.value().folder, place.value().name.c_str(),
                        modificationOnly(modified).data(), AT_SYMLINK_NOFOLLOW));
}

template <class Interface, class Reach>
Result<std::unique_ptr<FolderLock>> LinuxItems<Interface, Reach>::lockFolder(const Path& path) {
  auto fd = reach_.open(path, O_RDONLY | O_DIRECTORY);
  if (!fd.ok()) return ErrorNumber{fd.error()};
  if (flock(fd.value().get(), LOCK_EX | LOCK_NB) != 0) return ErrorNumber{errno};
  return std::unique_ptr<FolderLock>(std::make_unique<LinuxFolderLock>(std::move(fd.value())));
}

template <class Interface, class Reach>
int LinuxItems<Interface, Reach>::flushFolder(const Path& path) {
  reach_.forget();
  const auto fd = reach_.open(path, O_RDONLY | O_DIRECTORY);
  return fd.ok() ? flushed(fd.value().get()) : fd.error();
}

template <class Interface, class Reach>
int LinuxItems<Interface, Reach>::flushVolume(const Path& path) {
  reach_.forget();
  const auto fd = reach_.open(path, O_RDONLY | O_DIRECTORY);
  return fd.ok() ? done(syncfs(fd.value().get())) : fd.error();
}

template class LinuxItems<FileSystem, ReachByPath>;
template class LinuxItems<Folder, ReachBelow>;

}  // namespace PlatformKit
