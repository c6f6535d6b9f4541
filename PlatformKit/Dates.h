#pragma once

#include <chrono>

namespace PlatformKit {

/// A wall-clock instant with the resolution of file dates.
using Date = std::chrono::sys_time<std::chrono::nanoseconds>;

/// Where the time of day comes from, so that tests can set it. Any thread.
class Clock {
 public:
  virtual ~Clock() = default;
  [[nodiscard]] virtual Date now() const = 0;
};

/// The machine's own clock.
class SystemClock final : public Clock {
 public:
  [[nodiscard]] Date now() const override;
};

}  // namespace PlatformKit
