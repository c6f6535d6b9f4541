#include "PlatformKit/Posix/UniqueFd.h"

#include <unistd.h>

namespace PlatformKit {

UniqueFd::~UniqueFd() {
  // Ignored on purpose: what a copy holds is proved by its flush and its read-back, not by close.
  if (fd_ >= 0) static_cast<void>(::close(fd_));
}

}  // namespace PlatformKit
