#include "PlatformKit/Linux/OpenBelow.h"

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace PlatformKit {
namespace {

Result<UniqueFd> openByKernel(int root, const Path& path, int flags, unsigned mode, Mounts mounts) {
  open_how how{};
  how.flags = static_cast<unsigned>(flags | O_CLOEXEC | O_LARGEFILE);
  how.mode = (flags & O_CREAT) != 0 ? mode : 0;
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
  if (mounts == Mounts::refused) how.resolve |= RESOLVE_NO_XDEV;
  const char* name = path.empty() ? "." : path.c_str();
  // Something may be moved while the kernel looks, so that it cannot tell whether the path leads
  // out; but a file system, or a file that another process has a lease on, may say so for ever.
  constexpr int kTries = 16;
  for (int tries = 1;; ++tries) {
    const long fd = syscall(SYS_openat2, root, name, &how, sizeof how);
    if (fd >= 0) return UniqueFd(static_cast<int>(fd));
    if (errno != EAGAIN || tries == kTries) return ErrorNumber{errno};
  }
}

// Sandboxes refuse a call that they do not know with either.
bool isOffered(int root) {
  const int error = openByKernel(root, {}, O_PATH | O_DIRECTORY, 0, Mounts::crossed).error();
  return error != ENOSYS && error != EPERM;
}

// The error of a folder that could not be opened, or 0 for one that may be used.
int judge(int parent, const std::string& name, const UniqueFd& opened, int error) {
  if (opened.valid()) return 0;
  // What has the name that a new file is to have is not followed, whatever it is.
  if (error == EEXIST) return error;
  struct stat status {};
  const bool isLink =
      fstatat(parent, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode);
  return isLink ? ELOOP : error;
}

int errorUnlessSameVolume(int root, int opened, Mounts mounts) {
  if (mounts == Mounts::crossed) return 0;
  struct stat above {};
  struct stat below {};
  if (fstat(root, &above) != 0 || fstat(opened, &below) != 0) return errno;
  // Where file systems lie over each other, a file may be told to lie on the one below.
  if (!S_ISDIR(below.st_mode)) return 0;
  return above.st_dev == below.st_dev ? 0 : EXDEV;
}

Result<UniqueFd> openByComponent(int root, const Path& path, int flags, unsigned mode,
                                 Mounts mounts) {
  if (path.is_absolute()) return ErrorNumber{EXDEV};
  UniqueFd folder(fcntl(root, F_DUPFD_CLOEXEC, 0));
  if (!folder.valid()) return ErrorNumber{errno};
  for (auto part = path.begin();;) {
    const std::string name = part == path.end() || part->empty() ? "." : part->native();
    if (name == "..") return ErrorNumber{EXDEV};
    if (part != path.end()) ++part;
    const bool isLast = part == path.end();
    const int wanted = isLast ? flags : O_PATH | O_DIRECTORY;
    UniqueFd next(::openat(folder.get(), name.c_str(), wanted | O_NOFOLLOW | O_CLOEXEC, mode));
    if (const int error = judge(folder.get(), name, next, errno); error != 0) {
      return ErrorNumber{error};
    }
    if (const int error = errorUnlessSameVolume(root, next.get(), mounts); error != 0) {
      return ErrorNumber{error};
    }
    folder = std::move(next);
    if (isLast) return folder;
  }
}

}  // namespace

Result<UniqueFd> openBelow(int root, const Path& path, int flags, unsigned mode, Mounts mounts,
                           Resolving resolving) {
  return resolving == Resolving::byKernel ? openByKernel(root, path, flags, mode, mounts)
                                          : openByComponent(root, path, flags, mode, mounts);
}

Result<UniqueFd> openBelow(int root, const Path& path, int flags, unsigned mode, Mounts mounts) {
  static const bool offered = isOffered(root);
  return openBelow(root, path, flags, mode, mounts,
                   offered ? Resolving::byKernel : Resolving::byComponent);
}

}  // namespace PlatformKit
