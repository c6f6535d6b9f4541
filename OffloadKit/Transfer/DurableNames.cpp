#include "OffloadKit/Transfer/DurableNames.h"

#include <cerrno>

namespace OffloadKit {

bool isLoss(int error) {
  return error != 0 && error != EACCES && error != EPERM;
}

int flushNames(PlatformKit::FileSystem& fileSystem, const PlatformKit::Path& folder) {
  const int error = fileSystem.flushFolder(folder);
  return isLoss(error) ? error : 0;
}

}  // namespace OffloadKit
