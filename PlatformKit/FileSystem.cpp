#include "PlatformKit/FileSystem.h"

#include <cerrno>

namespace PlatformKit {
namespace {

Result<ItemStatus> statusThroughLinks(FileSystem& fileSystem, const Path& path) {
  const auto resolved = fileSystem.resolve(path);
  if (!resolved.ok()) return ErrorNumber{resolved.error()};
  return fileSystem.status(resolved.value());
}

int errorOfWhatIsThere(const Result<ItemStatus>& there) {
  // A link that leads nowhere; anything else is why it is not known what has the name.
  if (!there.ok()) return there.error() == ENOENT ? EEXIST : there.error();
  if (there.value().kind == ItemKind::folder) return 0;
  return there.value().kind == ItemKind::symbolicLink ? ELOOP : EEXIST;
}

template <class StatusOf>
int createAll(Folder& within, const Path& path, const StatusOf& statusOf) {
  int error = within.createFolder(path);
  if (error == ENOENT && path.has_relative_path() && path.has_parent_path()) {
    error = createAll(within, path.parent_path(), statusOf);
    if (error != 0) return error;
    error = within.createFolder(path);
  }
  return error == EEXIST ? errorOfWhatIsThere(statusOf(path)) : error;
}

}  // namespace

int createFolders(Folder& within, const Path& path) {
  return createAll(within, path, [&](const Path& there) { return within.status(there); });
}

int createFolders(FileSystem& fileSystem, const Path& path) {
  return createAll(fileSystem, path,
                   [&](const Path& there) { return statusThroughLinks(fileSystem, there); });
}

bool isFolder(FileSystem& fileSystem, const Path& path) {
  const auto status = statusThroughLinks(fileSystem, path);
  return status.ok() && status.value().kind == ItemKind::folder;
}

}  // namespace PlatformKit
