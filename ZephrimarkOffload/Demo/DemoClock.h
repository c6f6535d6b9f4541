#pragma once

#include "PlatformKit/Dates.h"

#include <atomic>

namespace ZephrimarkOffload::Demo {

/// The computer's clock, or one that shows noon of a day until it is moved. Any thread.
class DemoClock final : public PlatformKit::Clock {
 public:
  explicit DemoClock(bool isFrozen) : isFrozen_(isFrozen) {}

  [[nodiscard]] PlatformKit::Date now() const override {
    if (!isFrozen_) return PlatformKit::SystemClock().now();
    const PlatformKit::Date start =
        std::chrono::sys_days{std::chrono::year{2026} / 10 / 7} + std::chrono::hours{12};
    return start + std::chrono::seconds(moved_);
  }
  void advance(std::chrono::seconds by) { moved_ += by.count(); }

 private:
  const bool isFrozen_;
  std::atomic<std::chrono::seconds::rep> moved_ = 0;
};

}  // namespace ZephrimarkOffload::Demo
