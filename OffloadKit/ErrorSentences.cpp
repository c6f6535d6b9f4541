#include "OffloadKit/ErrorSentences.h"

#include <cerrno>

namespace OffloadKit {
namespace {

// The highest error number of the Linux kernel's own table (EHWPOISON).
constexpr int kHighestErrorNumber = 133;

}  // namespace

std::string describe(int error) {
  const bool known = error > 0 && error <= kHighestErrorNumber;
  switch (known ? error : EIO) {
    case EPERM:
    case EACCES:
      return "No permission to write here";
    case EIO:
      return "The drive reported a write error";
    case ENXIO:
    case ENODEV:
      return "The drive was disconnected";
    case ENOSPC:
      return "The drive is full";
    default:
      return systemText(error);
  }
}

bool endsTheDrive(int error) {
  return error == EIO || error == ENXIO || error == ENODEV || error == ENOSPC;
}

std::string displayName(PlatformKit::System system, const PlatformKit::Path& destination) {
  const auto facts = system.volumes.facts(nearestExisting(system.fileSystem, destination));
  if (!facts.name) return destination.native();
  return *facts.name + " (" + lastComponent(destination) + ")";
}

PlatformKit::Path nearestExisting(PlatformKit::FileSystem& fileSystem,
                                  const PlatformKit::Path& path) {
  // No system call takes a longer path, and to shorten it by one component after the other takes time
  // with the square of its length.
  constexpr std::size_t kLongest = 4096;
  PlatformKit::Path current = path;
  if (path.native().size() > kLongest) {
    current = PlatformKit::Path(path.native().substr(0, kLongest)).parent_path();
  }
  while (current.has_relative_path() && !fileSystem.resolve(current).ok()) {
    current = current.parent_path();
  }
  return current;
}

std::string lastComponent(const PlatformKit::Path& path) {
  return (path.has_filename() ? path : path.parent_path()).filename().native();
}

}  // namespace OffloadKit
