#include "OffloadKit/Transfer/DurableNames.h"

#include <cerrno>

namespace OffloadKit {

bool isLoss(int error) {
  return error != 0 && error != EACCES && error != EPERM;
}

int flushNames(PlatformKit::Folder& within, const PlatformKit::Path& folder) {
  const int error = within.flushFolder(folder);
  return isLoss(error) ? error : 0;
}

}  // namespace OffloadKit
