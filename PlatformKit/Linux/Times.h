#pragma once

#include "PlatformKit/Dates.h"

#include <array>
#include <ctime>

#include <sys/stat.h>

namespace PlatformKit {

template <class Timestamp>
Date dateOf(const Timestamp& time) {
  return Date(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

/// The pair that utimensat and futimens take: the access date stays as it is.
inline std::array<timespec, 2> modificationOnly(Date modified) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(modified);
  return {timespec{0, UTIME_OMIT},
          timespec{seconds.time_since_epoch().count(), (modified - seconds).count()}};
}

}  // namespace PlatformKit
