#pragma once

#include "PlatformKit/Dates.h"

namespace PlatformKit::Testing {

/// A clock that stands still until it is moved. One thread.
class ManualClock final : public Clock {
 public:
  explicit ManualClock(Date start) : now_(start) {}
  [[nodiscard]] Date now() const override { return now_; }
  void advance(std::chrono::nanoseconds by) { now_ += by; }

 private:
  Date now_;
};

}  // namespace PlatformKit::Testing
