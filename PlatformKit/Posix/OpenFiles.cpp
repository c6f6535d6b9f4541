#include "PlatformKit/Posix/OpenFiles.h"

#include <algorithm>

#include <sys/resource.h>

namespace PlatformKit {
namespace {

constexpr rlim_t kWanted = 8192;
constexpr std::size_t kLeastOfPosix = 20;

}  // namespace

std::size_t openFilesLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return kLeastOfPosix;
  return std::min<rlim_t>(limit.rlim_cur, kWanted);
}

void raiseOpenFilesLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= kWanted) return;
  limit.rlim_cur = std::min(limit.rlim_max, kWanted);
  // Ignored on purpose: with fewer open files everything works, only less at a time.
  static_cast<void>(setrlimit(RLIMIT_NOFILE, &limit));
}

}  // namespace PlatformKit
