#include "OffloadKit/Transfer/DurableNames.h"

#include "OffloadKit/Transfer/PendingCopy.h"

#include <cerrno>

namespace OffloadKit {

bool isLoss(int error) {
  return error != 0 && error != EACCES && error != EPERM;
}

int flushNames(PlatformKit::Folder& within, const PlatformKit::Path& folder) {
  const int error = within.flushFolder(folder);
  return isLoss(error) ? error : 0;
}

int checkTakesChanges(PlatformKit::Folder& within, const PlatformKit::Path& hidden) {
  const int error = PendingCopy::create(within, hidden, hidden).error();
  const bool isDead = error == EIO || error == ENXIO || error == ENODEV || error == EROFS;
  return isDead ? error : 0;
}

}  // namespace OffloadKit
