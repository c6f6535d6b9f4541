#pragma once

#include "PlatformKit/Dates.h"

#include <array>
#include <cstdint>
#include <ctime>

#include <sys/stat.h>

namespace PlatformKit {

/// Dates that 64 bits of nanoseconds cannot hold (before 1677, after 2262) become the nearest that
/// they can.
template <class Timestamp>
Date dateOf(const Timestamp& time) {
  constexpr std::int64_t kFarthest = 9'223'372'035;
  if (time.tv_sec > kFarthest) return Date(std::chrono::seconds(kFarthest));
  if (time.tv_sec < -kFarthest) return Date(std::chrono::seconds(-kFarthest));
  return Date(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

/// The pair that utimensat and futimens take: the access date stays as it is.
inline std::array<timespec, 2> modificationOnly(Date modified) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(modified);
  return {timespec{0, UTIME_OMIT},
          timespec{seconds.time_since_epoch().count(), (modified - seconds).count()}};
}

}  // namespace PlatformKit
