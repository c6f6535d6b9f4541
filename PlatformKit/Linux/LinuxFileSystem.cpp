#include "PlatformKit/Linux/LinuxFileSystem.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace PlatformKit {

Result<Path> LinuxFileSystem::resolve(const Path& path) {
  const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(path.c_str(), nullptr),
                                                             &std::free);
  if (!resolved) return ErrorNumber{errno};
  return Path(resolved.get());
}

Result<std::unique_ptr<Folder>> LinuxFileSystem::openFolder(const Path& path, Mounts mounts) {
  // O_PATH: one that this user may write to, but not list, can be held too.
  UniqueFd fd(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!fd.valid()) return ErrorNumber{errno};
  return std::unique_ptr<Folder>(std::make_unique<LinuxFolder>(std::move(fd), mounts));
}

int LinuxFileSystem::checkWritable(const Path& path) {
  return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0 ? 0 : errno;
}

}  // namespace PlatformKit
