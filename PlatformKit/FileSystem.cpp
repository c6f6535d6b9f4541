#include "PlatformKit/FileSystem.h"

#include <cerrno>

namespace PlatformKit {

int createFolders(FileSystem& fileSystem, const Path& folder) {
  int error = fileSystem.createFolder(folder);
  if (error == ENOENT && folder.has_relative_path() && folder.has_parent_path()) {
    error = createFolders(fileSystem, folder.parent_path());
    if (error != 0) return error;
    error = fileSystem.createFolder(folder);
  }
  if (error == EEXIST && isFolder(fileSystem, folder)) return 0;
  return error;
}

bool isFolder(FileSystem& fileSystem, const Path& path) {
  const auto resolved = fileSystem.resolve(path);
  if (!resolved.ok()) return false;
  const auto status = fileSystem.status(resolved.value());
  return status.ok() && status.value().kind == ItemKind::folder;
}

}  // namespace PlatformKit
