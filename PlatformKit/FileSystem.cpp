#include "PlatformKit/FileSystem.h"

#include <cerrno>

namespace PlatformKit {
namespace {

Result<ItemStatus> statusThroughLinks(FileSystem& fileSystem, const Path& path) {
  const auto resolved = fileSystem.resolve(path);
  if (!resolved.ok()) return ErrorNumber{resolved.error()};
  return fileSystem.status(resolved.value());
}

}  // namespace

int createFolders(FileSystem& fileSystem, const Path& folder) {
  int error = fileSystem.createFolder(folder);
  if (error == ENOENT && folder.has_relative_path() && folder.has_parent_path()) {
    error = createFolders(fileSystem, folder.parent_path());
    if (error != 0) return error;
    error = fileSystem.createFolder(folder);
  }
  if (error != EEXIST) return error;
  const auto there = statusThroughLinks(fileSystem, folder);
  if (there.ok()) return there.value().kind == ItemKind::folder ? 0 : EEXIST;
  // A link that leads nowhere; anything else is why it is not known what has the name.
  return there.error() == ENOENT ? EEXIST : there.error();
}

bool isFolder(FileSystem& fileSystem, const Path& path) {
  const auto status = statusThroughLinks(fileSystem, path);
  return status.ok() && status.value().kind == ItemKind::folder;
}

}  // namespace PlatformKit
